#include "libqra-agent/source/local-source/qra_filter_product.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "common/util/qra_extensionlist.h"
#include "libqra-agent/source/local-source/qra_filter_factory.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/unit/local_source/filter_recorder.h"

namespace {

const std::string kNotSet = "not set";

/// Terms of the extension list that the tests use: two of each type, but for the recordings' one.
const std::string kImage = "MEDIA_DISPLAY_NAME LIKE '%.jpg' or MEDIA_DISPLAY_NAME LIKE '%.png'";
const std::string kVideo = "MEDIA_DISPLAY_NAME LIKE '%.mp4' or MEDIA_DISPLAY_NAME LIKE '%.mkv'";
const std::string kMusic = "MEDIA_DISPLAY_NAME LIKE '%.mp3' or MEDIA_DISPLAY_NAME LIKE '%.ogg'";
const std::string kPvr = "MEDIA_PATH LIKE '%.srf'";
const std::string kUhd = "( MEDIA_DISPLAY_NAME LIKE '%.um4' or MEDIA_DISPLAY_NAME LIKE '%.km4' )";
const std::string kScsa = "MEDIA_DISPLAY_NAME LIKE '%.uvu'";

std::string of(std::initializer_list<std::string> terms) {
    std::string filter = "( ( 0=1 )";
    for (const std::string& term : terms) {
        filter += " or " + term;
    }
    return filter + " )";
}

CQRAExtensionList two_of_each() {
    CQRAExtensionList list;
    list.SetExtension("CONTENT-IMAGE", {"jpg", "png"});
    list.SetExtension("CONTENT-VIDEO", {"mp4", "mkv"});
    list.SetExtension("CONTENT-MUSIC", {"mp3", "ogg"});
    list.SetExtension("CONTENT-PVR", {"srf"});
    list.SetExtension("CONTENT-UHD", {"um4", "km4"});
    list.SetExtension("CONTENT-SCSA", {"uvu"});
    return list;
}

struct Request {
    int type;
    std::string content = "CONTENT-IMAGE";
    std::string category = {};
    ESearchType search = SEARCH_NONE;
    bool uhd = false;
};

/// Makes the filter of a request with the folder id F, the path P and the keyword K.
bool make_filter(const Request& request, CQRAExtensionList* extensions) {
    g_filter = {};
    _SFilterParam param;
    param.strContentType = request.content;
    param.strCategory = request.category;
    param.strPath = "P";
    param.strStorageId = "S";
    param.strFolderId = "F";
    param.strKeyword = "K";
    param.nSearchType = request.search;
    param.bIsUHDDevice = request.uhd;
    param.pExtensionList = extensions;
    const std::unique_ptr<CQRAFilterProductBase> product(CQRAFilterFactory().CreateProduct(request.type));
    filter_h filter = nullptr;
    const bool made = product->InitParam(&param) && product->CreateAndSetFilter(filter);
    EXPECT_EQ(filter != nullptr, made);
    if (made) {
        media_filter_destroy(filter);
    }
    EXPECT_EQ(g_filter.alive, 0);
    return made;
}

struct Row {
    Request request;
    std::string condition;
    std::string keys;
    int order;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.request.type << " " << row.request.content << " " << row.request.category;
}

class FilterProductTexts : public ::testing::TestWithParam<Row> {};

}  // namespace

