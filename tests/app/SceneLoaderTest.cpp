// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SceneLoader.h"

#include <thread>

#include <gmock/gmock.h>

#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "support/TemporaryFolder.h"
#include "support/initialiseSceneOnce.h"

namespace strandview {

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;

class RecordedProgress : public Progress
{
public:
    void announce(const std::string& text) override { announced.push_back(text); }
    bool isStopped() const override { return stopped; }

    std::vector<std::string> announced;
    bool stopped = false;
};

class SceneLoaderTest : public testing::Test
{
protected:
    SceneLoaderTest() { initialiseSceneOnce(); }

    const TemporaryFolder folder;
    const std::string first = folder.write("first.txt", "x y z\n0 0 0\n0 0 1\n0 1 2\n");
    const std::string second = folder.write("second.txt", "x y z\n1 0 0\n1 0 1\n");
    ReadReport report;
    RecordedProgress progress;
};

TEST_F(SceneLoaderTest, ASceneIsPreparedInAnyThreadAndMadeInOne)
{
    SceneMaker make;
    std::thread([&] { make = prepareScene({first, second}, {}, report, progress); }).join();
    ASSERT_TRUE(make) << report.error;
    DataScene* const scene = make(report, progress);
    ASSERT_NE(scene, nullptr) << report.error;
    EXPECT_EQ(scene->getRefCount(), 0);
    scene->ref();
    scene->unref();
}

TEST_F(SceneLoaderTest, WhatIsReadIsAnnouncedByItsNameAndPlace)
{
    prepareScene({first, second}, {}, report, progress);
    EXPECT_THAT(progress.announced, Contains("Reading first.txt (1 of 2)"));
    EXPECT_THAT(progress.announced, Contains("Reading second.txt (2 of 2)"));
}

TEST_F(SceneLoaderTest, OneFileThatCannotBeReadEndsAllOfIt)
{
    const std::string missing = folder.path("missing.txt");
    EXPECT_FALSE(prepareScene({first, missing, second}, {}, report, progress));
    EXPECT_THAT(report.error, HasSubstr(missing));
    EXPECT_THAT(report.error, EndsWith("No such file or directory"));
    EXPECT_THAT(progress.announced, testing::Not(Contains(HasSubstr("second.txt"))));
}

TEST_F(SceneLoaderTest, WhatIsStoppedGivesNothingButAReason)
{
    progress.stopped = true;
    EXPECT_FALSE(prepareScene({first}, {}, report, progress));
    EXPECT_NE(report.error, "");
}

TEST_F(SceneLoaderTest, WhatIsStoppedLaterGivesNothingEither)
{
    const SceneMaker make = prepareScene({first}, {}, report, progress);
    ASSERT_TRUE(make);
    progress.stopped = true;
    EXPECT_EQ(make(report, progress), nullptr);
    EXPECT_EQ(report.error, "building the scene was stopped");
}

TEST_F(SceneLoaderTest, OptionsWithoutEffectAreNotices)
{
    Options options;
    options.given = {"--dna"};
    ASSERT_TRUE(prepareScene({first}, options, report, progress));
    EXPECT_THAT(report.notices, Contains("--dna has no effect: found no DNA"));
}

TEST_F(SceneLoaderTest, AGhostThatCannotBeDrawnIsANotice)
{
    Options options;
    options.compare = folder.write("reference.txt", "0 0 0\n0 0 1\n0 1 2\n\n0 0 0\n2 0 0\n1 0 0\n");
    options.showGhost = true;
    ASSERT_TRUE(prepareScene({first}, options, report, progress)) << report.error;
    EXPECT_THAT(report.notices,
                Contains("--ghost leaves out rod 2, points[1]: found edges that turn straight "
                         "back, expected another angle between them (of the reference)"));
}

TEST_F(SceneLoaderTest, AScalarThatThereIsNotIsRefusedOrIfAllowedANotice)
{
    Options options;
    options.colourBy = "energy";
    EXPECT_FALSE(prepareScene({first}, options, report, progress));
    const std::string reason = report.error;
    EXPECT_THAT(reason, HasSubstr("energy"));

    report = {};
    options.colourIfPossible = true;
    EXPECT_TRUE(prepareScene({first}, options, report, progress));
    EXPECT_EQ(report.error, "");
    EXPECT_THAT(report.notices, Contains("not coloured: " + reason));
}

} // namespace

} // namespace strandview
