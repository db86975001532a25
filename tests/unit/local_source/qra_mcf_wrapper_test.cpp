#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"

#include <thread>

#include "libqra-agent/source/local-source/qra_obj_manager.h"
#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

/// Packages count as films here, since no built-in list has them.
constexpr const char* kExtensions =
    R"({"param_media_extension_image":["jpg"],"param_media_extension_video":["mp4","uvu"],)"
    R"("param_media_extension_music":["mp3"],"param_media_extension_pvr":["srf"],"param_media_extension_uhd":["um4"]})";

class CQRAMCFWrapperOnDrive : public SampleDrive {
protected:
    CQRAMCFWrapperOnDrive() { EXPECT_TRUE(wrapper.ConnectMCF()); }

    void put_sample_files() {
        write("show/one.jpg");
        write("show/two.mp4");
        write("show/deep/three.jpg");
        write_recording("show/four", "program_title=News one\nchannel_name=BBC\nmajor=4\nminor=1\n");
        write("show/five.um4");
        write("show/six.uvu");
        write("show/seven.mp3");
    }

    bool init(const std::string& relative, const std::string& content, const std::string& category,
              const std::string& keyword = "", bool uhd = false) {
        _SMCFParam param;
        param.strRootPath = path(relative);
        param.strContentType = content;
        param.strCategory = category;
        param.strKeyword = keyword;
        param.strExtension = kExtensions;
        param.bIsUHDDevice = uhd;
        return wrapper.InitParam(&param);
    }

    /// Asks for a list; its rows are in `rows`.
    bool request() {
        rows.clear();
        return wrapper.RequestMCFMedia(nullptr, add_row, this);
    }

    bool request(const std::string& relative, const std::string& content, const std::string& category,
                 const std::string& keyword = "", bool uhd = false) {
        return init(relative, content, category, keyword, uhd) && request();
    }

    /// Asks for groups; they are in `rows`, as "name: count".
    bool request_groups() {
        rows.clear();
        return wrapper.RequestMCFGroup(add_group, this);
    }

    using Rows = std::vector<std::string>;
    CQRAMCFWrapper wrapper;
    Rows rows;  ///< each as the number of its EMCType and its file name

private:
    static bool add_row(const std::string& id, CMedia& media, void* test) {
        auto* const self = static_cast<CQRAMCFWrapperOnDrive*>(test);
        char* media_id = nullptr;
        EXPECT_TRUE(self->wrapper.GetFieldValue(media, "ID_QRA", &media_id));
        EXPECT_EQ(take(media_id), id);
        char* file = nullptr;
        EXPECT_TRUE(self->wrapper.GetFieldValue(media, "FILE_PATH", &file));
        self->rows.push_back(std::to_string(media.GetType()) + " " +
                             std::filesystem::path(take(file)).filename().string());
        return false;
    }

    static bool add_group(const std::string& name, int count, void* test) {
        static_cast<CQRAMCFWrapperOnDrive*>(test)->rows.push_back(name + ": " + std::to_string(count));
        return false;
    }
};

/// With its files on the drive, and the drive scanned.
class CQRAMCFWrapperOnScannedDrive : public CQRAMCFWrapperOnDrive {
protected:
    CQRAMCFWrapperOnScannedDrive() {
        put_sample_files();
        scan();
    }
};

}  // namespace

TEST_F(CQRAMCFWrapperOnDrive, ConnectsAndDisconnects) {
    EXPECT_TRUE(wrapper.DisconnectMCF());
    faults::fail("media_content_connect");
    faults::fail("media_content_disconnect");
    EXPECT_FALSE(wrapper.ConnectMCF());
    EXPECT_FALSE(wrapper.DisconnectMCF());
    EXPECT_TRUE(log.contains("media_content_connect fail, ret[4711]."));
}

