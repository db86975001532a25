#include "apps/qra/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace {

/// The user's side of a pseudo-terminal with 132 columns.
class Terminal {
public:
    Terminal() {
        winsize size{};
        size.ws_col = 132;
        EXPECT_EQ(openpty(&master_, &slave_, nullptr, nullptr, &size), 0);
    }
    ~Terminal() {
        close(master_);
        close(slave_);
    }
    int descriptor() const { return slave_; }

private:
    int master_ = -1;
    int slave_ = -1;
};

class NoTerminal {
public:
    NoTerminal() : descriptor_(open("/dev/null", O_WRONLY)) {}
    ~NoTerminal() { close(descriptor_); }
    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

}  // namespace

TEST(Terminal, WidthIsThatOfTheTerminal) {
    setenv("COLUMNS", "50", 1);
    EXPECT_EQ(terminal_width(Terminal().descriptor()), 132);
}

TEST(Terminal, WithoutTerminalTheEnvironmentGivesTheWidth) {
    setenv("COLUMNS", "50", 1);
    EXPECT_EQ(terminal_width(NoTerminal().descriptor()), 50);
    setenv("COLUMNS", "99999999", 1);
    EXPECT_EQ(terminal_width(NoTerminal().descriptor()), 1000);
}

TEST(Terminal, WidthFallsBackToEighty) {
    for (const char* nonsense : {"", "-5", "0", "wide", "99999999999999999999"}) {
        setenv("COLUMNS", nonsense, 1);
        EXPECT_EQ(terminal_width(NoTerminal().descriptor()), 80) << nonsense;
    }
}

TEST(Terminal, ColoursOnlyOnATerminalThatWantsThem) {
    unsetenv("NO_COLOR");
    setenv("TERM", "xterm", 1);
    EXPECT_TRUE(wants_colour(Terminal().descriptor()));
    EXPECT_FALSE(wants_colour(NoTerminal().descriptor()));
    setenv("TERM", "dumb", 1);
    EXPECT_FALSE(wants_colour(Terminal().descriptor()));
    setenv("TERM", "xterm", 1);
    setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(wants_colour(Terminal().descriptor()));
}
