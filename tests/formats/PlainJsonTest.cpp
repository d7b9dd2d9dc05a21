// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/PlainJson.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace strandview {

namespace {

/// Writes down what it is told, up to so many events.
class Recorder : public nlohmann::json_sax<nlohmann::json>
{
public:
    explicit Recorder(std::size_t mostEvents = 10000) : most(mostEvents) {}

    bool null() override { return add("null"); }
    bool boolean(bool value) override { return add(value ? "true" : "false"); }
    bool number_integer(std::int64_t value) override { return add(std::to_string(value)); }
    bool number_unsigned(std::uint64_t value) override { return add(std::to_string(value)); }
    bool number_float(double value, const std::string&) override
    {
        char text[40];
        std::snprintf(text, sizeof text, "float %a", value);
        return add(text);
    }
    bool string(std::string& value) override { return add("string " + value); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return add("{"); }
    bool end_object() override { return add("}"); }
    bool start_array(std::size_t) override { return add("["); }
    bool end_array() override { return add("]"); }
    bool key(std::string& value) override { return add("key " + value); }
    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override
    {
        return false;
    }
    static bool decode(std::string_view quoted, std::string& value)
    {
        const auto parsed = nlohmann::json::parse(quoted, nullptr, false);
        if (parsed.is_string())
            value = parsed.get<std::string>();
        return parsed.is_string();
    }

    std::vector<std::string> events;

private:
    bool add(const std::string& event)
    {
        events.push_back(event);
        return events.size() < most;
    }

    std::size_t most;
};

bool parsePlain(const std::string& text, Recorder& recorder)
{
    const char* place = text.data();
    return PlainJson<Recorder>(place, text.data() + text.size(), recorder).parse();
}

} // namespace

TEST(PlainJson, TellsWhatIsThereInItsOrder)
{
    const std::string text = " {\"a\" : [1, -2.5,\t1e3, 0.1], \"b\\n\": {}, \"c\":[ ],\r\n"
                             "\"d\":null, \"e\": true,\"f\":false, \"\xc3\xa9\": \"x y\"} ";
    Recorder recorder;
    ASSERT_TRUE(parsePlain(text, recorder));
    const std::vector<std::string> expected = {"{",
                                               "key a",
                                               "[",
                                               "1",
                                               "float -0x1.4p+1",
                                               "float 0x1.f4p+9",
                                               "float 0x1.999999999999ap-4",
                                               "]",
                                               "key b\n",
                                               "{",
                                               "}",
                                               "key c",
                                               "[",
                                               "]",
                                               "key d",
                                               "null",
                                               "key e",
                                               "true",
                                               "key f",
                                               "false",
                                               "key \xc3\xa9",
                                               "string x y",
                                               "}"};
    EXPECT_EQ(recorder.events, expected);
}

TEST(PlainJson, RefusesWhatIsNoJson)
{
    for (const char* text : {"",
                             " ",
                             "[",
                             "]",
                             "[1",
                             "[1,",
                             "[1,]",
                             "[,1]",
                             "[1 2]",
                             "{",
                             "{\"a\"}",
                             "{\"a\":}",
                             "{\"a\":1,}",
                             "{a:1}",
                             "{'a':1}",
                             "[01]",
                             "[-]",
                             "[-01]",
                             "[+1]",
                             "[.5]",
                             "[5.]",
                             "[1e]",
                             "[1e+]",
                             "[1.e5]",
                             "[1.5.2]",
                             "[--1]",
                             "[0x1]",
                             "[NaN]",
                             "[Infinity]",
                             "[nul]",
                             "[True]",
                             "\"",
                             "\"\\",
                             "\"\\\"",
                             "\"\\x\"",
                             "\"\n\"",
                             "\"\xff\"",
                             "\"\\ud800\"",
                             "[1] 2",
                             "[1]]",
                             "[1]//",
                             "/**/[1]",
                             "\xef\xbb\xbf[1]",
                             "[1e400]",
                             "[-1e400]"}) {
        Recorder recorder;
        const char* place = text;
        PlainJson<Recorder> plain(place, text + std::strlen(text), recorder);
        EXPECT_FALSE(plain.parse()) << text;
        EXPECT_FALSE(plain.isStopped()) << text;
    }
}

TEST(PlainJson, StopsWhereItsHandlerDoes)
{
    const std::string text = "{\"a\": [1, 2, 3], \"b\": {\"c\": \"d\"}}";
    Recorder all;
    ASSERT_TRUE(parsePlain(text, all));
    for (std::size_t most = 1; most < all.events.size(); ++most) {
        Recorder recorder(most);
        const char* place = text.data();
        PlainJson<Recorder> plain(place, text.data() + text.size(), recorder);
        EXPECT_FALSE(plain.parse());
        EXPECT_TRUE(plain.isStopped()) << most;
        EXPECT_EQ(recorder.events.size(), most);
    }
}

TEST(PlainJson, TakesNothingThatTheOtherParserTakesInAnotherWay)
{
    const std::string pieces[] = {"[",
                                  "]",
                                  "{",
                                  "}",
                                  ",",
                                  ":",
                                  "\"a\"",
                                  "\"\"",
                                  "1",
                                  "-0",
                                  "2.50",
                                  "1e5",
                                  "-1E-3",
                                  "true",
                                  "null",
                                  "false",
                                  " ",
                                  "\n",
                                  "\"\\n\"",
                                  "0",
                                  ".5",
                                  "01",
                                  "1.",
                                  "\"é\"",
                                  "12345678901234567890",
                                  "1e-400",
                                  "0.12345678901234567890"};
    std::mt19937 random(11);
    const auto any = [&](std::size_t count) { return std::size_t(random() % count); };
    std::size_t taken = 0;
    for (int i = 0; i < 100000; ++i) {
        std::string text = "{\"a\": [1.5, [2, -3.25e2], {\"b\": \"c\"}], \"d\": null}";
        for (std::size_t changes = any(4); changes > 0; --changes) {
            const std::size_t at = any(text.size() + 1);
            text.replace(at, any(3), pieces[any(std::size(pieces))]);
        }
        Recorder plain, other;
        const bool isTaken = parsePlain(text, plain);
        const bool isJson = nlohmann::json::sax_parse(text, &other);
        ASSERT_LE(isTaken, isJson) << text;
        if (!isTaken)
            continue;
        ASSERT_EQ(plain.events, other.events) << text;
        ++taken;
    }
    EXPECT_GT(taken, 20000u);
}

TEST(PlainJson, TakesEveryDoubleThatIsWrittenWithAllOfItsDigits)
{
    std::mt19937_64 random(13);
    for (int i = 0; i < 20000; ++i) {
        const double number = std::ldexp(double(random() >> 11), int(random() % 1900) - 1000);
        char text[40], expected[40];
        std::snprintf(text, sizeof text, "%.16e", number);
        std::snprintf(expected, sizeof expected, "float %a", number);
        Recorder recorder;
        ASSERT_TRUE(parsePlain(text, recorder)) << text;
        ASSERT_EQ(recorder.events.front(), expected) << text;
    }
}

} // namespace strandview
