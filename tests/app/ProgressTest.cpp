// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Progress.h"

#include <gtest/gtest.h>

#include <pty.h>
#include <unistd.h>

namespace strandview {

namespace {

// Standard error, a pipe or a terminal of its own, and what is written to it.
class StandardError
{
public:
    explicit StandardError(bool terminal)
    {
        int ends[2];
        EXPECT_EQ(terminal ? openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) : pipe(ends),
                  0);
        source = ends[0];
        before = dup(STDERR_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
    }
    ~StandardError()
    {
        dup2(before, STDERR_FILENO);
        close(before);
        close(source);
    }
    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;

    // Since it was last asked. A terminal hands on what is written some time later, but in order.
    std::string getText() const
    {
        const char end = '\1';
        EXPECT_EQ(write(STDERR_FILENO, &end, 1), 1);
        std::string text;
        for (char c = 0; read(source, &c, 1) == 1 && c != end;)
            text += c;
        return text;
    }

private:
    int source, before;
};

const std::string ERASE = "\r\033[K";

TEST(TerminalProgress, AnAnnouncementReplacesTheLineAtOnce)
{
    const StandardError error(true);
    TerminalProgress progress;
    progress.announce("reading");
    EXPECT_EQ(error.getText(), ERASE + "reading");
    progress.announce("building");
    EXPECT_EQ(error.getText(), ERASE + "building");
}

TEST(TerminalProgress, NothingIsLeftOfTheLineAtTheEnd)
{
    const StandardError error(true);
    {
        TerminalProgress progress;
        progress.announce("reading");
        error.getText();
    }
    EXPECT_EQ(error.getText(), ERASE);
}

TEST(TerminalProgress, IsHiddenOnceForAnotherLine)
{
    const StandardError error(true);
    TerminalProgress progress;
    progress.hide();
    EXPECT_EQ(error.getText(), "") << "nothing was shown";
    progress.announce("reading");
    error.getText();
    progress.hide();
    progress.hide();
    EXPECT_EQ(error.getText(), ERASE);
}

TEST(TerminalProgress, ShortWorkShowsNothing)
{
    const StandardError error(true);
    TerminalProgress progress;
    progress.announce("building");
    error.getText();
    for (int i = 0; i < 5; ++i)
        progress.show(std::to_string(i));
    // All of it, unless the machine stood still for a tenth of a second between two of them.
    EXPECT_LT(error.getText().size(), 5 * (ERASE.size() + 1));
}

TEST(TerminalProgress, SaysNothingToWhatIsNoTerminal)
{
    const StandardError error(false);
    {
        TerminalProgress progress;
        progress.announce("reading");
        progress.show("building");
        progress.hide();
        EXPECT_FALSE(progress.isStopped());
    }
    EXPECT_EQ(error.getText(), "");
}

} // namespace

} // namespace strandview