TEST_F(CQRAMCFWrapperOnDrive, RefusesNullParameters) {
    EXPECT_FALSE(wrapper.InitParam(nullptr));
    EXPECT_TRUE(log.contains("MCF-Wrapper: pParam == NULL."));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, TheStorageOfAPathHasAnId) {
    char* of_drive = nullptr;
    char* of_folder = nullptr;
    ASSERT_TRUE(init("", "", "") && wrapper.GetStorageId(&of_drive));
    CQRAMCFWrapper other;
    _SMCFParam param;
    param.strRootPath = path("show/deep");
    ASSERT_TRUE(other.InitParam(&param) && other.GetStorageId(&of_folder));
    const std::string id = take(of_drive);
    EXPECT_FALSE(id.empty());
    EXPECT_EQ(take(of_folder), id);
    EXPECT_FALSE(wrapper.GetStorageId(nullptr));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AStorageThatWasFoundIsKept) {
    char* before = nullptr;
    char* after = nullptr;
    ASSERT_TRUE(init("show", "", "") && wrapper.GetStorageId(&before));
    _SMCFParam param;
    param.strRootPath = "/elsewhere";
    ASSERT_TRUE(wrapper.InitParam(&param) && wrapper.GetStorageId(&after));
    EXPECT_EQ(take(before), take(after));
    EXPECT_EQ(faults::count("media_storage_foreach_storage_from_db"), 1);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, APathOnNoStorageFailsEveryRequest) {
    for (const char* const root : {"/home/user", "", "/mn", "relative"}) {
        for (const char* const category :
             {"CATEGORY-TITLE", "CATEGORY-FOLDER", "CATEGORY-KEYWORD-SEARCH", "CATEGORY-MSC-PHOTO"}) {
            _SMCFParam param;
            param.strRootPath = root;
            param.strContentType = "CONTENT-IMAGE";
            param.strCategory = category;
            ASSERT_TRUE(wrapper.InitParam(&param));
            EXPECT_FALSE(request()) << root << category;
            EXPECT_TRUE(rows.empty());
        }
    }
    EXPECT_TRUE(log.contains("m_strRoot[/home/user]"));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AStorageThatIsNotThereHasNoId) {
    char* id = nullptr;
    for (const std::string& root : {std::string("/mnt/stick/photos"), this->root() + "/media/USBDrive7/x",
                                    this->root() + "/media/usb/a1"}) {
        _SMCFParam param;
        param.strRootPath = root;
        ASSERT_TRUE(wrapper.InitParam(&param));
        EXPECT_FALSE(wrapper.GetStorageId(&id)) << root;
    }
    EXPECT_EQ(log.count("MCF-Wrapper: m_strStorageId.empty() == true."), 3);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AFailedStepOfTheStorageLookUpIsFalseAndLeavesNoFilter) {
    for (const char* const function : {"media_filter_create", "media_filter_set_condition",
                                       "media_storage_foreach_storage_from_db", "media_storage_get_id"}) {
        faults::reset();
        faults::fail(function);
        char* id = nullptr;
        ASSERT_TRUE(init("show", "", ""));
        EXPECT_FALSE(wrapper.GetStorageId(&id)) << function;
        EXPECT_TRUE(log.contains(std::string(function) + " fail, ret[4711].")) << function;
        EXPECT_EQ(faults::count("media_filter_destroy"),
                  function == std::string("media_filter_create") ? 0 : 1);
    }
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AFolderListHasFoldersFirst) {
    EXPECT_TRUE(request("show", "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE"));
    EXPECT_EQ(rows, (Rows{"1 deep", "3 four.srf", "2 one.jpg", "2 seven.mp3", "5 six.uvu", "2 two.mp4"}))
        << log.text();
}

