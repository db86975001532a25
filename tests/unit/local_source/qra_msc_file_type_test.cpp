#include "libqra-agent/source/local-source/qra_msc_file_type.h"

#include <gtest/gtest.h>

#include "common/util/qra_extensionlist.h"

namespace {

/// The type of an extension, or 0.
int type_of(CQRAExtensionList& list, const std::string& extension, bool is_360 = false) {
    CQRAMSCFileType types;
    types.Prepare(list);
    qra_media_type_e type = QRA_MEDIA_TYPE_FOLDER;
    return types.GetFileType(extension, is_360, type) ? type : 0;
}

CQRAExtensionList defaults() {
    CQRAExtensionList list;
    list.SetDefaultExtension();
    return list;
}

}  // namespace

TEST(CQRAMSCFileType, KnowsTheTypeOfEachContentType) {
    CQRAExtensionList list = defaults();
    list.SetExtension("CONTENT-SCSA", {"uvu"});
    EXPECT_EQ(type_of(list, "jpg"), 2);
    EXPECT_EQ(type_of(list, "jpg", true), 15);
    EXPECT_EQ(type_of(list, "mp4"), 3);
    EXPECT_EQ(type_of(list, "mp4", true), 16);
    EXPECT_EQ(type_of(list, "mp3"), 5);
    EXPECT_EQ(type_of(list, "mp3", true), 5);
    EXPECT_EQ(type_of(list, "srf"), 6);
    EXPECT_EQ(type_of(list, "um4"), 10);
    EXPECT_EQ(type_of(list, "uvu"), 11);
}

TEST(CQRAMSCFileType, TheFilesExtensionCountsInLowerCaseAndTheListsAsItStands) {
    CQRAExtensionList list;
    list.SetExtension("CONTENT-IMAGE", {"jpg", "PNG"});
    EXPECT_EQ(type_of(list, "JPG"), 2);
    EXPECT_EQ(type_of(list, "png"), 0);
    EXPECT_EQ(type_of(list, "PNG"), 0);
}

TEST(CQRAMSCFileType, AnExtensionOfSeveralTypesCountsForTheFirst) {
    CQRAExtensionList list;
    list.SetExtension("CONTENT-MUSIC", {"mp4"});
    list.SetExtension("CONTENT-VIDEO", {"mp4"});
    EXPECT_EQ(type_of(list, "mp4"), 3);
}

TEST(CQRAMSCFileType, AnUnknownExtensionLeavesTheTypeAlone) {
    CQRAExtensionList list = defaults();
    CQRAMSCFileType types;
    types.Prepare(list);
    qra_media_type_e type = QRA_MEDIA_TYPE_MUSIC;
    EXPECT_FALSE(types.GetFileType("txt", false, type));
    EXPECT_FALSE(types.GetFileType("", false, type));
    EXPECT_FALSE(types.GetFileType("jp", false, type));
    EXPECT_EQ(type, QRA_MEDIA_TYPE_MUSIC);
}

TEST(CQRAMSCFileType, ALaterPreparationReplacesTheEarlierOne) {
    CQRAExtensionList first = defaults();
    CQRAExtensionList second;
    second.SetExtension("CONTENT-IMAGE", {"heic"});
    CQRAMSCFileType types;
    types.Prepare(first);
    types.Prepare(second);
    qra_media_type_e type = QRA_MEDIA_TYPE_FOLDER;
    EXPECT_FALSE(types.GetFileType("jpg", false, type));
    EXPECT_TRUE(types.GetFileType("heic", false, type));
}
