// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/saveDefaults.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "request/defaults.h"
#include "request/settings.h"
#include "support/TemporaryFolder.h"
#include "support/runProgram.h"

namespace strandview {

using testing::HasSubstr;

namespace {

const char* const ROD = "0 0 0\n1 0 0\n2 0.5 0\n";

std::string contentOf(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class SaveDefaultsTest : public testing::Test
{
protected:
    ProgramRun run(std::vector<std::string> arguments) const
    {
        return runProgram(STRANDVIEW_PROGRAM, arguments, "", {{"XDG_CONFIG_HOME", folder.path()}});
    }
    // The picture of a rod with these options.
    std::string picture(std::vector<std::string> options) const
    {
        const std::string file = folder.path("picture.png");
        options.insert(options.end(), {"--size", "60x40", "--render", file, rod});
        const ProgramRun made = run(options);
        EXPECT_EQ(made.status, 0) << made.error;
        return contentOf(file);
    }

    const TemporaryFolder folder;
    const std::string rod = folder.write("rod.txt", ROD);
    const std::string file = folder.path("strandview/defaults.conf");
};

} // namespace

TEST_F(SaveDefaultsTest, MakesTheFolderAndReplacesTheFileAsAWhole)
{
    StyleRequest request, again;
    request.radius = 0.5;
    EXPECT_EQ(saveDefaults(request, file), "");
    EXPECT_EQ(contentOf(file), defaultsText(request));
    EXPECT_EQ(saveDefaults(StyleRequest(), file), "");
    EXPECT_EQ(contentOf(file), defaultsText(StyleRequest()));
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path("strandview")))
        files += entry.is_regular_file();
    EXPECT_EQ(files, 1);
    EXPECT_EQ(readDefaults(file, again), "");
    EXPECT_EQ(again, StyleRequest());
}

TEST_F(SaveDefaultsTest, TellsWhereItCannotWrite)
{
    const std::string inFile = rod + "/strandview/defaults.conf";
    EXPECT_THAT(saveDefaults({}, inFile), testing::StartsWith(rod + "/strandview: "));
    EXPECT_THAT(saveDefaults({}, ""), HasSubstr("XDG_CONFIG_HOME"));
    EXPECT_EQ(contentOf(rod), ROD);
}

TEST_F(SaveDefaultsTest, TheProgramBeginsWithWhatItKept)
{
    const std::string usual = picture({}), asked = picture({"--background", "black"});
    ASSERT_NE(usual, asked);
    const ProgramRun kept = run({"--save-defaults", "--background", "black", "--zoom", "2"});
    EXPECT_EQ(kept.status, 0);
    EXPECT_EQ(kept.output, "wrote " + file + "\n");
    EXPECT_EQ(kept.error,
              "strandview: --zoom has no effect: --save-defaults keeps the look alone\n");
    EXPECT_EQ(picture({"--no-defaults"}), usual);
    EXPECT_NE(picture({}), usual);
    EXPECT_EQ(run({"--save-defaults"}).status, 0);
    EXPECT_EQ(picture({}), usual);
}

TEST_F(SaveDefaultsTest, AFaultInTheFileIsOneLineWithItsPlaceAndStatus2)
{
    std::filesystem::create_directory(folder.path("strandview"));
    folder.write("strandview/defaults.conf", "# mine\nradius = thick\n");
    const ProgramRun refused = run({"--info", rod});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(refused.error, "strandview: " + file +
                                 ":2: radius: found 'thick', expected a length above 0; "
                                 "--no-defaults leaves the file aside\n");
    EXPECT_EQ(run({"--info", "--no-defaults", rod}).status, 0);
    EXPECT_EQ(run({"--help"}).status, 0);
}

TEST_F(SaveDefaultsTest, WhatIsToldOfDataIsInTheUnitThatTheFileSays)
{
    const std::string dna =
        folder.write("dna.txt", "A 0 0 0 0 0 0 1\nC 0 0 0.34 0 0 0.309 0.951\n");
    const auto told = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--info", dna});
        return run(arguments).output;
    };
    const std::string inAngstrom = told({}), inNanometres = told({"--dna-unit", "nm"});
    EXPECT_NE(inAngstrom, inNanometres);
    EXPECT_EQ(run({"--save-defaults", "--dna-unit", "nm"}).status, 0);
    EXPECT_EQ(told({}), inNanometres);
    EXPECT_EQ(told({"--no-defaults"}), inAngstrom);
}

TEST_F(SaveDefaultsTest, WhatIsComparedWithIsFoundFromEveryFolder)
{
    const auto keptOf = [this](const std::string& reference) {
        EXPECT_EQ(run({"--save-defaults", "--compare", reference}).status, 0);
        StyleRequest kept;
        EXPECT_EQ(readDefaults(file, kept), "");
        return kept.compare.value_or("nothing");
    };
    EXPECT_EQ(keptOf("other.txt"), (std::filesystem::current_path() / "other.txt").string());
    EXPECT_EQ(keptOf(rod), rod);
    EXPECT_EQ(keptOf("first"), "first");
}

// Its processes go on with what the first one read.
TEST_F(SaveDefaultsTest, ASeriesHasTheSamePicturesWithAnyNumberOfProcesses)
{
    ASSERT_EQ(run({"--save-defaults", "--background", "navy", "--tube-colour", "gold"}).status, 0);
    const std::string other = folder.write("rod2.txt", "0 0 0\n1 0.5 0\n2 0 0\n");
    std::vector<std::string> all;
    for (const char* jobs : {"1", "2"}) {
        const std::string name = folder.path(std::string("f") + jobs + "_%d.png");
        const ProgramRun made =
            run({"--series", "--jobs", jobs, "--size", "60x40", "--render", name, rod, other});
        ASSERT_EQ(made.status, 0) << made.error;
        for (const char* frame : {"0", "1"})
            all.push_back(contentOf(folder.path(std::string("f") + jobs + "_" + frame + ".png")));
    }
    EXPECT_EQ(all[0], all[2]);
    EXPECT_EQ(all[1], all[3]);
    EXPECT_NE(all[0], all[1]);
}

} // namespace strandview