TEST_F(CQRAMCFWrapperOnScannedDrive, UhdFolderCategoriesAddTheUhdTitlesOfADeviceThatShowsThem) {
    EXPECT_TRUE(request("show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER", "", true));
    EXPECT_EQ(rows, (Rows{"1 deep", "4 five.um4", "5 six.uvu", "2 two.mp4"}));
    EXPECT_TRUE(request("show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER-WITHUPFOLDER", "", true));
    EXPECT_EQ(rows.size(), 4u);
    EXPECT_TRUE(request("show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER"));
    EXPECT_EQ(rows, (Rows{"1 deep", "5 six.uvu", "2 two.mp4"}));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, RecordingsOfAFolderComeFromTheirOwnTable) {
    for (const char* const category : {"CATEGORY-FOLDER-CHANNEL_NAME", "CATEGORY-FOLDER-CHANNEL_NUM",
                                       "CATEGORY-FOLDER-TITLE", "CATEGORY-FOLDER-DATE"}) {
        faults::reset();
        EXPECT_TRUE(request("show", "CONTENT-PVR", category));
        EXPECT_EQ(rows, (Rows{"1 deep", "3 four.srf"})) << category;
        EXPECT_EQ(faults::count("media_pvr_foreach_media_from_db"), 1);
        EXPECT_EQ(faults::count("media_folder_foreach_media_from_db"), 0);
    }
    EXPECT_TRUE(request("show", "CONTENT-PVR", "CATEGORY-FOLDER"));
    EXPECT_EQ(faults::count("media_folder_foreach_media_from_db"), 1);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AListOfTheWholeStorageComesFromTheTableOfItsKind) {
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, (Rows{"2 one.jpg", "2 three.jpg"}));
    EXPECT_TRUE(request("show", "CONTENT-PVR", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{"3 four.srf"});
    EXPECT_TRUE(request("show", "CONTENT-PVR-UNWATCHED", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{"3 four.srf"});
    EXPECT_TRUE(request("show", "CONTENT-PVR-SCHEDULED", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{});
    EXPECT_EQ(faults::count("media_pvr_foreach_media_from_db"), 3);
    EXPECT_TRUE(request("show", "CONTENT-UHD", "CATEGORY-TITLE", "", true));
    EXPECT_EQ(rows, Rows{"4 five.um4"});
    EXPECT_EQ(faults::count("media_content_scan_folder_v2"), 0);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AKeywordIsLookedForInEveryKind) {
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-KEYWORD-SEARCH", "e", true));
    EXPECT_EQ(rows, (Rows{"2 one.jpg", "2 seven.mp3", "2 three.jpg", "3 four.srf", "4 five.um4"}));
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-KEYWORD-SEARCH", "ONE"));
    EXPECT_EQ(rows, (Rows{"2 one.jpg", "3 four.srf"}));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, TheLastStepOfAKeywordSearchDecides) {
    faults::fail("media_info_foreach_media_from_db");
    EXPECT_TRUE(request("show", "", "CATEGORY-KEYWORD-SEARCH", "one"));
    EXPECT_EQ(rows, Rows{"3 four.srf"});
    EXPECT_TRUE(log.contains("MCF-Wrapper: m_RequestListOfSearchAll fail, m_eSearchType[1], ret[4711]."));

    faults::reset();
    faults::fail("media_pvr_foreach_media_from_db");
    EXPECT_FALSE(request("show", "", "CATEGORY-KEYWORD-SEARCH", "one"));
    EXPECT_EQ(rows, Rows{"2 one.jpg"});
    EXPECT_TRUE(request("show", "", "CATEGORY-KEYWORD-SEARCH", "five", true));
    EXPECT_EQ(rows, Rows{"4 five.um4"});

    faults::reset();
    faults::fail("media_uhd_foreach_media_from_db");
    EXPECT_FALSE(request("show", "", "CATEGORY-KEYWORD-SEARCH", "five", true));
    EXPECT_TRUE(log.contains("m_eSearchType[3], ret[4711]."));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AKeywordWithAQuoteAtWorstFailsItsRequest) {
    request("show", "", "CATEGORY-KEYWORD-SEARCH", "it's' OR 1=1 --");
    EXPECT_TRUE(request("show", "", "CATEGORY-KEYWORD-SEARCH", "one"));
    EXPECT_EQ(rows, (Rows{"2 one.jpg", "3 four.srf"}));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AKeywordThatBreaksTheConditionFailsWithTheConditionInTheLog) {
    const LogCapture log;

    EXPECT_FALSE(request("show", "", "CATEGORY-KEYWORD-SEARCH", "it's"));

    EXPECT_EQ(rows, Rows{});
    EXPECT_TRUE(log.contains("PVR_PROGRAM_TITLE LIKE '%it's%'")) << log.text();
    EXPECT_TRUE(log.contains("MCF-Wrapper: m_RequestListOfSearchAll fail, m_eSearchType[2]")) << log.text();
}

TEST_F(CQRAMCFWrapperOnScannedDrive, ASearchDoesNotDecideWhatTheNextListSelects) {
    EXPECT_TRUE(request("show", "", "CATEGORY-KEYWORD-SEARCH", "one"));
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE"));
    EXPECT_EQ(rows, (Rows{"1 deep", "2 one.jpg"}));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, PhotosOfTheWholeStorage) {
    EXPECT_TRUE(request("show", "CONTENT-MUSIC", "CATEGORY-MSC-PHOTO"));
    EXPECT_EQ(rows.size(), 2u);
    EXPECT_TRUE(log.contains("CONDITION: "));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AStepOfAFolderListThatFailsEndsTheRequest) {
    const struct {
        const char* function;
        const char* message;
    } steps[] = {
        {"media_folder_foreach_folder_from_db", "MCF-Wrapper: media_folder_foreach_folder_from_db fail"},
        {"media_uhd_foreach_media_from_db", "MCF-Wrapper: m_RequestUHDList fail."},
        {"media_folder_foreach_media_from_db", "MCF-Wrapper: m_RequestMediaList fail."},
        {"media_storage_get_scan_status", "MCF-Wrapper: media_storage_get_scan_status fail, ret[4711]."},
        {"media_folder_get_folder_id", "MCF-Wrapper: m_strFolderId.empty() == true."},
    };
    for (const auto& step : steps) {
        faults::reset();
        faults::fail(step.function);
        EXPECT_FALSE(request("show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER", "", true)) << step.function;
        EXPECT_TRUE(log.contains(step.message)) << step.message << log.text();
    }
    faults::reset();
    faults::fail("media_pvr_foreach_media_from_db");
    EXPECT_FALSE(request("show", "CONTENT-PVR", "CATEGORY-FOLDER-TITLE"));
    EXPECT_TRUE(log.contains("MCF-Wrapper: m_RequestPVRList fail."));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AFolderThatIsNotThereFails) {
    EXPECT_FALSE(request("nowhere", "CONTENT-FOLDER", "CATEGORY-FOLDER"));
    EXPECT_TRUE(log.contains("MCF-Wrapper: m_FindFolderCache failed. Get folder id by path"));
    EXPECT_TRUE(log.contains("MCF-Wrapper: m_strFolderId.empty() == true."));
}

TEST_F(CQRAMCFWrapperOnDrive, AFolderWithAQuoteInItsNameIsFound) {
    write("it's/one.jpg");
    scan();
    EXPECT_TRUE(request("it's", "CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE"));
    EXPECT_EQ(rows, Rows{"2 one.jpg"});
}

TEST_F(CQRAMCFWrapperOnScannedDrive, EveryFilterIsDestroyed) {
    for (const char* const category :
         {"CATEGORY-UHD-FOLDER", "CATEGORY-KEYWORD-SEARCH", "CATEGORY-TITLE", "CATEGORY-MSC-PHOTO"}) {
        EXPECT_TRUE(request("show", "CONTENT-VIDEO", category, "e", true));
    }
    EXPECT_TRUE(init("show", "CONTENT-VIDEO", "CATEGORY-FOLDER-DATE") && request() && request_groups());
    EXPECT_EQ(faults::count("media_filter_create"), faults::count("media_filter_destroy"));
    EXPECT_GT(faults::count("media_filter_create"), 8);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, ARowThatCannotBeReadIsLeftOut) {
    const struct {
        const char* function;
        Rows rows;
    } cases[] = {
        {"media_folder_get_name", {"3 four.srf", "2 one.jpg", "2 seven.mp3", "5 six.uvu", "2 two.mp4"}},
        {"media_folder_clone", {"3 four.srf", "2 one.jpg", "2 seven.mp3", "5 six.uvu", "2 two.mp4"}},
        {"media_info_get_media_id", {"1 deep"}},
        {"media_info_clone", {"1 deep", "3 four.srf", "5 six.uvu"}},
        {"media_pvr_get_pvr_from_db", {"1 deep", "2 one.jpg", "2 seven.mp3", "5 six.uvu", "2 two.mp4"}},
    };
    for (const auto& row : cases) {
        faults::reset();
        faults::fail(row.function);
        EXPECT_TRUE(request("show", "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE")) << row.function;
        EXPECT_EQ(rows, row.rows) << row.function;
    }
    EXPECT_TRUE(log.contains("MCF-Wrapper: get pvr fail, ret[4711]."));
    EXPECT_TRUE(log.contains("MCF-Wrapper: media_info_get_media_id fail, ret[4711]."));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AMediaRowWithoutAPathIsLeftOut) {
    // The test's own callback reads the path too: it must not be asked for any row.
    faults::fail("media_info_get_file_path");
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{});
}

TEST_F(CQRAMCFWrapperOnScannedDrive, ARowIsLeftOutOfTheOtherTablesToo) {
    faults::fail("media_pvr_get_media_id");
    faults::fail("media_uhd_clone");
    EXPECT_TRUE(request("show", "CONTENT-PVR", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{});
    EXPECT_TRUE(request("show", "CONTENT-UHD", "CATEGORY-TITLE", "", true));
    EXPECT_EQ(rows, Rows{});
    faults::reset();
    faults::fail("media_pvr_clone");
    faults::fail("media_uhd_get_media_id");
    EXPECT_TRUE(request("show", "CONTENT-PVR", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{});
    EXPECT_TRUE(request("show", "CONTENT-UHD", "CATEGORY-TITLE", "", true));
    EXPECT_EQ(rows, Rows{});
}

TEST_F(CQRAMCFWrapperOnScannedDrive, RecordingsAndUhdTitlesAmongTheMediaRowsAreFetchedById) {
    faults::set_media_type(5);
    faults::give_no_row();
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{});
    EXPECT_EQ(log.count("MCF-Wrapper: pvr == NULL"), 2);
    faults::set_media_type(6);
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-TITLE"));
    EXPECT_EQ(log.count("MCF-Wrapper: uhd == NULL"), 2);
    faults::fail("media_uhd_get_uhd_from_db");
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-TITLE"));
    EXPECT_EQ(log.count("MCF-Wrapper: get uhd fail, ret[4711]."), 2);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, EachMediaTypeBecomesAnEntryOfItsKind) {
    for (const int type : {0, 1, 2, 3, 4}) {
        faults::set_media_type(type);
        EXPECT_TRUE(request("show/deep", "CONTENT-IMAGE", "CATEGORY-FOLDER"));
        EXPECT_EQ(rows, Rows{"2 three.jpg"}) << type;
    }
    faults::set_media_type(7);
    EXPECT_TRUE(request("show/deep", "CONTENT-IMAGE", "CATEGORY-FOLDER"));
    EXPECT_EQ(rows, Rows{"5 three.jpg"});
    faults::set_media_type(8);
    EXPECT_TRUE(request("show/deep", "CONTENT-IMAGE", "CATEGORY-FOLDER"));
    EXPECT_EQ(rows, Rows{});
    faults::reset();
    faults::fail("media_info_get_media_type");
    EXPECT_TRUE(request("show/deep", "CONTENT-IMAGE", "CATEGORY-FOLDER"));
    EXPECT_EQ(rows, Rows{"2 three.jpg"});
}

TEST_F(CQRAMCFWrapperOnScannedDrive, GroupsOfAFolderByDate) {
    ASSERT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-FOLDER-DATE"));
    ASSERT_TRUE(request_groups());
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].substr(10), ": 1");
}

