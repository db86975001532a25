#include "dlog.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

/// Writes one line of each priority with QRA_LOG set to `level`, null for unset, and gives what came out.
std::string lines_at(const char* level) {
    level != nullptr ? setenv("QRA_LOG", level, 1) : unsetenv("QRA_LOG");
    unsetenv("JOURNAL_STREAM");
    testing::internal::CaptureStderr();
    for (const int priority : {DLOG_PRIORITY_DEBUG, DLOG_PRIORITY_INFO, DLOG_PRIORITY_WARNING}) {
        __dlog_print(0, priority, "QRA-TEST", "line %d", priority);
    }
    return testing::internal::GetCapturedStderr();
}

}  // namespace

TEST(Dlog, WritesWarningsOnlyByDefault) {
    EXPECT_EQ(lines_at(nullptr), "W/QRA-TEST: line 5\n");
}

TEST(Dlog, WritesNothingWhenOff) {
    EXPECT_EQ(lines_at("off"), "");
}

TEST(Dlog, WritesInfoAndWarningsAtLevelInfo) {
    EXPECT_EQ(lines_at("info"), "I/QRA-TEST: line 4\nW/QRA-TEST: line 5\n");
}

TEST(Dlog, WritesEverythingAtLevelDebug) {
    EXPECT_EQ(lines_at("debug"), "D/QRA-TEST: line 3\nI/QRA-TEST: line 4\nW/QRA-TEST: line 5\n");
}

TEST(Dlog, CutsALineThatIsTooLong) {
    setenv("QRA_LOG", "warning", 1);
    unsetenv("JOURNAL_STREAM");
    const std::string text(10000, 'x');
    testing::internal::CaptureStderr();

    __dlog_print(0, DLOG_PRIORITY_WARNING, "QRA-TEST", "%s", text.c_str());

    const std::string line = testing::internal::GetCapturedStderr();
    EXPECT_EQ(line, "W/QRA-TEST: " + text.substr(0, 2047) + "\n");
}
