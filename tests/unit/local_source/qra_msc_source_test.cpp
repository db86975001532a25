#include "libqra-agent/source/local-source/qra_msc_source.h"

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/local-source/qra_obj_manager.h"
#include "tests/fakes/fake_extractor.h"
#include "tests/unit/local_source/sample_drive.h"
#include "tests/unit/scsa/package_xml.h"

namespace {

namespace faults = media_content_faults;

/// Packages count as films here, since no built-in list has them.
char g_extensions[] =
    R"({"param_media_extension_image":["jpg","txt2"],"param_media_extension_video":["mp4","uvu"],)"
    R"("param_media_extension_music":["mp3"],"param_media_extension_pvr":["srf"],"param_media_extension_uhd":["um4"]})";

/// Collects the completions of a source.
class Completions {
public:
    static bool on_complete(qra_event_e event, void* completions) {
        auto* const self = static_cast<Completions*>(completions);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->events_.push_back(event);
        self->threads_.push_back(std::this_thread::get_id());
        self->came_.notify_all();
        return true;
    }

    /// Waits for the next completion; -1 if none comes within 30 seconds.
    int wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!came_.wait_for(lock, std::chrono::seconds(30), [&] { return events_.size() > taken_; })) {
            return -1;
        }
        return events_[taken_++];
    }

    std::thread::id last_thread() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return threads_.back();
    }

    size_t count() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return events_.size();
    }

private:
    std::mutex mutex_;
    std::condition_variable came_;
    std::vector<qra_event_e> events_;
    std::vector<std::thread::id> threads_;
    size_t taken_ = 0;
};

struct Request {
    std::string path;
    std::string content = "CONTENT-FOLDER";
    std::string category = "CATEGORY-FOLDER-TITLE";
    std::string keyword = {};
    bool uhd = false;
};

class CQRAMSCSourceOnDrive : public SampleDrive {
protected:
    ~CQRAMSCSourceOnDrive() override {
        if (source.IsOpen()) {
            source.Close();
        }
    }

    void open() {
        ASSERT_TRUE(source.Open());
        ASSERT_TRUE(source.SetCallback(Completions::on_complete, &completions));
    }

    bool execute(const Request& request) {
        std::string root = path(request.path);
        qra_general_s param;
        param.szPath = root.data();
        param.szContentType = const_cast<char*>(request.content.c_str());
        param.szSortCategory = const_cast<char*>(request.category.c_str());
        param.szKeyWord = const_cast<char*>(request.keyword.c_str());
        param.szExtension = g_extensions;
        param.bIsUHDMeta = request.uhd;
        return source.Execute(&param);
    }

    /// Runs a request to its completion; the event, or -2 if it was not accepted.
    int run(const Request& request) { return execute(request) ? completions.wait() : -2; }

    int count() {
        int items = -1;
        EXPECT_TRUE(source.GetItemCount(&items));
        return items;
    }

    int count_of(int type) {
        int items = -1;
        EXPECT_TRUE(source.GetItemCountByType(static_cast<qra_media_type_e>(type), &items));
        return items;
    }

    std::string text(const std::string& field) {
        char* value = nullptr;
        return source.GetValue(field, &value) ? take(value) : "(failed)";
    }

    int number(const std::string& field) {
        int value = -1;
        return source.GetValue(field, &value) ? value : -1;
    }

    /// File names in list order.
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (int i = 0; i < count(); ++i) {
            EXPECT_TRUE(source.MoveToIndex(i));
            all.push_back(std::filesystem::path(text("FILE_PATH")).filename());
        }
        source.MoveToIndex(0);
        return all;
    }

    /// The groups as "name: start, count".
    std::vector<std::string> groups() {
        const std::unique_ptr<CQRAGroupInfo> info(source.GetGroupInfo());
        std::vector<std::string> all;
        for (int i = 0; i < info->GetGroupCount(); ++i) {
            int start = 0;
            int items = 0;
            std::string name;
            info->GetGroup(i, start, items, name);
            all.push_back(name + ": " + std::to_string(start) + ", " + std::to_string(items));
        }
        return all;
    }

    using Names = std::vector<std::string>;
    CQRAMSCSource source;
    Completions completions;
};

/// With a file of each kind in the folder "show", scanned, and the source open.
class CQRAMSCSourceOpen : public CQRAMSCSourceOnDrive {
protected:
    CQRAMSCSourceOpen() {
        write("show/a.jpg");
        write("show/b.mp4");
        write("show/c.mp3");
        write_recording("show/d", "program_title=News\nchannel_name=BBC\nmajor=1\nminor=2\n");
        write("show/e.um4");
        write("show/f.uvu");
        fake_extractor::packages[path("show/f.uvu")].sff_xml[""] = metadata_xml("Film");
        write("show/deep/g.jpg");
        write("show/Lost+Found/h.jpg");
        std::filesystem::copy_file(QRA_TEST_FIXTURES "/music/song.mp3", path("show/song.mp3"));
        scan();
        open();
    }

