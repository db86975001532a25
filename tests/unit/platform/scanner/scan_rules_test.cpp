#include "platform/media-content/host/scanner/scan_rules.h"

#include <gtest/gtest.h>

namespace media_content {
namespace {

TEST(ScanRules, HiddenNamesAreNotListed) {
    for (const char* name :
         {".", "..", ".hidden", "._twin.jpg", ".Trashes", ".Trash-1000", ".thumbnails", ""}) {
        EXPECT_TRUE(is_unlisted_name(name)) << name;
    }
}

TEST(ScanRules, TrashAndSystemFoldersAreNotListed) {
    for (const char* name : {"$RECYCLE.BIN", "$Recycle.Bin", "RECYCLER", "Recycled",
                             "System Volume Information", "SYSTEM VOLUME INFORMATION", "lost+found",
                             "LOST.DIR", "@eaDir", "#recycle", "FOUND.000", "__MACOSX"}) {
        EXPECT_TRUE(is_unlisted_name(name)) << name;
    }
}

TEST(ScanRules, AllOtherNamesAre) {
    for (const char* name : {"a", "a.jpg", "lost", "recycle bin", "System", "DCIM", "~", "$"}) {
        EXPECT_FALSE(is_unlisted_name(name)) << name;
    }
}

}  // namespace
}  // namespace media_content
