#include "libqra-agent/source/local-source/qra_mcf_group.h"

#include <gtest/gtest.h>

namespace {

struct FilterTypeRow {
    const char* content;
    const char* category;
    int type;
};

struct FieldRow {
    const char* category;
    int media;
    int recording;
};

constexpr FilterTypeRow kFilterTypes[] = {
    {"CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NAME", 3},
    {"CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NUM", 4},
    {"CONTENT-PVR", "CATEGORY-FOLDER-DATE", 2},
    {"CONTENT-PVR", "CATEGORY-CHANNEL_NAME", 6},
    {"CONTENT-PVR", "CATEGORY-CHANNEL_NUM", 7},
    {"CONTENT-PVR", "CATEGORY-DATE", 5},
    {"CONTENT-PVR", "CATEGORY-TITLE", 0},
    {"CONTENT-IMAGE", "CATEGORY-FOLDER-DATE", 1},
    {"CONTENT-PVR-UNWATCHED", "CATEGORY-FOLDER-DATE", 1},
    {"CONTENT-PVR-SCHEDULED", "CATEGORY-FOLDER-DATE", 1},
    {"CONTENT-PVR-UNWATCHED", "CATEGORY-CHANNEL_NAME", 0},
    {"CONTENT-MUSIC", "CATEGORY-ARTIST", 0},
    {"CONTENT-MUSIC", "CATEGORY-ALBUM", 0},
    {"CONTENT-MUSIC", "CATEGORY-GENRE", 0},
    {"CONTENT-IMAGE", "CATEGORY-DATE", 0},
    {"", "", 0},
};

constexpr FieldRow kFields[] = {
    {"CATEGORY-ARTIST", 7, 7},
    {"CATEGORY-ALBUM", 31, 31},
    {"CATEGORY-GENRE", 9, 9},
    {"CATEGORY-TRACK", 6, 6},
    {"CATEGORY-CHANNEL_NAME", 39, 39},
    {"CATEGORY-FOLDER-CHANNEL_NAME", 39, 39},
    {"CATEGORY-CHANNEL_NUM", 40, 40},
    {"CATEGORY-FOLDER-CHANNEL_NUM", 40, 40},
    {"CATEGORY-TITLE", 6, 41},
    {"CATEGORY-DATE", 5, 70},
    {"CATEGORY-FOLDER-DATE", 30, 70},
    {"CATEGORY-FOLDER-TITLE", 32, 32},
    {"", 32, 32},
};

}  // namespace

TEST(CQRAMCFGroup, KnowsTheFilterOfEachPairOfContentTypeAndCategory) {
    for (const FilterTypeRow& row : kFilterTypes) {
        EXPECT_EQ(CQRAMCFGroup::GetFilterType(row.content, row.category), row.type)
            << row.content << row.category;
    }
}

TEST(CQRAMCFGroup, KnowsTheColumnOfEachCategory) {
    for (const FieldRow& row : kFields) {
        EXPECT_EQ(CQRAMCFGroup::GetField("CONTENT-IMAGE", row.category), row.media) << row.category;
        for (const char* const content : {"CONTENT-PVR", "CONTENT-PVR-UNWATCHED", "CONTENT-PVR-SCHEDULED"}) {
            EXPECT_EQ(CQRAMCFGroup::GetField(content, row.category), row.recording) << row.category;
        }
    }
}