    /// Puts the cursor on a file of the folder list.
    void move_to(const std::string& name) {
        ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
        const Names all = names();
        for (size_t i = 0; i < all.size(); ++i) {
            if (all[i] == name) {
                ASSERT_TRUE(source.MoveToIndex(static_cast<int>(i)));
                return;
            }
        }
        FAIL() << name;
    }
};

}  // namespace

TEST_F(CQRAMSCSourceOpen, AFolderListHoldsFoldersFirstThenFilesByTitle) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS) << log.text();
    EXPECT_EQ(names(), (Names{"deep", "a.jpg", "b.mp4", "c.mp3", "d.srf", "f.uvu", "song.mp3"}));
    EXPECT_EQ(source.GetFolderCount(), 1);
    EXPECT_EQ(groups(), Names{"CATEGORY-FOLDER-TITLE: 1, 6"});
}

TEST_F(CQRAMSCSourceOpen, EachKindIsCounted) {
    ASSERT_EQ(run({"show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER", "", true}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count_of(1), 1);
    EXPECT_EQ(count_of(3), 1);
    EXPECT_EQ(count_of(10), 1);
    EXPECT_EQ(count_of(11), 1);
    EXPECT_EQ(count_of(2), 0);
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count_of(1), 1);
    EXPECT_EQ(count_of(2), 1);
    EXPECT_EQ(count_of(3), 1);
    EXPECT_EQ(count_of(5), 2);
    EXPECT_EQ(count_of(6), 1);
    EXPECT_EQ(count_of(10), 0);
    EXPECT_EQ(count_of(11), 1);
    EXPECT_EQ(count_of(15), 0);
    EXPECT_EQ(count_of(16), 0);
    EXPECT_EQ(count_of(7), 0);
    EXPECT_EQ(count_of(9), 0);
}