TEST_F(CQRAMCFWrapperOnScannedDrive, GroupsOfRecordingsByChannel) {
    ASSERT_TRUE(request("show", "CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NAME"));
    EXPECT_TRUE(request_groups());
    EXPECT_EQ(rows, Rows{"BBC: 1"});
    ASSERT_TRUE(request("show", "CONTENT-PVR", "CATEGORY-CHANNEL_NUM"));
    EXPECT_TRUE(request_groups());
    EXPECT_EQ(rows, Rows{"4-1: 1"});
}

TEST_F(CQRAMCFWrapperOnScannedDrive, ACategoryWithoutGroupsFails) {
    ASSERT_TRUE(init("show", "CONTENT-MUSIC", "CATEGORY-ARTIST"));
    EXPECT_FALSE(request_groups());
    EXPECT_TRUE(log.contains("MCF-Wrapper:nFilterType == Filter_None."));
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AGroupQueryThatFailsIsFalse) {
    faults::fail("media_group_foreach_group_and_count_from_db");
    ASSERT_TRUE(init("show", "CONTENT-IMAGE", "CATEGORY-FOLDER-DATE"));
    EXPECT_FALSE(request_groups());
    EXPECT_TRUE(
        log.contains("MCF-Wrapper: media_group_foreach_group_and_count_from_db fail, "
                     "m_strCategory[CATEGORY-FOLDER-DATE], ret[4711]."));
}

