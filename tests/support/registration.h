// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_REGISTRATION_H
#define STRANDVIEW_TESTS_REGISTRATION_H

#include <string>

#include <gmock/gmock.h>

/// Each statement runs in a process of its own that starts afresh, with nothing
/// registered: hence the "threadsafe" style, and no CoinTest.
class RegistrationDeathTest : public testing::Test
{
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

/// What the C library says when the assertion fails, the source named relatively.
inline auto assertionIn(const std::string& source, const std::string& text)
{
    return testing::AllOf(testing::ContainsRegex("(^|[: \n])src/" + source + "\\.cpp:[0-9]+: "),
                          testing::HasSubstr("Assertion `" + text + "' failed."));
}

#endif