TEST_P(FilterProductTexts, AreSetLetterByLetter) {
    const Row& row = GetParam();
    CQRAExtensionList extensions = two_of_each();

    ASSERT_TRUE(make_filter(row.request, &extensions));

    EXPECT_EQ(g_filter.storage, "S");
    EXPECT_EQ(g_filter.condition, row.condition);
    EXPECT_EQ(g_filter.condition_collation, row.condition == kNotSet ? 0 : 1);
    EXPECT_EQ(g_filter.order_keys, row.keys);
    EXPECT_EQ(g_filter.order, row.order);
    EXPECT_EQ(g_filter.order_collation, row.keys == kNotSet ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(
    Products, FilterProductTexts,
    ::testing::Values(
        Row{{1}, of({kImage}) + " AND MEDIA_FOLDER_ID = 'F'", "MEDIA_MODIFIED_DATE", 1},
        Row{{2, "CONTENT-PVR"}, of({kPvr}) + " AND UHD_FOLDER_ID = 'F'", "MEDIA_MODIFIED_DATE", 1},
        Row{{3, "CONTENT-PVR"}, of({kPvr}) + " AND UHD_FOLDER_ID = 'F'", "PVR_CHANNEL_NAME", 0},
        Row{{4, "CONTENT-PVR"}, of({kPvr}) + " AND UHD_FOLDER_ID = 'F'", "PVR_MAJOR,PVR_MINOR", 0},
        Row{{5, "CONTENT-PVR"}, kNotSet, "PVR_MODIFIED_DATE", 0},
        Row{{6, "CONTENT-PVR"}, kNotSet, "PVR_CHANNEL_NAME", 0},
        Row{{7, "CONTENT-PVR"}, kNotSet, "PVR_MAJOR,PVR_MINOR", 0},
        Row{{8}, "FOLDER_PATH = 'P'", kNotSet, -1},
        Row{{9}, "FOLDER_PARENT_FOLDER_ID = 'F'", "FOLDER_NAME", 0},
        Row{{10, "CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE"}, of({kImage}), "MEDIA_DISPLAY_NAME", 0},
        Row{{10, "CONTENT-IMAGE", "CATEGORY-FOLDER-DATE"}, of({kImage}), "MEDIA_MODIFIED_TIME", 1},
        Row{{10, "CONTENT-IMAGE", "CATEGORY-FOLDER"}, of({kImage}), kNotSet, -1},
        Row{{11, "CONTENT-PVR", "CATEGORY-FOLDER-TITLE"},
            of({kPvr}) + " AND UHD_FOLDER_ID = 'F'",
            "PVR_PROGRAM_TITLE",
            0},
        Row{{11, "CONTENT-PVR", "CATEGORY-FOLDER-DATE"},
            of({kPvr}) + " AND UHD_FOLDER_ID = 'F'",
            "PVR_START_TIME",
            1},
        Row{{11, "CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NAME"},
            of({kPvr}) + " AND UHD_FOLDER_ID = 'F'",
            "PVR_CHANNEL_NAME",
            0},
        Row{{11, "CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NUM"},
            of({kPvr}) + " AND UHD_FOLDER_ID = 'F'",
            "PVR_MAJOR,PVR_MINOR",
            0},
        Row{{11, "CONTENT-PVR", "CATEGORY-FOLDER"}, of({kPvr}) + " AND UHD_FOLDER_ID = 'F'", kNotSet, -1},
        Row{{12, "CONTENT-UHD", "", SEARCH_NONE, true},
            "UHD_FOLDER_ID = 'F' AND " + kUhd,
            "UHD_SUB_TYPE,UHD_FILE_NAME",
            0},
        Row{{12, "CONTENT-UHD"}, "UHD_FOLDER_ID = 'F' AND ( 0=1 )", "UHD_SUB_TYPE,UHD_FILE_NAME", 0},
        Row{{13, "CONTENT-UHD", "", SEARCH_NONE, true},
            "UHD_FOLDER_ID = 'F' AND UHD_SUB_TYPE = -1 AND " + kUhd,
            "UHD_SUB_TYPE",
            0},
        Row{{14, "", "", SEARCH_MEDIA},
            "MEDIA_DISPLAY_NAME LIKE '%K%' AND " + of({kImage, kVideo, kMusic}),
            "MEDIA_DISPLAY_NAME",
            0},
        Row{{15, "", "", SEARCH_PVR},
            "PVR_PROGRAM_TITLE LIKE '%K%' AND " + of({kPvr}),
            "PVR_PROGRAM_TITLE",
            0},
        Row{{16, "", "", SEARCH_UHD, true}, "UHD_FILE_NAME LIKE '%K%' AND " + kUhd, "UHD_FILE_NAME", 0},
        Row{{17, "CONTENT-IMAGE", "CATEGORY-TITLE"}, of({kImage}), "MEDIA_DISPLAY_NAME", 0},
        Row{{17, "CONTENT-IMAGE", "CATEGORY-DATE"}, of({kImage}), "MEDIA_MODIFIED_TIME", 1},
        Row{{17, "CONTENT-IMAGE", "CATEGORY-TRACK"}, of({kImage}), kNotSet, -1},
        Row{{18, "CONTENT-PVR", "CATEGORY-TITLE"}, of({kPvr}), "PVR_PROGRAM_TITLE", 0},
        Row{{18, "CONTENT-PVR", "CATEGORY-DATE"}, of({kPvr}), "PVR_START_TIME", 1},
        Row{{18, "CONTENT-PVR", "CATEGORY-CHANNEL_NAME"}, of({kPvr}), "PVR_CHANNEL_NAME", 0},
        Row{{18, "CONTENT-PVR", "CATEGORY-CHANNEL_NUM"}, of({kPvr}), "PVR_MAJOR,PVR_MINOR", 0},
        Row{{18, "CONTENT-PVR", "CATEGORY-FOLDER-TITLE"}, of({kPvr}), kNotSet, -1},
        Row{{18, "CONTENT-PVR-UNWATCHED", "CATEGORY-TITLE"},
            "PVR_CONTENT_WATCH = 0 AND " + of({kPvr}),
            "PVR_PROGRAM_TITLE",
            0},
        Row{{18, "CONTENT-PVR-SCHEDULED", "CATEGORY-TITLE"},
            "PVR_TIMER_RECORD = 1 AND " + of({kPvr}),
            "PVR_PROGRAM_TITLE",
            0},
        Row{{18, "CONTENT-IMAGE", "CATEGORY-TITLE"}, kNotSet, "PVR_PROGRAM_TITLE", 0},
        Row{{19, "CONTENT-UHD", "", SEARCH_NONE, true}, kUhd, "UHD_SUB_TYPE,UHD_FILE_NAME", 0},
        Row{{19, "CONTENT-UHD"}, "( 0=1 )", "UHD_SUB_TYPE,UHD_FILE_NAME", 0},
        Row{{20}, "FOLDER_PARENT_FOLDER_ID = 'F'", kNotSet, -1}, Row{{21}, of({kImage}), kNotSet, -1},
        Row{{22}, of({kImage}), kNotSet, -1},
        Row{{23, "", "", SEARCH_PHOTO}, of({kImage}), "MEDIA_MODIFIED_TIME", 1}));

INSTANTIATE_TEST_SUITE_P(
    ContentTypes, FilterProductTexts,
    ::testing::Values(Row{{21, "CONTENT-FOLDER"}, of({kImage, kVideo, kMusic, kPvr}), kNotSet, -1},
                      Row{{21, "CONTENT-FOLDER", "", SEARCH_NONE, true},
                          of({kImage, kVideo, kMusic, kPvr, kScsa}),
                          kNotSet,
                          -1},
                      Row{{21, "CONTENT-360IMAGE"}, of({kImage}) + " AND MEDIA_360 = 1 ", kNotSet, -1},
                      Row{{21, "CONTENT-MUSIC"}, of({kMusic}), kNotSet, -1},
                      Row{{21, "CONTENT-VIDEO"}, of({kVideo}), kNotSet, -1},
                      Row{{21, "CONTENT-VIDEO", "", SEARCH_NONE, true}, of({kVideo, kScsa}), kNotSet, -1},
                      Row{{21, "CONTENT-360VIDEO"}, of({kVideo}) + " AND MEDIA_360 = 1 ", kNotSet, -1},
                      Row{{21, "CONTENT-360VIDEO", "", SEARCH_NONE, true},
                          of({kVideo, kScsa}) + " AND MEDIA_360 = 1 ",
                          kNotSet,
                          -1},
                      Row{{21, "CONTENT-PVR"}, of({kPvr}), kNotSet, -1},
                      Row{{21, "CONTENT-PVR-SCHEDULED"}, of({kPvr}), kNotSet, -1},
                      Row{{21, "CONTENT-PVR-UNWATCHED"}, of({kPvr}), kNotSet, -1},
                      Row{{21, "CONTENT-SCSA"}, of({}), kNotSet, -1},
                      Row{{21, "CONTENT-SCSA", "", SEARCH_NONE, true}, of({kScsa}), kNotSet, -1},
                      Row{{21, "CONTENT-UHD", "", SEARCH_NONE, true}, of({}), kNotSet, -1},
                      Row{{14, "CONTENT-MUSIC", "", SEARCH_MEDIA},
                          "MEDIA_DISPLAY_NAME LIKE '%K%' AND " + of({kImage, kVideo, kMusic}),
                          "MEDIA_DISPLAY_NAME",
                          0},
                      Row{{14, "CONTENT-MUSIC", "", SEARCH_MEDIA, true},
                          "MEDIA_DISPLAY_NAME LIKE '%K%' AND " + of({kImage, kVideo, kMusic, kScsa}),
                          "MEDIA_DISPLAY_NAME",
                          0}));

TEST(CQRAFilterProduct, ImageListWithTheDefaultExtensionsBeginsWithJpgAndJpeg) {
    CQRAExtensionList extensions;
    extensions.SetDefaultExtension();
    ASSERT_TRUE(make_filter({21}, &extensions));
    EXPECT_EQ(g_filter.condition.rfind(
                  "( ( 0=1 ) or MEDIA_DISPLAY_NAME LIKE '%.jpg' or MEDIA_DISPLAY_NAME LIKE '%.jpeg'", 0),
              0u);
}

TEST(CQRAFilterProduct, ATypeWithoutExtensionsSelectsNothingAndIsNoFailure) {
    LogCapture log;
    CQRAExtensionList extensions;
    extensions.SetExtension("CONTENT-IMAGE", {"jpg"});
    ASSERT_TRUE(make_filter({21, "CONTENT-MUSIC"}, &extensions));
    EXPECT_EQ(g_filter.condition, "( ( 0=1 ) )");
    EXPECT_TRUE(log.contains("vExtension.empty() == true"));
}

TEST(CQRAFilterProduct, UhdTitlesWithoutExtensionsSelectNothing) {
    CQRAExtensionList extensions;
    ASSERT_TRUE(make_filter({19, "CONTENT-UHD", "", SEARCH_NONE, true}, &extensions));
    EXPECT_EQ(g_filter.condition, "( 0=1 )");
}

TEST(CQRAFilterProduct, AMissingExtensionListSelectsNothing) {
    LogCapture log;
    ASSERT_TRUE(make_filter({21}, nullptr));
    EXPECT_EQ(g_filter.condition, "( ( 0=1 ) )");
    EXPECT_TRUE(log.contains("m_pExtensionList == NULL"));
}

TEST(CQRAFilterProduct, AnUnknownContentTypeIsLogged) {
    LogCapture log;
    CQRAExtensionList extensions = two_of_each();
    ASSERT_TRUE(make_filter({21, "CONTENT-NONSENSE"}, &extensions));
    EXPECT_EQ(g_filter.condition, "( ( 0=1 ) )");
    EXPECT_TRUE(log.contains("MCF-Wrapper: unknown type"));
}

TEST(CQRAFilterProduct, AKeywordWithAQuoteReachesTheConditionUnchanged) {
    g_filter = {};
    CQRAExtensionList extensions = two_of_each();
    _SFilterParam param;
    param.strKeyword = "it's 100%_";
    param.nSearchType = SEARCH_PVR;
    param.pExtensionList = &extensions;
    CQRAFilterPVRSearch product;
    filter_h filter = nullptr;
    ASSERT_TRUE(product.InitParam(&param) && product.CreateAndSetFilter(filter));
    EXPECT_EQ(g_filter.condition, "PVR_PROGRAM_TITLE LIKE '%it's 100%_%' AND " + of({kPvr}));
}

TEST(CQRAFilterProduct, LargePhotoListLogsItsCondition) {
    LogCapture log;
    CQRAExtensionList extensions = two_of_each();
    ASSERT_TRUE(make_filter({23, "", "", SEARCH_PHOTO}, &extensions));
    EXPECT_TRUE(log.contains("CONDITION: " + of({kImage})));
}

TEST(CQRAFilterProduct, RefusesNullParameters) {
    LogCapture log;
    CQRAFilterFolderID product;
    EXPECT_FALSE(product.InitParam(nullptr));
    EXPECT_TRUE(log.contains("pParam == NULL."));
}

namespace {

struct Failure {
    int FilterRecorder::*result;
    const char* message;
};

class FilterProductFailures : public ::testing::TestWithParam<Failure> {};

}  // namespace

TEST_P(FilterProductFailures, LeaveNoFilterAndTellTheNumber) {
    LogCapture log;
    g_filter = {};
    g_filter.*GetParam().result = 77;
    _SFilterParam param;
    CQRAFilterFolderList product;
    filter_h filter = reinterpret_cast<filter_h>(&param);

    ASSERT_TRUE(product.InitParam(&param));
    EXPECT_FALSE(product.CreateAndSetFilter(filter));

    EXPECT_EQ(filter, nullptr);
    EXPECT_EQ(g_filter.alive, 0);
    EXPECT_TRUE(log.contains(GetParam().message)) << log.text();
}

INSTANTIATE_TEST_SUITE_P(
    Steps, FilterProductFailures,
    ::testing::Values(
        Failure{&FilterRecorder::create_result, "]] MCF-Wrapper: media_filter_create fail, ret[77]."},
        Failure{&FilterRecorder::storage_result, "]] MCF-Wrapper: media_filter_set_storage fail, ret[77]."},
        Failure{&FilterRecorder::condition_result, "]] media_filter_set_condition fail, ret[77]."},
        Failure{&FilterRecorder::order_result, "]] media_filter_set_order fail, ret[77]."}));

TEST(CQRAFilterFactory, KnowsEveryTypeFromOneToTwentyThreeAndNoOther) {
    CQRAFilterFactory factory;
    for (int type = 1; type <= 23; ++type) {
        EXPECT_NE(std::unique_ptr<CQRAFilterProductBase>(factory.CreateProduct(type)), nullptr) << type;
    }
    EXPECT_EQ(factory.CreateProduct(0), nullptr);
    EXPECT_EQ(factory.CreateProduct(24), nullptr);
    EXPECT_EQ(factory.CreateProduct(-1), nullptr);
}