TEST_F(CQRAMCFWrapperOnDrive, FilesAreInsertedAndRemoved) {
    write("new.jpg");
    ASSERT_TRUE(wrapper.InsertToDB(path("new.jpg").c_str()));
    EXPECT_EQ(faults::count("media_info_destroy"), 1);
    ASSERT_TRUE(request("", "CONTENT-IMAGE", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{"2 new.jpg"});

    char* id = nullptr;
    media_info_foreach_media_from_db(
        nullptr,
        [](media_info_h row, void* out) {
            return media_info_get_media_id(row, static_cast<char**>(out)) == 0;
        },
        &id);
    const std::string media_id = take(id);
    EXPECT_TRUE(wrapper.RemoveFromDB(media_id.c_str()));
    EXPECT_FALSE(wrapper.RemoveFromDB(media_id.c_str()));
    EXPECT_FALSE(wrapper.InsertToDB(path("none.jpg").c_str()));
    ASSERT_TRUE(request("", "CONTENT-IMAGE", "CATEGORY-TITLE"));
    EXPECT_EQ(rows, Rows{});
}

TEST_F(CQRAMCFWrapperOnScannedDrive, NumbersOfAMediaRowAreReadAndWrittenByItsId) {
    media_info_h row = nullptr;
    ASSERT_EQ(media_info_insert_to_db(path("show/one.jpg").c_str(), &row), 0);
    char* id = nullptr;
    ASSERT_EQ(media_info_get_media_id(row, &id), 0);
    media_info_destroy(row);
    const std::string media_id = take(id);
    faults::reset();

    int value = -1;
    EXPECT_TRUE(wrapper.SetItemValueMcf(media_id.c_str(), "PLAYED_COUNT", 12));
    EXPECT_TRUE(wrapper.GetItemValueMcf(media_id.c_str(), "PLAYED_COUNT", &value));
    EXPECT_EQ(value, 12);
    EXPECT_FALSE(wrapper.GetItemValueMcf(media_id.c_str(), "NONSENSE", &value));
    EXPECT_FALSE(wrapper.GetItemValueMcf("no such id", "PLAYED_COUNT", &value));
    EXPECT_FALSE(wrapper.SetItemValueMcf("no such id", "PLAYED_COUNT", 1));
    EXPECT_EQ(value, 12);
    EXPECT_EQ(faults::count("media_info_destroy"), 3);
}

TEST_F(CQRAMCFWrapperOnDrive, NumbersByIdNeedTheirArguments) {
    int value = 0;
    EXPECT_FALSE(wrapper.GetItemValueMcf(nullptr, "PLAYED_COUNT", &value));
    EXPECT_FALSE(wrapper.GetItemValueMcf("1", nullptr, &value));
    EXPECT_FALSE(wrapper.GetItemValueMcf("1", "PLAYED_COUNT", nullptr));
    EXPECT_FALSE(wrapper.SetItemValueMcf(nullptr, "PLAYED_COUNT", 1));
    EXPECT_FALSE(wrapper.SetItemValueMcf("1", nullptr, 1));
    EXPECT_EQ(log.count("MCF-Wrapper: SetItemValueMcf param error "), 5);
}

// Scans.

TEST_F(CQRAMCFWrapperOnDrive, AFolderThatIsNotKnownYetIsScannedFirst) {
    put_sample_files();
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE"));
    EXPECT_EQ(rows, (Rows{"1 deep", "2 one.jpg"}));
    EXPECT_EQ(faults::count("media_content_scan_folder_v2"), 1);
}

TEST_F(CQRAMCFWrapperOnDrive, PhotosScanTheWholeFolder) {
    put_sample_files();
    EXPECT_TRUE(request("", "CONTENT-IMAGE", "CATEGORY-MSC-PHOTO"));
    EXPECT_EQ(rows.size(), 2u);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AStorageThatIsFullyScannedIsNotScannedAgain) {
    EXPECT_TRUE(request("show", "CONTENT-IMAGE", "CATEGORY-FOLDER-TITLE"));
    EXPECT_EQ(faults::count("media_content_scan_folder_v2"), 0);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AStorageOfAnInvalidStatusFails) {
    char* id = nullptr;
    ASSERT_TRUE(init("show", "CONTENT-IMAGE", "CATEGORY-FOLDER") && wrapper.GetStorageId(&id));
    std::free(id);
    ASSERT_EQ(media_content_admin_detach("USBDrive1"), 0);
    EXPECT_FALSE(request());
    EXPECT_TRUE(log.contains("MCF-Wrapper: invaild status."));
}

TEST_F(CQRAMCFWrapperOnDrive, AScanThatCannotStartFails) {
    put_sample_files();
    faults::fail("media_content_scan_folder_v2");
    EXPECT_FALSE(request("show", "CONTENT-IMAGE", "CATEGORY-FOLDER"));
    EXPECT_TRUE(log.contains("MCF-Wrapper: media_content_scan_folder_v2 fail, ret[4711]."));
}

namespace {

/// A request that waits for a scan, on a thread of its own, as a source makes it.
class CQRAMCFWrapperScanning : public CQRAMCFWrapperOnDrive {
protected:
    CQRAMCFWrapperScanning() {
        put_sample_files();
        faults::hold_scans();
        EXPECT_TRUE(init("show", "CONTENT-IMAGE", "CATEGORY-FOLDER"));
        requester_ = std::thread([this] { result_ = request(); });
        EXPECT_TRUE(faults::wait_for_scan());
    }
    ~CQRAMCFWrapperScanning() override {
        if (requester_.joinable()) {
            requester_.join();
        }
    }

    bool result() {
        requester_.join();
        return result_;
    }

private:
    bool result_ = false;
    std::thread requester_;
};

}  // namespace

TEST_F(CQRAMCFWrapperScanning, ProgressDoesNotEndTheWait) {
    faults::answer_scan(0, MEDIA_SCAN_PHASE_STARTED);
    faults::answer_scan(0, MEDIA_SCAN_PHASE_PROGRESS);
    faults::answer_scan(3, MEDIA_SCAN_PHASE_PROGRESS);
    EXPECT_FALSE(result());
    EXPECT_TRUE(log.contains("MCF-Wrapper: scan fail or exit qra during scanning"));
}

TEST_F(CQRAMCFWrapperScanning, TheListGoesOnWhenTheScanHasFinished) {
    faults::answer_scan(0, MEDIA_SCAN_PHASE_FINISHED);
    // The folder was not really scanned, so that it has no id: the request came that far.
    EXPECT_FALSE(result());
    EXPECT_FALSE(log.contains("MCF-Wrapper: scan fail or exit qra during scanning"));
    EXPECT_TRUE(log.contains("MCF-Wrapper: m_strFolderId.empty() == true."));
}

TEST_F(CQRAMCFWrapperScanning, AStopWakesTheWaiterAndALateAnswerChangesNothing) {
    wrapper.StopRequest();
    EXPECT_FALSE(result());
    EXPECT_EQ(faults::count("media_content_cancel_scan_folder"), 1);
    // The real scanner knows nothing of a scan that is held.
    EXPECT_TRUE(log.contains("MCF-Wrapper: media_content_cancel_scan_folder fail"));
    EXPECT_TRUE(log.contains("MCF-Wrapper: scan fail or exit qra during scanning"));

    faults::answer_scan(0, MEDIA_SCAN_PHASE_PROGRESS);
    faults::answer_scan(0, MEDIA_SCAN_PHASE_FINISHED);
    EXPECT_EQ(log.count("MCF-Wrapper: Current MCF Wrapper Obj does not exist!"), 2);
}

TEST_F(CQRAMCFWrapperOnDrive, AnAnswerAfterTheWrapperHasGoneTouchesNothing) {
    put_sample_files();
    faults::hold_scans();
    auto other = std::make_unique<CQRAMCFWrapper>();
    _SMCFParam param;
    param.strRootPath = path("show");
    param.strCategory = "CATEGORY-FOLDER";
    ASSERT_TRUE(other->InitParam(&param));
    std::thread requester([&] { other->RequestMCFMedia(nullptr, nullptr, nullptr); });
    ASSERT_TRUE(faults::wait_for_scan());
    other->StopRequest();
    requester.join();
    other.reset();

    faults::answer_scan(0, MEDIA_SCAN_PHASE_FINISHED);

    EXPECT_TRUE(log.contains("MCF-Wrapper: Current MCF Wrapper Obj does not exist!"));
}

TEST_F(CQRAMCFWrapperScanning, AnAnswerForAnObjectThatLaterLiesAtTheSamePlaceIsNotTaken) {
    wrapper.StopRequest();
    EXPECT_FALSE(result());
    // As if a new wrapper had been made where an old one lay, and were known.
    CQRAObjManager::GetInstance()->AddObj(reinterpret_cast<qra_handle_value_t>(&wrapper));
    faults::answer_scan(0, MEDIA_SCAN_PHASE_FINISHED);
    EXPECT_FALSE(log.contains("MCF-Wrapper: Current MCF Wrapper Obj does not exist!"));
}

TEST_F(CQRAMCFWrapperOnDrive, AWrapperThatWasStoppedStartsNoScan) {
    put_sample_files();
    wrapper.StopRequest();
    EXPECT_FALSE(request("show", "CONTENT-IMAGE", "CATEGORY-FOLDER"));
    EXPECT_EQ(faults::count("media_content_scan_folder_v2"), 0);
    EXPECT_EQ(faults::count("media_content_cancel_scan_folder"), 0);
}

TEST_F(CQRAMCFWrapperOnDrive, AStopWhileNothingIsScannedCancelsNothing) {
    wrapper.StopRequest();
    EXPECT_EQ(faults::count("media_content_cancel_scan_folder"), 0);
}

// Thumbnails of folders.

TEST_F(CQRAMCFWrapperOnDrive, AFolderThatHasNotBeenScannedHasNoThumbnail) {
    put_sample_files();
    char* thumb = nullptr;
    ASSERT_TRUE(init("show", "CONTENT-IMAGE", ""));
    EXPECT_FALSE(wrapper.GetFolderThumbPath(4, &thumb));
    EXPECT_EQ(thumb, nullptr);
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AThumbnailShowsAsManyMediaAsAskedFor) {
    char* thumb = nullptr;
    ASSERT_TRUE(init("show", "CONTENT-VIDEO", ""));
    ASSERT_TRUE(wrapper.GetFolderThumbPath(1, &thumb));
    EXPECT_EQ(take(thumb), "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_items\":[\"" +
                               path("show/six.uvu") + "\"],\"qra_folder_thumbnail_itemstype\":[\"11\"]," +
                               "\"qra_folder_thumbnail_type\":0}\n");
    ASSERT_TRUE(wrapper.GetFolderThumbPath(9, &thumb));
    EXPECT_EQ(take(thumb), "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_items\":[\"" +
                               path("show/six.uvu") + "\",\"" + path("show/two.mp4") +
                               "\"],\"qra_folder_thumbnail_itemstype\":[\"11\",\"3\"]," +
                               "\"qra_folder_thumbnail_type\":0}\n");
}

TEST_F(CQRAMCFWrapperOnDrive, AThumbnailTellsFoldersOfMediaFromEmptyOnes) {
    write("outer/inner/one.jpg");
    write("empty/readme.txt");
    scan();
    char* thumb = nullptr;
    ASSERT_TRUE(init("outer", "CONTENT-IMAGE", "") && wrapper.GetFolderThumbPath(4, &thumb));
    EXPECT_EQ(take(thumb), "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_type\":1}\n");
    ASSERT_TRUE(init("outer/inner", "CONTENT-MUSIC", "") && wrapper.GetFolderThumbPath(4, &thumb));
    EXPECT_EQ(take(thumb), "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_type\":2}\n");
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AThumbnailWhoseListFailsTellsSo) {
    for (const char* const function : {"media_folder_foreach_media_from_db", "media_filter_set_offset"}) {
        faults::reset();
        faults::fail(function);
        char* thumb = nullptr;
        ASSERT_TRUE(init("show", "CONTENT-IMAGE", "") && wrapper.GetFolderThumbPath(4, &thumb));
        EXPECT_EQ(take(thumb), "{\"qra_folder_thumbnail_error_code\":1}\n") << function;
    }
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AThumbnailsCountThatFailsCountsAsNone) {
    char* thumb = nullptr;
    faults::fail("media_folder_get_media_count_from_db");
    ASSERT_TRUE(init("show", "CONTENT-IMAGE", "") && wrapper.GetFolderThumbPath(4, &thumb));
    EXPECT_EQ(take(thumb), "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_type\":1}\n");
    faults::fail("media_folder_get_folder_count_from_db");
    ASSERT_TRUE(init("show", "CONTENT-IMAGE", "") && wrapper.GetFolderThumbPath(4, &thumb));
    EXPECT_EQ(take(thumb), "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_type\":2}\n");
}

TEST_F(CQRAMCFWrapperOnScannedDrive, AThumbnailNeedsTheFoldersStatusAndId) {
    char* thumb = nullptr;
    faults::fail("media_folder_get_scan_status");
    ASSERT_TRUE(init("show", "CONTENT-IMAGE", ""));
    EXPECT_FALSE(wrapper.GetFolderThumbPath(4, &thumb));
    faults::reset();
    faults::fail("media_folder_get_folder_id");
    EXPECT_FALSE(wrapper.GetFolderThumbPath(4, &thumb));
    EXPECT_EQ(thumb, nullptr);
}
