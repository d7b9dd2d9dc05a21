// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/cifText.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::ElementsAre;

using Words = std::vector<std::pair<CifKind, std::string>>;

/// Of a line, without its end.
Words wordsOf(const std::string& line)
{
    Words words;
    std::size_t place = 0;
    for (CifWord word = nextCifWord(line, place); word.kind != CifKind::END;
         word = nextCifWord(line, place))
        words.emplace_back(word.kind, word.text);
    return words;
}

Words one(CifKind kind, const std::string& text) { return {{kind, text}}; }

} // namespace

TEST(CifText, BlanksAreBetweenWords)
{
    EXPECT_THAT(wordsOf(" 1\t-2.5  C1' [x] \r"),
                ElementsAre(std::pair(CifKind::VALUE, "1"), std::pair(CifKind::VALUE, "-2.5"),
                            std::pair(CifKind::VALUE, "C1'"), std::pair(CifKind::VALUE, "[x]")));
    EXPECT_EQ(wordsOf(" \t\r"), Words());
}

TEST(CifText, QuotesEndInFrontOfABlank)
{
    EXPECT_EQ(wordsOf("'it's so'"), one(CifKind::VALUE, "'it's so'"));
    EXPECT_EQ(wordsOf("\"O3'\""), one(CifKind::VALUE, "\"O3'\""));
    EXPECT_THAT(wordsOf("'a'#b"),
                ElementsAre(std::pair(CifKind::VALUE, "'a'"), std::pair(CifKind::COMMENT, "#b")));
    EXPECT_EQ(wordsOf("'a\"")[0].first, CifKind::WRONG);
    EXPECT_EQ(wordsOf("\"")[0].first, CifKind::WRONG);
}

TEST(CifText, WordsAreToldByTheirForm)
{
    for (const auto& [text, kind] : std::vector<std::pair<std::string, CifKind>>{
             {"loop_", CifKind::LOOP},     {"LOOP_", CifKind::LOOP},  {"loop_x", CifKind::WRONG},
             {"stop_", CifKind::STOP},     {"data_", CifKind::DATA},  {"Data_x", CifKind::DATA},
             {"global_", CifKind::GLOBAL}, {"save_", CifKind::SAVED}, {"save_x", CifKind::SAVE},
             {"_tag", CifKind::TAG},       {"_", CifKind::WRONG},     {"$x", CifKind::WRONG},
             {"#x y", CifKind::COMMENT},   {"a#x", CifKind::VALUE},   {"dat_a", CifKind::VALUE},
             {"a\x80", CifKind::WRONG},    {"\x01", CifKind::WRONG},  {"a_b", CifKind::VALUE},
             {"lo;op", CifKind::VALUE},    {"loops", CifKind::VALUE}})
        EXPECT_EQ(wordsOf(text).at(0).first, kind) << text;
    for (const auto& [text, kind] :
         {std::pair("Loop_#x y", CifKind::LOOP), {"stop_#", CifKind::STOP}})
        EXPECT_THAT(wordsOf(text),
                    ElementsAre(std::pair(kind, std::string(text).substr(0, 5)),
                                std::pair(CifKind::COMMENT, std::string(text).substr(5))));
    EXPECT_EQ(wordsOf(";text").at(0), std::pair(CifKind::TEXT, std::string(";")));
    EXPECT_EQ(wordsOf(" ;text"), one(CifKind::VALUE, ";text")) << "not at the beginning";
}

TEST(CifText, ValuesAreWithoutTheirQuotes)
{
    EXPECT_EQ(cifValueOf("'a b'"), "a b");
    EXPECT_EQ(cifValueOf("\"O3'\""), "O3'");
    EXPECT_EQ(cifValueOf("O3'"), "O3'");
    EXPECT_EQ(cifValueOf("?"), "");
    EXPECT_EQ(cifValueOf("."), "");
    EXPECT_EQ(cifValueOf("'.'"), ".");
}

TEST(CifText, ColumnsAreKnownInLettersOfAnySize)
{
    EXPECT_EQ(cifColumnOf("_atom_site.pdbx_PDB_model_num"), CifColumn::MODEL);
    EXPECT_EQ(cifColumnOf("_ATOM_SITE.CARTN_X"), CifColumn::X);
    EXPECT_EQ(cifColumnOf("_atom_site.other"), CifColumn::NONE);
    EXPECT_TRUE(isOfAtom(CifColumn::MODEL));
    EXPECT_FALSE(isOfAtom(CifColumn::COMPONENT));
    EXPECT_STREQ(missingCifColumn({CifColumn::X, CifColumn::Y}), "Cartn_z");
    EXPECT_EQ(missingCifColumn({CifColumn::X, CifColumn::Y, CifColumn::Z, CifColumn::LABEL_ATOM,
                                CifColumn::RESIDUE}),
              nullptr);
}

TEST(CifText, PlainValuesEndOnTheirLine)
{
    const auto sizeOf = [](const std::string& text) { return sizeOfPlainCifValue(text, 0); };
    EXPECT_EQ(sizeOf("-1.5 2"), 4u);
    EXPECT_EQ(sizeOf("'a b'\n2"), 5u);
    EXPECT_EQ(sizeOf("\"O3'\""), 5u);
    for (const char* other :
         {"", " 1", "_x", "a_b", "O3' ", "'a", "'a\nb' ", "'a'b' ", "'a'#", "#x", ";x\n", "a\x01"})
        EXPECT_EQ(sizeOf(other), 0u) << other;
}

// A plain row is one that has the same words one after the other, all of them values.
TEST(CifText, APlainRowHasTheWordsOfItsLine)
{
    const std::string usual =
        "ATOM 1 P P . DA A 1 1 ? -0.6 8.9 -1.9 1.00 20.00 ? 1 DA A \"O5'\" 12 ";
    ASSERT_TRUE(plainCifRow(usual, 20));
    EXPECT_EQ(plainCifRow(usual, 20)->count, 21u);
    EXPECT_EQ(plainCifRow(usual, 20)->word, "12");
    EXPECT_EQ(plainCifRow(usual + "\r", 19)->word, "\"O5'\"");
    std::mt19937 random(11);
    const std::string characters = "   1.aZ~[\"\"'#$;_\t\r\x01\x7f\x80";
    std::size_t plain = 0, other = 0;
    for (int i = 0; i < 50000; ++i) {
        std::string line;
        const std::size_t size = random() % 300, usualOnes = i % 2 == 0 ? 8 : characters.size();
        for (std::size_t k = 0; k < size; ++k)
            line += characters[random() % (random() % 40 == 0 ? characters.size() : usualOnes)];
        const Words words = wordsOf(line);
        const std::size_t wanted = random() % (words.size() + 2);
        const auto row = plainCifRow(line, wanted);
        (row ? plain : other) += 1;
        if (!row)
            continue;
        ASSERT_EQ(row->count, words.size()) << line;
        for (const auto& word : words)
            ASSERT_EQ(word.first, CifKind::VALUE) << line;
        ASSERT_EQ(row->word, wanted < words.size() ? words[wanted].second : "") << line;
    }
    EXPECT_GT(plain, 1000u);
    EXPECT_GT(other, 1000u);
}

} // namespace strandview
