#include "common/util/qra_extensionlist.h"

#include <gtest/gtest.h>

#include "tests/fakes/dlog_capture.h"

using Extensions = std::vector<std::string>;

namespace {

Extensions of(CQRAExtensionList& list, const std::string& type) {
    Extensions extensions = {"before"};
    list.GetExtensionByType(type, extensions);
    return extensions;
}

}  // namespace

TEST(CQRAExtensionList, KnowsTheDefaultsInTheirOrder) {
    CQRAExtensionList list;

    list.SetDefaultExtension();

    EXPECT_EQ(of(list, "CONTENT-IMAGE"), (Extensions{"jpg", "jpeg", "mpo", "bmp", "png", "gif"}));
    EXPECT_EQ(
        of(list, "CONTENT-VIDEO"),
        (Extensions{"avi", "mpg", "mpeg", "mp4", "vob",  "vro", "ts",  "trp",  "tp",   "svi",  "mkv", "wmv",
                    "asf", "3gp", "divx", "flv", "m2ts", "mov", "mts", "webm", "s4ud", "rmvb", "rm"}));
    EXPECT_EQ(of(list, "CONTENT-MUSIC"), (Extensions{"mp3", "wma", "wav", "m4a", "aac", "mpa", "flac", "ogg",
                                                     "mid", "midi", "ape", "aif", "aiff"}));
    EXPECT_EQ(of(list, "CONTENT-PVR"), (Extensions{"srf"}));
    EXPECT_EQ(of(list, "CONTENT-UHD"), (Extensions{"um4", "km4", "sum4"}));
    EXPECT_EQ(of(list, "CONTENT-SCSA"), Extensions{});
}

TEST(CQRAExtensionList, TakesAllFiveListsOfTheClient) {
    LogCapture log;
    CQRAExtensionList list;
    const std::string text =
        R"({"param_media_extension_image":["heic","JPG"],"param_media_extension_video":["m4v"],)"
        R"("param_media_extension_music":["opus"],"param_media_extension_pvr":["ts"],)"
        R"("param_media_extension_uhd":["uhd"]})";

    EXPECT_TRUE(list.GetExtensionFromApp(text));

    EXPECT_EQ(of(list, "CONTENT-IMAGE"), (Extensions{"heic", "JPG"}));
    EXPECT_EQ(of(list, "CONTENT-VIDEO"), Extensions{"m4v"});
    EXPECT_EQ(of(list, "CONTENT-MUSIC"), Extensions{"opus"});
    EXPECT_EQ(of(list, "CONTENT-PVR"), Extensions{"ts"});
    EXPECT_EQ(of(list, "CONTENT-UHD"), Extensions{"uhd"});
    EXPECT_TRUE(log.contains("CQRAExtensionList: strExtension[" + text + "]."));
}

TEST(CQRAExtensionList, AListThatTheClientLeavesOutBecomesEmpty) {
    CQRAExtensionList list;

    EXPECT_TRUE(list.GetExtensionFromApp(R"({"param_media_extension_image":["jpg"]})"));
    list.SetDefaultExtension();

    EXPECT_EQ(of(list, "CONTENT-IMAGE"), Extensions{"jpg"});
    EXPECT_EQ(of(list, "CONTENT-VIDEO"), Extensions{});
}

TEST(CQRAExtensionList, ATextThatIsNoJsonReplacesTheDefaultsByNothing) {
    CQRAExtensionList list;

    EXPECT_TRUE(list.GetExtensionFromApp("nonsense"));

    for (const char* type :
         {"CONTENT-IMAGE", "CONTENT-VIDEO", "CONTENT-MUSIC", "CONTENT-PVR", "CONTENT-UHD"}) {
        EXPECT_EQ(of(list, type), Extensions{}) << type;
    }
}

TEST(CQRAExtensionList, AnEmptyTextFillsNothing) {
    LogCapture log;
    CQRAExtensionList list;

    EXPECT_FALSE(list.GetExtensionFromApp(""));
    list.SetDefaultExtension();

    EXPECT_TRUE(log.contains("CQRAExtensionList: get extension from App fail, use default extension."));
    EXPECT_EQ(list.GetExtensionCountByType("CONTENT-IMAGE"), 6);
}

TEST(CQRAExtensionList, FillingKeepsAnEntryThatIsThere) {
    CQRAExtensionList list;
    list.SetExtension("CONTENT-IMAGE", {"first"});

    list.SetExtension("CONTENT-IMAGE", {"second"});
    list.SetDefaultExtension();

    EXPECT_EQ(of(list, "CONTENT-IMAGE"), Extensions{"first"});
}

TEST(CQRAExtensionList, ClearForgetsEverything) {
    CQRAExtensionList list;
    list.SetDefaultExtension();

    list.ClearExtension();

    EXPECT_EQ(list.GetExtensionCountByType("CONTENT-IMAGE"), 0);
}

TEST(CQRAExtensionList, CountingAnUnknownTypeInsertsNothingButReadingDoes) {
    CQRAExtensionList list;

    EXPECT_EQ(list.GetExtensionCountByType("CONTENT-IMAGE"), 0);
    list.SetExtension("CONTENT-IMAGE", {"jpg"});
    EXPECT_EQ(list.GetExtensionCountByType("CONTENT-IMAGE"), 1);

    EXPECT_EQ(of(list, "CONTENT-VIDEO"), Extensions{});
    list.SetExtension("CONTENT-VIDEO", {"avi"});
    EXPECT_EQ(list.GetExtensionCountByType("CONTENT-VIDEO"), 0);
}
