// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/oxdna/Topology.h>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Read
{
    std::optional<OxdnaTopology> topology;
    ReadReport report;
};

Read read(const std::string& text)
{
    Read result;
    result.topology = readOxdnaTopology(text, "here.top", {}, result.report);
    return result;
}

std::string lettersOf(const OxdnaTopology& topology)
{
    std::string letters;
    for (const OxdnaNucleotide& nucleotide : topology.nucleotides)
        letters += nucleotide.base;
    return letters;
}

/// From a 5' end on.
std::string alongStrand(const OxdnaTopology& topology, std::size_t start)
{
    std::string letters;
    for (std::size_t i = start; i != NO_NUCLEOTIDE; i = topology.nucleotides[i].next)
        letters += topology.nucleotides[i].base;
    return letters;
}

} // namespace

TEST(Topology, OfTheClassicFormGoesFromTheThreeEndOn)
{
    const Read found = read("5 2\n1 T -1 1\n1 G 0 2\n1 A 1 -1\n2 C -1 4\n2 c 3 -1\n");
    ASSERT_TRUE(found.topology) << found.report.error;
    EXPECT_EQ(lettersOf(*found.topology), "TGACC");
    EXPECT_EQ(alongStrand(*found.topology, 2), "AGT");
    EXPECT_EQ(found.topology->nucleotides[4].strand, 1u);
    EXPECT_THAT(found.topology->codes, ElementsAre(3, 2, 0, 1, 1));
    EXPECT_THAT(found.report.notices, IsEmpty());
}

TEST(Topology, OfTheNewFormGoesFromTheFiveEndOn)
{
    const Read found = read("5 2 5->3\nAGT id=1 circular=true\nCC\n");
    ASSERT_TRUE(found.topology) << found.report.error;
    EXPECT_EQ(alongStrand(*found.topology, 3), "CC");
    EXPECT_EQ(found.topology->nucleotides[2].next, 0u);
    EXPECT_EQ(found.topology->nucleotides[0].previous, 2u);
    EXPECT_EQ(found.topology->nucleotides[3].strand, 1u);
}

TEST(Topology, NumbersAndOtherLettersAreToldOf)
{
    const Read found = read("7 1 5->3\n(-1)(6)AUxg(4)\n");
    ASSERT_TRUE(found.topology) << found.report.error;
    EXPECT_EQ(lettersOf(*found.topology), "TGATNGA");
    EXPECT_THAT(found.topology->codes, ElementsAre(-1, 6, 0, 3, UNPAIRED_CODE, 2, 4));
    EXPECT_THAT(found.report.notices,
                ElementsAre("here.top: 1 base U, shown as T",
                            "here.top: 1 base of other letters than A, C, G, T and U: not known",
                            "here.top: 3 bases given as a number, shown by its remainder of 4"));
    EXPECT_EQ(lettersOf(*read("1 1\n1 -6 -1 -1\n").topology), "G");
}

TEST(Topology, FaultsAreOneLine)
{
    const std::pair<const char*, const char*> faults[] = {
        {"",
         "here.top:1: found the end of the file, expected the numbers of nucleotides and strands"},
        {"x 1\n",
         "here.top:1: column 1: found 'x', expected the numbers of nucleotides and strands"},
        {"0 0\n",
         "here.top:1: found 0 nucleotides in 0 strands, expected at least one in each strand"},
        {"1 2\n",
         "here.top:1: found 1 nucleotide in 2 strands, expected at least one in each strand"},
        {"99999999999999 2\n",
         "here.top:2: found the end of the file after 0 nucleotides, expected "
         "99999999999999"},
        {"99999999999999 2 5->3\nAA\n", "here.top:3: found the end of the file after 1 strand, "
                                        "expected 2"},
        {"3 1 5->3\nAA\n", "here.top:3: found the end of the file after 2 nucleotides, expected 3"},
        {"1 1 5->3\nAA\n", "here.top:2: found one more nucleotide, expected 1"},
        {"1 1 5->3\nA\nA\n", "here.top:3: found one more line, expected 1 strand"},
        {"1 1 5->3\n(1\n", "here.top:2: column 1: found no ')', expected one behind '('"},
        {"1 1 5->3\n(99999999999)\n",
         "here.top:2: column 1: found '99999999999', expected the letter "
         "of a base, or a number"},
        {"1 1\n2 A -1 -1\n", "here.top:2: column 1: found 2, expected a strand from 1 to 1"},
        {"1 1\n1 AT -1 -1\n",
         "here.top:2: column 2: found 'AT', expected the letter of a base, or a "
         "number"},
        {"1 1\n1 A -1 1\n", "here.top:2: column 4: found '1', expected -1 or a number below 1"},
        {"1 1\n1 A -1\n", "here.top:2: column 4: found '', expected -1 or a number below 1"},
        {"2 1\n1 A -1 1\n1 A -1 -1\n", "here.top: nucleotide 0: found neighbours that are not each "
                                       "other's or of another strand, expected a chain or a circle "
                                       "of one strand"},
        {"2 2\n1 A -1 1\n2 A 0 -1\n", "here.top: nucleotide 1: found neighbours that are not each "
                                      "other's or of another strand, expected a chain or a circle "
                                      "of one strand"},
        {"1 1\n1 A 0 0\n",
         "here.top: nucleotide 0: found neighbours that are not each other's or of "
         "another strand, expected a chain or a circle of one strand"},
    };
    for (const auto& [text, error] : faults) {
        const Read found = read(text);
        EXPECT_FALSE(found.topology);
        EXPECT_EQ(found.report.error, error);
    }
}

TEST(Topology, ItsCountIsInItsFirstLine)
{
    EXPECT_EQ(countInOxdnaTopology("12 3 5->3\n"), 12u);
    EXPECT_EQ(countInOxdnaTopology("12 3\n1 A -1 1\n"), 12u);
    for (const char* other :
         {"", "12\n", "12 3\n", "12 3\n1 2 3\n", "12 3 4\n", "12 3\n1 A -1 1 5\n"})
        EXPECT_FALSE(countInOxdnaTopology(other)) << other;
}

} // namespace strandview
