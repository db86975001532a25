#include "apps/qra/scan_status_line.h"

#include <gtest/gtest.h>

TEST(ScanStatusLine, BarFollowsTheCounts) {
    EXPECT_EQ(scan_status_text(0, 0, "", 43), "[....................] 0 of 0 files        ");
    EXPECT_EQ(scan_status_text(5, 10, "/a/b.jpg", 50), "[##########..........] 5 of 10 files  b.jpg       ");
    EXPECT_EQ(scan_status_text(12, 10, "/a/b.jpg", 44), "[####################] 12 of 10 files  b.jpg");
}

TEST(ScanStatusLine, NeverWiderThanItsCells) {
    EXPECT_EQ(scan_status_text(1, 2, "/a/" + std::string(500, 'x'), 60).size(), 60u);
    EXPECT_EQ(scan_status_text(1, 2, "/a", 0).size(), 1u);
}

TEST(ScanStatusLine, NamesAreMadePrintable) {
    EXPECT_EQ(scan_status_text(1, 1, "/a/\033c", 46), "[####################] 1 of 1 files  \\x1bc    ");
}