TEST_F(CQRAMSCSourceOpen, SystemFoldersAreNotShownAndNotCounted) {
    for (const char* const name : {"RECYCLER", "$RECYCLE.BIN", "System Volume Information", "lost+found"}) {
        write(std::string("top/") + name + "/x.jpg");
    }
    write("top/visible/x.jpg");
    scan();
    ASSERT_EQ(run({"top"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(names(), Names{"visible"});
    EXPECT_EQ(source.GetFolderCount(), 1);
}

TEST_F(CQRAMSCSourceOpen, AFileOfNoListedTypeIsDropped) {
    write("show/z.png");
    scan();
    qra_general_s param;
    std::string root = path("show");
    char content[] = "CONTENT-IMAGE";
    char category[] = "CATEGORY-FOLDER-TITLE";
    // The database compares without regard to case, the classification does not.
    char extensions[] = R"({"param_media_extension_image":["jpg","PNG"]})";
    param.szPath = root.data();
    param.szContentType = content;
    param.szSortCategory = category;
    param.szExtension = extensions;
    ASSERT_TRUE(source.Execute(&param));
    ASSERT_EQ(completions.wait(), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(names(), (Names{"deep", "a.jpg"}));
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_GetFileType fail."));
}

TEST_F(CQRAMSCSourceOpen, AGroupCountOtherThanTheListsIsOnlyLogged) {
    ASSERT_EQ(run({"show", "CONTENT-IMAGE", "CATEGORY-FOLDER-DATE"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_GroupInfo.GetItemCount()[1] != m_ContentList.size()[2]."));
    ASSERT_EQ(groups().size(), 1u);
    EXPECT_EQ(groups()[0].substr(10), ": 1, 1");
}

TEST_F(CQRAMSCSourceOpen, EachCategoryMakesItsGroupTable) {
    ASSERT_EQ(run({"show", "CONTENT-IMAGE", "CATEGORY-TITLE"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"CATEGORY-TITLE: 0, " + std::to_string(count())});
    ASSERT_EQ(run({"show", "CONTENT-MUSIC", "CATEGORY-TRACK"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"CATEGORY-TRACK: 0, 2"});
    ASSERT_EQ(run({"show", "", "CATEGORY-KEYWORD-SEARCH", "a.jpg"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"CATEGORY-KEYWORD-SEARCH: 0, 1"});
    ASSERT_EQ(run({"show", "", "CATEGORY-MSC-PHOTO"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"CATEGORY-MSC-PHOTO: 0, " + std::to_string(count())});
    ASSERT_EQ(run({"show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER-WITHUPFOLDER", "", true}),
              QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"CATEGORY-UHD-FOLDER-WITHUPFOLDER: 1, 3"});
    ASSERT_EQ(run({"show", "CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NAME"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"BBC: 1, 1"});
    ASSERT_EQ(run({"show", "CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NUM"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"1-2: 1, 1"});
    ASSERT_EQ(run({"show", "CONTENT-PVR", "CATEGORY-CHANNEL_NAME"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"BBC: 0, 1"});
}

TEST_F(CQRAMSCSourceOpen, PlainFolderListsLeaveTheGroupTableAlone) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    const Names before = groups();
    ASSERT_EQ(run({"show", "CONTENT-IMAGE", "CATEGORY-FOLDER"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), before);
    ASSERT_EQ(run({"show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), before);
}

TEST_F(CQRAMSCSourceOpen, ACategoryThatTheDatabaseDoesNotGroupFailsWithItsListFilled) {
    EXPECT_EQ(run({"show", "CONTENT-MUSIC", "CATEGORY-ARTIST"}), QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pMCFWrapper->RequestMCFGroup failed."));
}

TEST_F(CQRAMSCSourceOpen, ARequestThatFailsPartWayKeepsWhatArrived) {
    faults::fail("media_folder_foreach_media_from_db");
    EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(text("DISPLAY_NAME"), "deep");
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pMCFWrapper->RequestMCFMedia failed."));
}

TEST_F(CQRAMSCSourceOpen, AListThatFailsAtItsEndKeepsItsRows) {
    faults::fail_afterwards("media_folder_foreach_media_from_db");
    EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(count(), 7);
}

TEST_F(CQRAMSCSourceOpen, ARowWhoseHandleCannotBeClonedIsDropped) {
    faults::fail("media_info_clone");
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(names(), (Names{"deep", "d.srf", "f.uvu"}));
    EXPECT_EQ(count_of(2), 0);
    EXPECT_EQ(count_of(6), 1);
}

TEST_F(CQRAMSCSourceOpen, ARowCostsOneClone) {
    ASSERT_EQ(run({"show", "CONTENT-IMAGE", "CATEGORY-FOLDER"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count_of(2), 1);
    EXPECT_EQ(faults::count("media_info_clone"), 1);
    EXPECT_EQ(faults::count("media_info_destroy"), 0);
}

TEST_F(CQRAMSCSourceOpen, AnEmptyListSucceeds) {
    ASSERT_EQ(run({"show", "CONTENT-360IMAGE", "CATEGORY-TITLE"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(groups(), Names{"CATEGORY-TITLE: 0, 0"});
    EXPECT_FALSE(source.MoveToIndex(0));
    EXPECT_FALSE(source.MoveToNext());
    EXPECT_FALSE(source.MoveToPrevious());
    EXPECT_EQ(text("FILE_PATH"), "(failed)");
    EXPECT_EQ(number("MEDIA_TYPE"), -1);
    EXPECT_FALSE(source.SetValue("PLAYED_COUNT", 1));
}

TEST_F(CQRAMSCSourceOpen, PicturesOf360DegreesHaveATypeOfTheirOwn) {
    faults::before("media_info_is_360_content", [] {});
    ASSERT_EQ(run({"show", "CONTENT-IMAGE", "CATEGORY-FOLDER"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count_of(2), 1);
    EXPECT_EQ(count_of(15), 0);
}

TEST_F(CQRAMSCSourceOpen, TrailingSlashesOfThePathDoNotCount) {
    ASSERT_EQ(run({"show///"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count(), 7);
}

TEST_F(CQRAMSCSourceOpen, ARepeatReplacesTheList) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    ASSERT_TRUE(source.MoveToIndex(3));
    ASSERT_EQ(run({"show/deep"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(names(), Names{"g.jpg"});
    EXPECT_EQ(count_of(1), 0);
    EXPECT_EQ(text("DISPLAY_NAME"), "g.jpg");
}

TEST_F(CQRAMSCSourceOpen, AUhdFolderOfAnotherContentTypeIsAFolderByTitle) {
    ASSERT_EQ(run({"show", "CONTENT-IMAGE", "CATEGORY-UHD-FOLDER", "", true}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(groups(), Names{"CATEGORY-FOLDER-TITLE: 1, 1"});
    EXPECT_EQ(faults::count("media_uhd_foreach_media_from_db"), 0);
    ASSERT_EQ(run({"show", "CONTENT-VIDEO", "CATEGORY-UHD-FOLDER-WITHUPFOLDER", "", true}),
              QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(faults::count("media_uhd_foreach_media_from_db"), 1);
}

TEST_F(CQRAMSCSourceOpen, ChannelCategoriesAreForRecordingsOnly) {
    for (const char* const category : {"CATEGORY-FOLDER-CHANNEL_NAME", "CATEGORY-FOLDER-CHANNEL_NUM",
                                       "CATEGORY-CHANNEL_NAME", "CATEGORY-CHANNEL_NUM"}) {
        EXPECT_FALSE(execute({"show", "CONTENT-IMAGE", category})) << category;
        for (const char* const content : {"CONTENT-PVR", "CONTENT-PVR-UNWATCHED", "CONTENT-PVR-SCHEDULED"}) {
            EXPECT_GE(run({"show", content, category}), 0) << category << content;
        }
    }
    EXPECT_EQ(log.count("m_strCategory is Channel but strContentType is not PVR, Parament Error"), 4);
}

TEST_F(CQRAMSCSourceOpen, UhdAndPackagesNeedADeviceThatShowsThem) {
    EXPECT_FALSE(execute({"show", "CONTENT-UHD", "CATEGORY-TITLE"}));
    EXPECT_FALSE(execute({"show", "CONTENT-SCSA", "CATEGORY-TITLE"}));
    EXPECT_EQ(log.count("strContentType is UHD or SCSA but bIsUHDDevice == false ."), 2);
    EXPECT_EQ(run({"show", "CONTENT-SCSA", "CATEGORY-TITLE", "", true}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count(), 0);
}

TEST_F(CQRAMSCSourceOpen, ARefusedRequestLeavesAnEmptyList) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_FALSE(execute({"show", "CONTENT-UHD", "CATEGORY-TITLE"}));
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(count_of(2), 0);
}

TEST_F(CQRAMSCSourceOpen, NullTextsOfARequestAreEmpty) {
    std::string root = path("show");
    qra_general_s param;
    param.szPath = root.data();
    ASSERT_TRUE(source.Execute(&param));
    // Neither a content type nor a category: nothing is selected, and nothing can be grouped.
    EXPECT_EQ(completions.wait(), QRA_EVENT_LIST_FAILED);
    EXPECT_TRUE(log.contains("CQRAExtensionList: get extension from App fail, use default extension."));
}

// Values.

TEST_F(CQRAMSCSourceOpen, TheMediaTypeComesFromTheExtension) {
    const std::map<std::string, int> types = {{"a.jpg", 2}, {"b.mp4", 3}, {"c.mp3", 5},
                                              {"d.srf", 6}, {"f.uvu", 3}, {"deep", 1}};
    for (const auto& [name, type] : types) {
        move_to(name);
        EXPECT_EQ(number("MEDIA_TYPE"), type) << name;
    }
}

TEST_F(CQRAMSCSourceOpen, TheFormatIsTheExtensionAsItStands) {
    write("show/I.JPG");
    scan();
    move_to("I.JPG");
    EXPECT_EQ(text("FORMAT"), "JPG");
    move_to("deep");
    EXPECT_NE(text("FORMAT"), "(failed)");
    faults::fail("media_folder_get_path");
    EXPECT_EQ(text("FORMAT"), "(failed)");
}

TEST_F(CQRAMSCSourceOpen, AFilmsThumbnailIsItsIdAndItsPath) {
    move_to("b.mp4");
    EXPECT_EQ(text("THUMBNAIL_PATH"), text("ID_QRA") + ";" + path("show/b.mp4"));
    move_to("a.jpg");
    EXPECT_EQ(text("THUMBNAIL_PATH"), path("show/a.jpg"));
    move_to("deep");
    EXPECT_EQ(text("THUMBNAIL_PATH"), "(failed)");
}

TEST_F(CQRAMSCSourceOpen, AFilmsThumbnailNeedsBothItsParts) {
    move_to("b.mp4");
    faults::fail("media_info_get_media_id");
    EXPECT_EQ(text("THUMBNAIL_PATH"), "(failed)");
    faults::reset();
    faults::fail("media_info_get_file_path");
    EXPECT_EQ(text("THUMBNAIL_PATH"), "(failed)");
    EXPECT_EQ(number("MEDIA_TYPE"), -1);
}

TEST_F(CQRAMSCSourceOpen, CodecsComeFromTheFile) {
    move_to("song.mp3");
    EXPECT_EQ(text("AUDIO_CODEC"), "mp3");
    EXPECT_EQ(text("VIDEO_CODEC"), "");
    faults::fail("metadata_extractor_create");
    EXPECT_EQ(text("AUDIO_CODEC"), "(failed)");
    std::filesystem::remove(path("show/song.mp3"));
    EXPECT_EQ(text("VIDEO_CODEC"), "(failed)");
}

TEST_F(CQRAMSCSourceOpen, EveryTypeOfValueIsRead) {
    move_to("a.jpg");
    unsigned long long size = 0;
    long modified = 0;
    bool is_360 = true;
    double latitude = 5;
    EXPECT_TRUE(source.GetValue("SIZE", &size));
    EXPECT_TRUE(source.GetValue("MODIFIED_TIME", &modified));
    EXPECT_TRUE(source.GetValue("IS_360", &is_360));
    EXPECT_TRUE(source.GetValue("LATITUDE", &latitude));
    EXPECT_EQ(size, 1u);
    EXPECT_GT(modified, 1600000000);
    EXPECT_FALSE(is_360);
    EXPECT_EQ(latitude, 0);
    EXPECT_FALSE(source.GetValue("NONSENSE", &size));
}

TEST_F(CQRAMSCSourceOpen, EveryTypeOfValueIsWritten) {
    move_to("a.jpg");
    EXPECT_TRUE(source.SetValue("PLAYED_COUNT", 4));
    EXPECT_EQ(number("PLAYED_COUNT"), 4);
    EXPECT_TRUE(source.SetValue("PLAYED_TIME", 1700000000L));
    EXPECT_EQ(number("PLAYED_TIME"), 1700000000);
    EXPECT_FALSE(source.SetValue("PLAYED_TIME", 0L));
    EXPECT_FALSE(source.SetValue("PLAYED_TIME", -1L));
    EXPECT_EQ(log.count("MSC-SOURCE: nTime <= 0."), 2);
    move_to("d.srf");
    EXPECT_TRUE(source.SetValue("PROGRAM_TITLE", "Late"));
    EXPECT_EQ(text("PROGRAM_TITLE"), "Late");
    EXPECT_FALSE(source.SetValue("NONSENSE", "x"));
}

TEST_F(CQRAMSCSourceOpen, MovesStayAtTheEnds) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_FALSE(source.MoveToPrevious());
    EXPECT_TRUE(source.MoveToNext());
    EXPECT_EQ(text("DISPLAY_NAME"), "a.jpg");
    EXPECT_FALSE(source.MoveToIndex(-1));
    EXPECT_FALSE(source.MoveToIndex(7));
    EXPECT_EQ(text("DISPLAY_NAME"), "a.jpg");
    EXPECT_TRUE(source.MoveToIndex(6));
    EXPECT_FALSE(source.MoveToNext());
    EXPECT_TRUE(source.MoveToPrevious());
    EXPECT_EQ(text("FILE_PATH"), path("show/f.uvu"));
}

TEST_F(CQRAMSCSourceOpen, AnItemIsFoundByItsId) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    for (int i = 0; i < count(); ++i) {
        ASSERT_TRUE(source.MoveToIndex(i));
        std::string id = text("ID_QRA");
        int index = -1;
        // A folder may have the same id as a file; the first one in the list counts.
        EXPECT_TRUE(source.GetDBIndex(id.data(), &index));
        ASSERT_TRUE(source.MoveToIndex(index));
        EXPECT_EQ(text("ID_QRA"), id);
        EXPECT_LE(index, i);
    }
    char unknown[] = "unknown";
    int index = 77;
    EXPECT_FALSE(source.GetDBIndex(unknown, &index));
    EXPECT_EQ(index, 77);
    EXPECT_TRUE(log.contains("MSC-SOURCE: Invalid media[unknown]."));
}

TEST_F(CQRAMSCSourceOpen, AGroupsItemCountIsFoundByItsName) {
    ASSERT_EQ(run({"show", "CONTENT-PVR", "CATEGORY-FOLDER-CHANNEL_NAME"}), QRA_EVENT_LIST_SUCCESS);
    char bbc[] = "BBC";
    char unknown[] = "ITV";
    int items = 77;
    EXPECT_FALSE(source.GetItemCountOfGroup(unknown, &items));
    EXPECT_EQ(items, 77);
    EXPECT_TRUE(log.contains("MSC-SOURCE: Invalid szGroupName[ITV]."));
    EXPECT_TRUE(source.GetItemCountOfGroup(bbc, &items));
    EXPECT_EQ(items, 1);
}

TEST_F(CQRAMSCSourceOpen, WhatADriveDoesNotHaveIsRefused) {
    char* rating = nullptr;
    EXPECT_FALSE(source.GetRatingInfo(nullptr));
    EXPECT_TRUE(log.contains("Invalid pointer !!"));
    EXPECT_FALSE(source.GetRatingInfo(&rating));
    EXPECT_EQ(log.count("Invalid pointer !!"), 1);
    char search[] = "a";
    int first = 0;
    EXPECT_FALSE(source.IndexSearch(search, &first, &first));
    EXPECT_FALSE(source.CancelAsync());
    EXPECT_FALSE(static_cast<IQRASourceBase&>(source).Open(search));
}

TEST_F(CQRAMSCSourceOpen, FilesAreAddedAndDeleted) {
    write("show/new.jpg");
    EXPECT_TRUE(source.AddFile(path("show/new.jpg").c_str()));
    EXPECT_FALSE(source.AddFile(path("show/none.jpg").c_str()));
    move_to("new.jpg");
    const std::string id = text("ID_QRA");
    EXPECT_TRUE(source.DeleteFile(id.c_str()));
    EXPECT_FALSE(source.DeleteFile(id.c_str()));
}

// Packaged content.

namespace {

class CQRAMSCSourceWithPackages : public CQRAMSCSourceOnDrive {
protected:
    CQRAMSCSourceWithPackages() {
        write("show/a.jpg");
        write("show/f.uvu");
        scan();
        fake_extractor::reset();
        fake_extractor::packages[path("show/f.uvu")].sff_xml[""] = metadata_xml("Film");
        open();
        EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    }

    const std::vector<std::string> read_once{"GetXMLFromSFF " + path("show/f.uvu") + " "};
};

}  // namespace

TEST_F(CQRAMSCSourceWithPackages, AMoveByIndexReadsThePackageOnce) {
    EXPECT_TRUE(source.MoveToIndex(0));
    EXPECT_TRUE(fake_extractor::calls.empty());
    EXPECT_TRUE(source.MoveToNext());
    EXPECT_TRUE(fake_extractor::calls.empty()) << "only a move by index selects a package";
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pDmpSource GetValue failed, strFiled[TITLE_19]."));
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(fake_extractor::calls, read_once);
    EXPECT_TRUE(source.MoveToPrevious());
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(fake_extractor::calls, read_once);
}

TEST_F(CQRAMSCSourceWithPackages, AMissSelectsThePackageThatTheCursorStaysOn) {
    EXPECT_FALSE(source.MoveToIndex(9));
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_TRUE(source.MoveToIndex(9));
    EXPECT_EQ(log.count("DmpSource: Path Exists !"), 1);
    EXPECT_TRUE(source.MoveToIndex(-1));
    EXPECT_EQ(fake_extractor::calls, read_once);
}

TEST_F(CQRAMSCSourceWithPackages, APackageThatCannotBeReadCannotBeMovedTo) {
    fake_extractor::packages.clear();
    EXPECT_FALSE(source.MoveToIndex(1));
    EXPECT_FALSE(source.MoveToIndex(9));
    EXPECT_EQ(log.count("MSC-SOURCE: m_pDmpSource->MoveToIndex failed."), 2);
    EXPECT_EQ(text("FILE_PATH"), path("show/f.uvu")) << "the cursor stands on it all the same";
    EXPECT_EQ(text("TITLE_19"), "(failed)");
    EXPECT_EQ(number("WIDTH"), -1);
    EXPECT_TRUE(source.MoveToIndex(0));
}

TEST_F(CQRAMSCSourceWithPackages, PackageFieldsComeFromThePackage) {
    ASSERT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(number("INDEX"), 0);
    EXPECT_EQ(number("WIDTH"), 1920);
    EXPECT_EQ(number("HEIGHT"), 1080);
    const std::pair<const char*, std::string> texts[] = {{"CONTENT_ID", "urn:dece:cid:1"},
                                                         {"PROFILE", "hd"},
                                                         {"RUNLENGTH", "PT1H30M"},
                                                         {"PUBLISHER", "Harbour & Sons"},
                                                         {"TITLE_19", "Film 19"},
                                                         {"TITLE_60", "Film 60"},
                                                         {"TITLE_UNLIMITED", "Film without end"},
                                                         {"TITLE_SORT", "Film, sorted"},
                                                         {"SUMMARY_190", "short"},
                                                         {"SUMMARY_400", "longer"},
                                                         {"SUMMARY_4000", "longest"},
                                                         {"DESC_LANGUAGE", "en-GB"},
                                                         {"ENCODING", "image/jpeg"},
                                                         {"TRACK_REFERENCE", "2"},
                                                         {"STREAM_NAME", path("show/f.uvu")},
                                                         {"COUNTRY", "GB"},
                                                         {"SYSTEM", "BBFC"},
                                                         {"RATING_VALUE", "12A"},
                                                         {"RATING_DESC", "mild peril"},
                                                         {"ADULT_CONTENT", "false"}};
    for (const auto& [field, value] : texts) {
        EXPECT_EQ(text(field), value) << field;
    }
    EXPECT_EQ(text("FILE_PATH"), path("show/f.uvu"));
    EXPECT_EQ(text("FORMAT"), "uvu");
    EXPECT_EQ(text("INDEX"), "(failed)");
    EXPECT_EQ(number("COUNTRY"), -1);
    EXPECT_TRUE(log.contains("MSC-SOURCE: Invalid field[INDEX]."));
    EXPECT_TRUE(log.contains("MSC-SOURCE: Invalid field[COUNTRY]."));
}

TEST_F(CQRAMSCSourceWithPackages, AFieldThatThePackageDoesNotHaveFails) {
    fake_extractor::packages[path("show/f.uvu")].sff_xml[""] = "<m><ContentMetadata/></m>";
    ASSERT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(text("COUNTRY"), "(failed)");
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pDmpSource GetValue failed, strFiled[COUNTRY]."));
    EXPECT_EQ(number("WIDTH"), -1);
    EXPECT_TRUE(log.contains("MSC-SOURCE: m_pDmpSource GetValue failed, strFiled[WIDTH]."));
    EXPECT_EQ(text("TITLE_19"), "(none)") << "an empty text is a value";
}

TEST_F(CQRAMSCSourceWithPackages, APackageWhoseDriveWentAnswersFromMemory) {
    ASSERT_TRUE(source.MoveToIndex(1));
    fake_extractor::packages.clear();
    std::filesystem::remove(root() + "/stick/show/f.uvu");
    EXPECT_TRUE(source.MoveToIndex(0));
    EXPECT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(text("TITLE_19"), "Film 19");
}

TEST_F(CQRAMSCSourceWithPackages, APackageCountsAsPackageAndHasTheTypeOfTheListThatNamesIt) {
    int count = 0;
    EXPECT_TRUE(source.GetItemCountByType(QRA_MEDIA_TYPE_SCSA, &count));
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(source.GetItemCountByType(QRA_MEDIA_TYPE_VIDEO, &count));
    EXPECT_EQ(count, 0);
    ASSERT_TRUE(source.MoveToIndex(1));
    EXPECT_EQ(number("MEDIA_TYPE"), QRA_MEDIA_TYPE_VIDEO);
}

TEST_F(CQRAMSCSourceWithPackages, OtherEntriesAskNoPackage) {
    ASSERT_TRUE(source.MoveToIndex(0));
    EXPECT_EQ(text("COUNTRY"), "(failed)");
    EXPECT_FALSE(log.contains("MSC-SOURCE: Invalid field["));
}

// Life and threads.

TEST_F(CQRAMSCSourceOnDrive, AClosedSourceIsNotOpenAndKnowsNothing) {
    EXPECT_FALSE(source.IsOpen());
    ASSERT_TRUE(source.Open());
    EXPECT_TRUE(source.IsOpen());
    EXPECT_TRUE(CQRAObjManager::GetInstance()->FindObj(
        reinterpret_cast<qra_handle_value_t>(static_cast<CQRAMSCSource*>(&source))));
    EXPECT_TRUE(source.Close());
    EXPECT_FALSE(source.IsOpen());
    EXPECT_FALSE(CQRAObjManager::GetInstance()->FindObj(
        reinterpret_cast<qra_handle_value_t>(static_cast<CQRAMSCSource*>(&source))));
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(log.contains("MSC-SOURCE: Exit t_Process."));
    EXPECT_FALSE(execute({""}));
    EXPECT_FALSE(source.AddFile("/x"));
    EXPECT_FALSE(source.DeleteFile("1"));
}

TEST_F(CQRAMSCSourceOnDrive, ASourceCanBeOpenedAgain) {
    write("a.jpg");
    scan();
    for (int round = 0; round < 3; ++round) {
        open();
        EXPECT_EQ(run({""}), QRA_EVENT_LIST_SUCCESS);
        EXPECT_EQ(count(), 1);
        EXPECT_TRUE(source.Close());
    }
    EXPECT_EQ(faults::count("media_content_connect"), 3);
    EXPECT_EQ(faults::count("media_content_disconnect"), 3);
}

TEST_F(CQRAMSCSourceOnDrive, WhatACloseLeftIsNoRequestOfTheNextOpen) {
    write("a.jpg");
    scan();
    // Each wakes a thread that does not sleep, as there is none.
    for (int i = 0; i < 100; ++i) {
        source.Close();
    }
    source.SetCallback(Completions::on_complete, &completions);
    ASSERT_TRUE(source.Open());

    EXPECT_EQ(run({""}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(run({""}), QRA_EVENT_LIST_SUCCESS);

    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(source.Close());
    EXPECT_EQ(completions.count(), 2u);
}

TEST_F(CQRAMSCSourceOnDrive, ASourceWithoutADatabaseDoesNotOpen) {
    faults::fail("media_content_connect");
    EXPECT_FALSE(source.Open());
    EXPECT_FALSE(source.IsOpen());
    faults::reset();
    EXPECT_TRUE(source.Open());
}

TEST_F(CQRAMSCSourceOpen, TheCompletionComesOnTheSourcesThread) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_NE(completions.last_thread(), std::this_thread::get_id());
}

TEST_F(CQRAMSCSourceOpen, WithoutACallbackACompletionIsLost) {
    EXPECT_TRUE(source.UNSetCallback());
    ASSERT_TRUE(execute({"show"}));
    EXPECT_TRUE(source.Close());
    EXPECT_EQ(completions.count(), 0u);
}

TEST_F(CQRAMSCSourceOpen, TheTransferCallbackIsIgnored) {
    source.SetCallback(qra_source_transfer_cb(nullptr), nullptr);
    EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
}

namespace {

/// A completion that lasts until it is let go.
struct SlowCallback {
    static bool on_complete(qra_event_e, void* self) {
        auto* const slow = static_cast<SlowCallback*>(self);
        std::unique_lock<std::mutex> lock(slow->mutex);
        slow->running = true;
        slow->changed.notify_all();
        slow->changed.wait(lock, [&] { return slow->may_end; });
        slow->ended = true;
        return true;
    }

    void wait_until_running() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return running; });
    }

    void let_go() {
        const std::lock_guard<std::mutex> lock(mutex);
        may_end = true;
        changed.notify_all();
    }

    bool has_ended() {
        const std::lock_guard<std::mutex> lock(mutex);
        return ended;
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool running = false;
    bool may_end = false;
    bool ended = false;
};

}  // namespace

TEST_F(CQRAMSCSourceOpen, SettingTheCallbackDoesNotWaitForOneThatRuns) {
    SlowCallback slow;
    source.SetCallback(SlowCallback::on_complete, &slow);
    ASSERT_TRUE(execute({"show"}));
    slow.wait_until_running();
    EXPECT_TRUE(source.SetCallback(Completions::on_complete, &completions));
    EXPECT_FALSE(slow.has_ended());
    slow.let_go();
    EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
}

TEST_F(CQRAMSCSourceOpen, UnsettingTheCallbackWaitsForOneThatRuns) {
    SlowCallback slow;
    source.SetCallback(SlowCallback::on_complete, &slow);
    ASSERT_TRUE(execute({"show"}));
    slow.wait_until_running();
    std::thread helper([&] { slow.let_go(); });
    source.UNSetCallback();
    EXPECT_TRUE(slow.has_ended());
    helper.join();
}

TEST_F(CQRAMSCSourceOnDrive, ACloseDuringAScanCancelsItAndCallsNobody) {
    write("show/a.jpg");
    faults::hold_scans();
    open();
    ASSERT_TRUE(execute({"show"}));
    ASSERT_TRUE(faults::wait_for_scan());
    EXPECT_TRUE(source.Close());
    EXPECT_EQ(faults::count("media_content_cancel_scan_folder"), 1);
    EXPECT_EQ(completions.count(), 0u);
    EXPECT_TRUE(log.contains("MSC-SOURCE: There is no registered callback."));
    faults::answer_scan(0, MEDIA_SCAN_PHASE_FINISHED);
    EXPECT_TRUE(log.contains("MCF-Wrapper: Current MCF Wrapper Obj does not exist!"));
}

TEST_F(CQRAMSCSourceOnDrive, ACloseRightAfterARequestEndsInEveryOrder) {
    write("show/a.jpg");
    for (int round = 0; round < 100; ++round) {
        open();
        ASSERT_TRUE(execute({"show"}));
        if (round % 3 == 0) {
            std::this_thread::yield();
        }
        EXPECT_TRUE(source.Close());
    }
}

TEST_F(CQRAMSCSourceOnDrive, RequestsOnManySourcesRunAtOnce) {
    write("show/a.jpg");
    write("show/b.jpg");
    std::vector<std::unique_ptr<CQRAMSCSource>> sources;
    std::vector<std::unique_ptr<Completions>> all;
    std::string root = path("show");
    char category[] = "CATEGORY-FOLDER-TITLE";
    char content[] = "CONTENT-IMAGE";
    qra_general_s param;
    param.szPath = root.data();
    param.szSortCategory = category;
    param.szContentType = content;
    for (int i = 0; i < 4; ++i) {
        sources.push_back(std::make_unique<CQRAMSCSource>());
        all.push_back(std::make_unique<Completions>());
        ASSERT_TRUE(sources[i]->Open());
        sources[i]->SetCallback(Completions::on_complete, all[i].get());
        ASSERT_TRUE(sources[i]->Execute(&param));
    }
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(all[i]->wait(), QRA_EVENT_LIST_SUCCESS);
        int items = 0;
        EXPECT_TRUE(sources[i]->GetItemCount(&items));
        EXPECT_EQ(items, 2);
        EXPECT_TRUE(sources[i]->Close());
    }
}

TEST(CQRAMSCSourceDeathTest, NullArgumentsEndTheProcess) {
    CQRAMSCSource source;
    int count = 0;
    char name[] = "x";
    qra_general_s param;
    EXPECT_DEATH(source.Execute(&param), "pParam->szPath != __null");
    EXPECT_DEATH(source.SetCallback(qra_source_complete_cb(nullptr), &count), "cb != __null");
    EXPECT_DEATH(source.AddFile(nullptr), "szPath != __null");
    EXPECT_DEATH(source.DeleteFile(nullptr), "szMediaId != __null");
    EXPECT_DEATH(source.GetItemCount(nullptr), "pnItemCount != __null");
    EXPECT_DEATH(source.GetItemCountByType(QRA_MEDIA_TYPE_IMAGE, nullptr), "pnItemCount != __null");
    EXPECT_DEATH(source.GetItemCountOfGroup(nullptr, &count), "szGroupName != __null");
    EXPECT_DEATH(source.GetItemCountOfGroup(name, nullptr), "pnItemCount != __null");
    EXPECT_DEATH(source.GetDBIndex(nullptr, &count), "szMediaId != __null");
    EXPECT_DEATH(source.GetDBIndex(name, nullptr), "pnIndex != __null");
    EXPECT_DEATH(source.GetValue("TITLE", static_cast<char**>(nullptr)), "ppValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<int*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<unsigned long long*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<long*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<bool*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<double*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.SetValue(nullptr, 1), "szField != __null");
    EXPECT_DEATH(source.SetValue(nullptr, 1L), "szField != __null");
    EXPECT_DEATH(source.SetValue(nullptr, "x"), "szField != __null");
    EXPECT_DEATH(source.SetValue("TITLE", static_cast<const char*>(nullptr)), "szValue != __null");
}

TEST(CQRAMSCSourceDeathTest, AnOpenSourceMustNotBeDestroyed) {
    class Open : public SampleDrive {
    public:
        void TestBody() override {}
    };
    EXPECT_DEATH(
        {
            Open drive;
            auto* const source = new CQRAMSCSource;
            source->Open();
            delete source;
        },
        "m_bIsOpen == false");
}
