// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/groupFiles.h>

#include <gmock/gmock.h>

#include <strandview/formats/readFile.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::ElementsAre;

struct GroupFilesTest : testing::Test
{
    std::string topology(const std::string& name, int nucleotides)
    {
        return folder.write(name, std::to_string(nucleotides) + " 1 5->3\n" +
                                      std::string(std::size_t(nucleotides), 'A') + "\n");
    }
    std::string configuration(const std::string& name, int nucleotides)
    {
        std::string text = "t = 0\nb = 9 9 9\nE = 0 0 0\n";
        for (int i = 0; i < nucleotides; ++i)
            text += "0 0 " + std::to_string(i) + " 1 0 0 0 0 1\n";
        return folder.write(name, text);
    }
    // "run.dat run.top" for a configuration with its topology.
    std::vector<std::string> grouped(const std::vector<std::string>& paths)
    {
        std::vector<std::string> texts;
        for (const FileGroup& group : groupFiles(paths))
            texts.push_back(nameOf(group.path) +
                            (group.topology.empty() ? "" : " " + nameOf(group.topology)));
        return texts;
    }
    static std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

    const TemporaryFolder folder;
};

} // namespace

TEST_F(GroupFilesTest, WithoutTopologiesEachIsItsOwn)
{
    EXPECT_THAT(grouped({"b.dat", "-", "a.json"}), ElementsAre("b.dat", "-", "a.json"));
    EXPECT_THAT(grouped({}), ElementsAre());
}

TEST_F(GroupFilesTest, ATopologyGoesWithTheConfigurationOfItsNameInAnyOrder)
{
    const std::string top = topology("run.top", 2), dat = configuration("run.dat", 2);
    EXPECT_THAT(grouped({top, dat}), ElementsAre("run.dat run.top"));
    EXPECT_THAT(grouped({dat, "helix.txt", top}), ElementsAre("run.dat run.top", "helix.txt"));
}

TEST_F(GroupFilesTest, TheOnlyOneGoesWithAllConfigurationsAndNothingElse)
{
    const std::string top = topology("dna.top", 2);
    EXPECT_THAT(grouped({top, configuration("a.dat", 2), configuration("b.conf", 3),
                         folder.write("table.dat", "0 0 0\n0 0 1\n")}),
                ElementsAre("a.dat dna.top", "b.conf dna.top", "table.dat"));
}

TEST_F(GroupFilesTest, OfSeveralTheNamesAndThenTheCountsDecide)
{
    const std::string two = topology("two.top", 2), three = topology("three.top", 3),
                      four = topology("four.top", 4);
    EXPECT_THAT(grouped({two, three, four, configuration("a.dat", 3), configuration("b.dat", 2),
                         configuration("four.dat", 2)}),
                ElementsAre("a.dat three.top", "b.dat two.top", "four.dat four.top"));
}

TEST_F(GroupFilesTest, WhatGoesWithNothingIsItsOwn)
{
    const std::string top = topology("run.top", 2);
    EXPECT_THAT(grouped({top}), ElementsAre("run.top"));
    EXPECT_THAT(grouped({top, "helix.txt"}), ElementsAre("run.top", "helix.txt"));
}

TEST_F(GroupFilesTest, WhatIsGroupedCanBeRead)
{
    const std::string dat = configuration("a.dat", 2), top = topology("other.top", 2);
    topology("another.top", 2);
    const std::vector<FileGroup> groups = groupFiles({dat, top});
    ASSERT_EQ(groups.size(), 1u);
    ReadReport report;
    EXPECT_FALSE(readFile(dat, {}, report)) << "two topologies fit";
    ReadOptions options;
    options.topology = groups[0].topology;
    const auto found = readFile(groups[0].path, options, report);
    ASSERT_TRUE(found) << report.error;
    EXPECT_EQ(found->loneBases.size(), 2u);
}

} // namespace strandview
