// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/oxdna/files.h>

#include <gmock/gmock.h>

#include <strandview/formats/Source.h>

#include "support/TemporaryFolder.h"
#include "support/pack.h"

namespace strandview {

namespace {

using testing::EndsWith;
using testing::HasSubstr;

const std::string HEAD = "t = 0\nb = 9 9 9\nE = 0 0 0\n", ROW = "0 0 0 1 0 0 0 0 1\n";

struct OxdnaFilesTest : testing::Test
{
    std::string topologyOf(const std::string& path)
    {
        const auto source = Source::open(path, report);
        const auto topology = findOxdnaTopology(*source, options, report);
        return topology ? topology->name.substr(folder.path().size() + 1) : "";
    }
    std::string configurationOf(const std::string& path)
    {
        const auto source = Source::open(path, report);
        const auto found = findOxdnaConfiguration(*source, options, report);
        return found ? found->getName().substr(folder.path().size() + 1) : "";
    }

    const TemporaryFolder folder;
    ReadOptions options;
    ReadReport report;
};

} // namespace

TEST_F(OxdnaFilesTest, CountTheRowsOfTheFirstConfiguration)
{
    for (const std::string& more : {std::string(), HEAD + ROW}) {
        const auto source = Source::ofBytes("here", HEAD + ROW + ROW + more);
        EXPECT_EQ(countInOxdnaConfiguration(*source, options, report), 2u);
    }
    EXPECT_EQ(countInOxdnaConfiguration(*Source::ofBytes("here", "t = 0\n"), options, report), 0u);
}

TEST_F(OxdnaFilesTest, ATopologyOfTheSameNameComesFirst)
{
    folder.write("run.top", "2 1 5->3\nAA\n");
    folder.write("other.top", "2 1 5->3\nAC\n");
    EXPECT_EQ(topologyOf(folder.write("run.dat", HEAD + ROW + ROW)), "run.top");
}

TEST_F(OxdnaFilesTest, ElseTheOnlyOneOfAsManyNucleotides)
{
    folder.write("three.top", "3 1 5->3\nAAA\n");
    folder.write("two.top", "2 1\n1 A -1 1\n1 A 0 -1\n");
    folder.write("none.top", "something else\n");
    const std::string path = folder.write("run.dat", HEAD + ROW + ROW + HEAD + ROW + ROW);
    EXPECT_EQ(topologyOf(path), "two.top");
    folder.write("another.top", "2 1 5->3\nAC\n");
    EXPECT_EQ(topologyOf(path), "");
    EXPECT_THAT(report.error,
                EndsWith("run.dat: found no topology beside it, expected 'run.top', or "
                         "one other of 2 nucleotides"));
    options.topology = folder.path("another.top");
    EXPECT_EQ(topologyOf(path), "another.top");
}

TEST_F(OxdnaFilesTest, PackedOnesAreFoundAsOthersAre)
{
    const std::string packed = folder.write("run.dat.gz", packedByGzip(HEAD + ROW + ROW));
    const std::string top = folder.write("two.top.zst", packedByZstandard("2 1 5->3\nAA\n"));
    EXPECT_EQ(topologyOf(packed), "two.top.zst");
    EXPECT_EQ(configurationOf(top), "run.dat.gz");
    folder.write("run.top.gz", packedByGzip("2 1 5->3\nAC\n"));
    folder.write("two.dat.gz", packedByGzip(HEAD + ROW + ROW));
    EXPECT_EQ(topologyOf(packed), "run.top.gz");
    EXPECT_EQ(configurationOf(top), "two.dat.gz");
    folder.write("run.top", "2 1 5->3\nAG\n");
    EXPECT_EQ(topologyOf(packed), "run.top");
}

TEST_F(OxdnaFilesTest, WhatHasNoFolderHasNoTopology)
{
    EXPECT_FALSE(findOxdnaTopology(*Source::ofBytes("here", HEAD + ROW), options, report));
    EXPECT_EQ(report.error,
              "here: found no folder, expected the topology of the configuration in it");
}

TEST_F(OxdnaFilesTest, ATopologyFindsAConfigurationByTheSameRules)
{
    const std::string top = folder.write("run.top", "2 1 5->3\nAA\n");
    EXPECT_EQ(configurationOf(top), "");
    EXPECT_THAT(report.error, EndsWith("run.top: found a topology and no configuration beside it, "
                                       "expected one of 2 nucleotides"));
    folder.write("table.dat", "0 0 0\n0 0 1\n");
    folder.write("three.conf", HEAD + ROW + ROW + ROW);
    folder.write("two.conf", HEAD + ROW + ROW);
    EXPECT_EQ(configurationOf(top), "two.conf");
    folder.write("run.dat", HEAD + ROW + ROW);
    EXPECT_EQ(configurationOf(top), "run.dat");
}

} // namespace strandview
