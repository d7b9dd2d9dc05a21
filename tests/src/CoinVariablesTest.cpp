// SPDX-License-Identifier: GPL-3.0-or-later
#include <detail/coinVariables.h>

#include <array>
#include <cstdio>
#include <string>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::StrEq;

auto isVariable(const char* name, const char* value)
{
    return testing::Pair(StrEq(name), StrEq(value));
}

const auto noCheck = isVariable("COIN_GL_NO_CURRENT_CONTEXT_CHECK", "1");
const auto egl = isVariable("COIN_EGL", "1");
const auto surfaceless = isVariable("EGL_PLATFORM", "surfaceless");

// What a program that uses the library finds in its environment before it starts Coin, after a
// shell's assignments; the test's own, which the library has set already, are not handed on.
std::string variablesOfProgram(const std::string& assignments)
{
    const std::string command = "env -u COIN_GL_NO_CURRENT_CONTEXT_CHECK -u COIN_EGL " +
                                assignments + " " COIN_VARIABLES_PROGRAM;
    FILE* const program = popen(command.c_str(), "r");
    std::string text;
    std::array<char, 256> part;
    while (program && std::fgets(part.data(), part.size(), program))
        text += part.data();
    EXPECT_TRUE(program && pclose(program) == 0);
    return text;
}

} // namespace

TEST(CoinVariables, AreOneForVersionsWithoutEglOfTheirOwn)
{
    for (const char* version : {"SIM Coin 4.0.0", "SIM Coin 4.0.3", "4.0.3", "Coin", ""}) {
        SCOPED_TRACE(version);
        EXPECT_THAT(coinVariables(version, true), ElementsAre(noCheck));
        EXPECT_THAT(coinVariables(version, false), ElementsAre(noCheck));
    }
}

TEST(CoinVariables, TellLaterVersionsToUseEglAndWhereThereIsNoDisplay)
{
    for (const char* version : {"SIM Coin 4.0.4", "SIM Coin 4.0.10", "4.1.0", "SIM Coin 5.0.0a"}) {
        SCOPED_TRACE(version);
        EXPECT_THAT(coinVariables(version, true), ElementsAre(noCheck, egl));
        EXPECT_THAT(coinVariables(version, false), ElementsAre(noCheck, egl, surfaceless));
    }
}

TEST(CoinVariables, AreSetBeforeAProgramStartsCoin)
{
    EXPECT_EQ(variablesOfProgram(""), "COIN_GL_NO_CURRENT_CONTEXT_CHECK=1\n");
}

TEST(CoinVariables, StayAsTheUserHasSetThem)
{
    EXPECT_EQ(variablesOfProgram("COIN_GL_NO_CURRENT_CONTEXT_CHECK=0"),
              "COIN_GL_NO_CURRENT_CONTEXT_CHECK=0\n");
    EXPECT_EQ(variablesOfProgram("COIN_GL_NO_CURRENT_CONTEXT_CHECK="),
              "COIN_GL_NO_CURRENT_CONTEXT_CHECK=\n");
}
