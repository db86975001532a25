#include <algorithm>

#include "platform/media-content/host/query/row_query.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/unit/platform/media_content/contract.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

const char* const kImages =
    "( ( 0=1 ) or MEDIA_DISPLAY_NAME LIKE '%.jpg' or MEDIA_DISPLAY_NAME LIKE '%.jpeg' )";
const char* const kAll =
    "( ( 0=1 ) or MEDIA_DISPLAY_NAME LIKE '%.jpg' or MEDIA_DISPLAY_NAME LIKE '%.mp4' or MEDIA_DISPLAY_NAME "
    "LIKE '%.mp3' "
    "or MEDIA_PATH LIKE '%.srf' or MEDIA_DISPLAY_NAME LIKE '%.uvu' )";
const char* const kRecordings = "( ( 0=1 ) or MEDIA_PATH LIKE '%.srf' )";
const char* const kUhdFiles = "( MEDIA_DISPLAY_NAME LIKE '%.um4' or MEDIA_DISPLAY_NAME LIKE '%.km4' )";

constexpr int kDescending = MEDIA_CONTENT_ORDER_DESC;

/// A drive with a few rows of every kind.
class Queries : public TemporaryDatabase {
protected:
    Queries() {
        setenv("TZ", "Europe/Berlin", 1);
        tzset();
        put_file("/photos", "IMG_10.JPG", MediaKind::kImage, 1000);
        put_file("/photos", "img_2.jpg", MediaKind::kImage, 3000);
        put_file("/photos", "Z\u00dcRICH.jpeg", MediaKind::kImage, 2000);
        put_file("/photos", "clip.mp4", MediaKind::kVideo, 500);
        put_file("/photos/deep", "sphere.jpg", MediaKind::kImage, 100);
        put_file("/Photos", "other.jpg", MediaKind::kImage, 1);
        put_file("/music", "song.mp3", MediaKind::kMusic, 1);
        put_file("", "package.uvu", MediaKind::kScsa, 1);
        put_recording("a.srf", "News", "BBC Two", 2, 10, 1700000000);
        put_recording("b.srf", "Alpha", "bbc one", 1, 2, 1700090000);
        put_recording("c.srf", "zoo 10", "BBC Two", 2, 9, 1700003600);
        put_recording("d.srf", "Zoo 9", "", 0, 0, 0);
        put_uhd("Film 2.um4", 1);
        put_uhd("film 10.um4", -1);
        put_uhd("Another.km4", -1);
        photos_ = std::to_string(put_folder("/photos"));
        pvr_ = std::to_string(put_folder("/PVR"));
    }

    void put_recording(const std::string& name, const std::string& title, const std::string& channel,
                       int major, int minor, int start) {
        MediaRecord record;
        record.kind = MediaKind::kRecording;
        record.recording.program_title = title;
        record.recording.channel_name = channel;
        record.recording.major = major;
        record.recording.minor = minor;
        record.recording.start_time = start;
        record.recording.content_watch = name == "a.srf";
        record.recording.timer_record = name == "b.srf";
        put_file("/PVR", FileFacts{name, 10, 50000000000}, record);
    }

    void put_uhd(const std::string& name, int sub_type) {
        MediaRecord record;
        record.kind = MediaKind::kUhd;
        record.uhd.sub_type = sub_type;
        put_file("/uhd", FileFacts{name, 10, 0}, record);
    }

    const std::string& id() const { return drive().id; }
    std::string path(const std::string& relative) const { return drive().link_path() + relative; }
    std::string uhd_folder() { return std::to_string(put_folder("/uhd")); }

    std::string photos_;
    std::string pvr_;
};

TEST_F(Queries, AFolderIsFoundByItsPath) {
    EXPECT_EQ(folder_names(TestFilter(id(), "FOLDER_PATH = '" + path("/photos") + "'")), Names{"photos"});
    EXPECT_EQ(folder_names(TestFilter(id(), "FOLDER_PATH = '" + path("/Photos") + "'")), Names{"Photos"});
    EXPECT_EQ(folder_names(TestFilter(id(), "FOLDER_PATH = '" + path("/PHOTOS") + "'")), Names{});
}

TEST_F(Queries, TheFolderOfTheDriveItselfHasTheDrivesName) {
    EXPECT_EQ(folder_names(TestFilter(id(), "FOLDER_PATH = '" + path("") + "'")), Names{"USBDrive1"});
    EXPECT_EQ(folder_names(TestFilter(id(), "FOLDER_PATH = '" + path("/") + "'")), Names{"USBDrive1"});
}

TEST_F(Queries, AQuoteInAFoldersPathIsWrittenTwice) {
    put_folder("/it's");
    EXPECT_EQ(folder_names(TestFilter(id(), "FOLDER_PATH = '" + path("/it''s") + "'")), Names{"it's"});
    EXPECT_EQ(folder_names(TestFilter(id(), "FOLDER_PATH = '" + path("/it's") + "'")),
              Names{"error " + std::to_string(MEDIA_CONTENT_ERROR_BAD_CONDITION)});
}

TEST_F(Queries, FoldersOfAFolderComeByName) {
    put_folder("/photos/b10");
    put_folder("/photos/B9");
    TestFilter filter(id(), "FOLDER_PARENT_FOLDER_ID = '" + photos_ + "'");
    EXPECT_EQ(folder_names(filter.order("FOLDER_NAME")), (Names{"B9", "b10", "deep"}));
    int count = 0;
    EXPECT_EQ(media_folder_get_folder_count_from_db(filter, &count), 0);
    EXPECT_EQ(count, 3);
}

TEST_F(Queries, MediaOfAFolderComeByTitle) {
    TestFilter filter(id(), kImages);
    EXPECT_EQ(media_names_of_folder(photos_, filter.order("MEDIA_DISPLAY_NAME")),
              (Names{"img_2.jpg", "IMG_10.JPG", "Z\u00dcRICH.jpeg"}));
}

TEST_F(Queries, MediaOfAFolderComeByDateTheNewestFirst) {
    TestFilter filter(id(), kAll);
    EXPECT_EQ(media_names_of_folder(photos_, filter.order("MEDIA_MODIFIED_TIME", kDescending)),
              (Names{"img_2.jpg", "IMG_10.JPG", "clip.mp4"}));
}

TEST_F(Queries, MediaOfAFolderWithoutAnOrderComeByName) {
    EXPECT_EQ(media_names_of_folder(photos_, TestFilter(id())),
              (Names{"clip.mp4", "img_2.jpg", "IMG_10.JPG", "Z\u00dcRICH.jpeg"}));
}

TEST_F(Queries, AFolderThatThereIsNotHasNoMedia) {
    for (const char* folder : {"", "0", "-1", "999999", "x", "1 OR 1=1"}) {
        EXPECT_EQ(media_names_of_folder(folder, TestFilter(id())), Names{}) << folder;
    }
}

TEST_F(Queries, AFolderOfAnotherStorageHasNoMedia) {
    EXPECT_EQ(media_names_of_folder(photos_, TestFilter("another storage")), Names{});
}

TEST_F(Queries, ThumbnailRowsAreLimitedAndCountedWithoutTheLimit) {
    TestFilter filter(id(), kImages);
    EXPECT_EQ(media_names_of_folder(photos_, filter.limit(0, 2)), (Names{"img_2.jpg", "IMG_10.JPG"}));
    EXPECT_EQ(media_names_of_folder(photos_, filter.limit(1, 5)), (Names{"IMG_10.JPG", "Z\u00dcRICH.jpeg"}));
    EXPECT_EQ(media_names_of_folder(photos_, filter.limit(0, 0)), Names{});
    int count = 0;
    EXPECT_EQ(media_folder_get_media_count_from_db(photos_.c_str(), filter, &count), 0);
    EXPECT_EQ(count, 3);
}

TEST_F(Queries, AllMediaOfAStorageComeByTitle) {
    TestFilter filter(id(), kAll);
    EXPECT_EQ(media_names(filter.order("MEDIA_DISPLAY_NAME")),
              (Names{"a.srf", "b.srf", "c.srf", "clip.mp4", "d.srf", "img_2.jpg", "IMG_10.JPG", "other.jpg",
                     "package.uvu", "song.mp3", "sphere.jpg"}));
}

TEST_F(Queries, AllMediaComeByNameBackwards) {
    TestFilter filter(id(), kImages);
    EXPECT_EQ(media_names(filter.order("MEDIA_DISPLAY_NAME", kDescending)),
              (Names{"Z\u00dcRICH.jpeg", "sphere.jpg", "other.jpg", "IMG_10.JPG", "img_2.jpg"}));
}

TEST_F(Queries, AnEmptyExtensionListSelectsNothing) {
    EXPECT_EQ(media_names(TestFilter(id(), "( ( 0=1 ) )")), Names{});
}

TEST_F(Queries, MediaOf360DegreesCanBeAskedForAlone) {
    MediaRecord record;
    record.is_360 = true;
    record.kind = MediaKind::kImage;
    put_file("/photos", FileFacts{"ball.jpg", 1, 0}, record);
    EXPECT_EQ(media_names(TestFilter(id(), std::string(kImages) + " AND MEDIA_360 = 1 ")), Names{"ball.jpg"});
}

TEST_F(Queries, KeywordSearchFoldsAllOfUnicode) {
    TestFilter filter(id(), "MEDIA_DISPLAY_NAME LIKE '%z\u00fcri%' AND " + std::string(kImages));
    EXPECT_EQ(media_names(filter.order("MEDIA_DISPLAY_NAME")), Names{"Z\u00dcRICH.jpeg"});
}

TEST_F(Queries, AnEmptyKeywordFindsEverything) {
    EXPECT_EQ(
        media_names(TestFilter(id(), "MEDIA_DISPLAY_NAME LIKE '%%' AND " + std::string(kImages))).size(), 5u);
}

TEST_F(Queries, WildcardsInAKeywordSelectRowsAndNothingElse) {
    const auto search = [&](const std::string& keyword) {
        return media_names(TestFilter(id(), "MEDIA_DISPLAY_NAME LIKE '%" + keyword + "%' AND " + kImages));
    };
    EXPECT_EQ(search("img_2"), Names{"img_2.jpg"});
    EXPECT_EQ(search("g_%0."), Names{"IMG_10.JPG"});
    EXPECT_EQ(search("' OR 0=0 OR MEDIA_DISPLAY_NAME LIKE '").size(), 15u) << "only rows of this storage";
    EXPECT_EQ(search("'; DELETE FROM media; --"), Names{"error 6"});
    EXPECT_EQ(number("SELECT count(*) FROM media"), 15);
}

TEST_F(Queries, AConditionThatIsNotUnderstoodIsShownInOneLogLine) {
    LogCapture log;
    EXPECT_EQ(media_names(TestFilter(id(), "MEDIA_DISPLAY_NAME LIKE '%a'b%'\n")), Names{"error 6"});
    EXPECT_EQ(log.count("MEDIA_DISPLAY_NAME LIKE '%a'b%'\\x0a"), 1);
}

TEST_F(Queries, AnUnknownOrderFailsTheQuery) {
    TestFilter filter(id());
    EXPECT_EQ(media_names(filter.order("MEDIA_DISPLAY_NAME; DROP TABLE media")), Names{"error 6"});
}

TEST_F(Queries, EqualityIgnoresCaseButNotNumbersWrittenOtherwise) {
    EXPECT_EQ(media_names(TestFilter(id(), "MEDIA_DISPLAY_NAME = 'IMG_2.JPG'")), Names{"img_2.jpg"});
    EXPECT_EQ(media_names(TestFilter(id(), "MEDIA_DISPLAY_NAME = 'IMG_02.JPG'")), Names{});
}

TEST_F(Queries, AMediaPathIsComparedByteByByte) {
    EXPECT_EQ(media_names(TestFilter(id(), "MEDIA_PATH = '" + path("/photos/img_2.jpg") + "'")),
              Names{"img_2.jpg"});
    EXPECT_EQ(media_names(TestFilter(id(), "MEDIA_PATH = '" + path("/photos/IMG_2.jpg") + "'")), Names{});
}

TEST_F(Queries, RecordingsOfAFolderComeInEveryOrder) {
    TestFilter filter(id(), std::string(kRecordings) + " AND UHD_FOLDER_ID = '" + pvr_ + "'");
    EXPECT_EQ(pvr_titles(filter.order("PVR_PROGRAM_TITLE")), (Names{"Alpha", "News", "Zoo 9", "zoo 10"}));
    EXPECT_EQ(pvr_titles(filter.order("PVR_START_TIME", kDescending)),
              (Names{"Alpha", "zoo 10", "News", "Zoo 9"}));
    EXPECT_EQ(pvr_titles(filter.order("PVR_CHANNEL_NAME")), (Names{"Zoo 9", "Alpha", "News", "zoo 10"}));
    EXPECT_EQ(pvr_titles(filter.order("PVR_MAJOR,PVR_MINOR")), (Names{"Zoo 9", "Alpha", "zoo 10", "News"}));
}

TEST_F(Queries, UnwatchedAndScheduledRecordingsAreFound) {
    EXPECT_EQ(pvr_titles(TestFilter(id(), std::string("PVR_CONTENT_WATCH = 0 AND ") + kRecordings)).size(),
              3u);
    EXPECT_EQ(pvr_titles(TestFilter(id(), std::string("PVR_TIMER_RECORD = 1 AND ") + kRecordings)),
              Names{"Alpha"});
}

TEST_F(Queries, RecordingsAreFoundByKeyword) {
    TestFilter filter(id(), std::string("PVR_PROGRAM_TITLE LIKE '%ZOO%' AND ") + kRecordings);
    EXPECT_EQ(pvr_titles(filter.order("PVR_PROGRAM_TITLE")), (Names{"Zoo 9", "zoo 10"}));
}

TEST_F(Queries, UhdTitlesOfAFolderComeByKindAndName) {
    TestFilter filter(id(), "UHD_FOLDER_ID = '" + uhd_folder() + "' AND " + kUhdFiles);
    EXPECT_EQ(uhd_names(filter.order("UHD_SUB_TYPE,UHD_FILE_NAME")),
              (Names{"Another.km4", "film 10.um4", "Film 2.um4"}));
}

TEST_F(Queries, UhdTitlesToUpdateAreFound) {
    TestFilter filter(id(), "UHD_FOLDER_ID = '" + uhd_folder() + "' AND UHD_SUB_TYPE = -1 AND " + kUhdFiles);
    EXPECT_EQ(uhd_names(filter.order("UHD_SUB_TYPE")), (Names{"Another.km4", "film 10.um4"}));
}

TEST_F(Queries, UhdTitlesAreFoundByKeyword) {
    TestFilter filter(id(), std::string("UHD_FILE_NAME LIKE '%FILM%' AND ") + kUhdFiles);
    EXPECT_EQ(uhd_names(filter.order("UHD_FILE_NAME")), (Names{"Film 2.um4", "film 10.um4"}));
}

TEST_F(Queries, WithoutAUhdDeviceThereAreNoUhdTitles) {
    EXPECT_EQ(uhd_names(TestFilter(id(), "UHD_FOLDER_ID = '" + uhd_folder() + "' AND ( 0=1 )")), Names{});
}

TEST_F(Queries, AMediaListTellsEveryKindOfRow) {
    std::string kinds;
    for (const MediaHandle& media : kept_media(TestFilter(id()))) {
        kinds += std::to_string(int_of(media_info_get_media_type, media.get()));
    }
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), '5'), 4);
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), '6'), 3);
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), '7'), 1);
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), '0'), 5);
}

TEST_F(Queries, TheFolderOfAFolderQueryMayBeNamedInTheCondition) {
    TestFilter filter(id(), std::string(kImages) + " AND MEDIA_FOLDER_ID = '" + photos_ + "'");
    EXPECT_EQ(media_names(filter.order("MEDIA_MODIFIED_DATE", kDescending)),
              (Names{"img_2.jpg", "Z\u00dcRICH.jpeg", "IMG_10.JPG"}));
}

TEST_F(Queries, StoragesAreFoundByPath) {
    EXPECT_EQ(storage_names(TestFilter("", "STORAGE_PATH = '" + path("") + "'")), Names{"USBDrive1"});
    EXPECT_EQ(storage_names(TestFilter("", "STORAGE_PATH = '" + path("2") + "'")), Names{});
    EXPECT_EQ(storage_names(TestFilter("", "STORAGE_PATH = '" + path("/photos") + "'")), Names{});
    EXPECT_EQ(storage_names(TestFilter("", "STORAGE_PATH = 'elsewhere'")), Names{});
    EXPECT_EQ(storage_names(nullptr), Names{"USBDrive1"});
}

TEST_F(Queries, RowsOfAnUnknownStorageAreNone) {
    EXPECT_EQ(media_names(TestFilter("no such id")), Names{});
    EXPECT_EQ(folder_names(TestFilter("no such id")), Names{});
}

TEST_F(Queries, ACallbackThatReturnsFalseEndsTheList) {
    int calls = 0;
    const auto stop = [](media_info_h, void* count) { return ++*static_cast<int*>(count) < 3; };
    EXPECT_EQ(media_info_foreach_media_from_db(nullptr, stop, &calls), 0);
    EXPECT_EQ(calls, 3);
}

TEST_F(Queries, ACallbackMayAskFurtherQuestions) {
    int found = 0;
    const auto ask = [](media_info_h media, void* count) {
        const std::string id = text_of(media_info_get_media_id, media);
        media_pvr_h recording = nullptr;
        if (media_pvr_get_pvr_from_db(id.c_str(), &recording) == 0) {
            ++*static_cast<int*>(count);
            media_pvr_destroy(recording);
        }
        return true;
    };
    EXPECT_EQ(media_info_foreach_media_from_db(nullptr, ask, &found), 0);
    EXPECT_EQ(found, 4);
}

// Groups

TEST_F(Queries, DateGroupsOfAFolderFollowTheListsOrder) {
    put_file("/photos", "late.jpg", MediaKind::kImage, 90000);
    put_file("/photos", "late too.jpg", MediaKind::kImage, 82800);  // midnight in Berlin
    put_file("/photos", "earlier.jpg", MediaKind::kImage, 82799);
    TestFilter filter(id(), std::string(kImages) + " AND MEDIA_FOLDER_ID = '" + photos_ + "'");
    EXPECT_EQ(groups(filter.order("MEDIA_MODIFIED_DATE", kDescending), MEDIA_GROUP_FOLDER_DATE),
              (Names{"1970-01-02: 2", "1970-01-01: 4"}));
}

TEST_F(Queries, ChannelGroupsIgnoreCase) {
    put_recording("e.srf", "More", "bbc TWO", 2, 10, 1);
    TestFilter filter(id(), std::string(kRecordings) + " AND UHD_FOLDER_ID = '" + pvr_ + "'");
    EXPECT_EQ(groups(filter.order("PVR_CHANNEL_NAME"), MEDIA_GROUP_CHANNEL_NAME),
              (Names{"(null): 1", "bbc one: 1", "BBC Two: 3"}));
}

TEST_F(Queries, ChannelNumberGroupsComeByNumber) {
    TestFilter filter(id());
    EXPECT_EQ(groups(filter.order("PVR_MAJOR,PVR_MINOR"), MEDIA_GROUP_CHANNEL_NUM),
              (Names{"0-0: 1", "1-2: 1", "2-9: 1", "2-10: 1"}));
}

TEST_F(Queries, DateGroupsOfRecordingsAgreeWithTheListByStartTime) {
    TestFilter filter(id(), std::string(kRecordings) + " AND UHD_FOLDER_ID = '" + pvr_ + "'");
    EXPECT_EQ(groups(filter.order("MEDIA_MODIFIED_DATE", kDescending), MEDIA_GROUP_PVR_DATE),
              (Names{"2023-11-16: 1", "2023-11-15: 1", "2023-11-14: 1", "1970-01-01: 1"}));
    EXPECT_EQ(pvr_titles(filter.order("PVR_START_TIME", kDescending)),
              (Names{"Alpha", "zoo 10", "News", "Zoo 9"}));
}

TEST_F(Queries, DateGroupsOfAWholeStorageFollowTheFiltersOrder) {
    TestFilter filter(id());
    EXPECT_EQ(groups(filter.order("PVR_MODIFIED_DATE"), MEDIA_GROUP_PVR_DATE),
              (Names{"1970-01-01: 1", "2023-11-14: 1", "2023-11-15: 1", "2023-11-16: 1"}));
}

TEST_F(Queries, GroupsByTagsPutRowsWithoutOneUnderNull) {
    MediaRecord record;
    record.kind = MediaKind::kMusic;
    record.audio.artist = "Anna";
    put_file("/music", FileFacts{"1.mp3", 1, 0}, record);
    record.audio.artist = "ANNA";
    put_file("/music", FileFacts{"2.mp3", 1, 0}, record);
    TestFilter filter(id(), "MEDIA_DISPLAY_NAME LIKE '%.mp3'");
    EXPECT_EQ(groups(filter, MEDIA_GROUP_ARTIST), (Names{"(null): 1", "Anna: 2"}));
}

TEST_F(Queries, WithoutAFieldAllRowsAreOneGroup) {
    EXPECT_EQ(groups(TestFilter(id(), kImages), MEDIA_GROUP_NONE), Names{"(null): 5"});
}

TEST_F(Queries, AnUnknownGroupFieldIsRefused) {
    EXPECT_EQ(groups(TestFilter(id()), 1), Names{"error 1"});
}

TEST_F(Queries, NoRowsMakeNoGroups) {
    EXPECT_EQ(groups(TestFilter(id(), "0=1"), MEDIA_GROUP_FOLDER_DATE), Names{});
}

// Plans

class QueryPlans : public Queries {
protected:
    std::string plan(const char* columns, const Sql& selection, RowKind kind, filter_h filter) {
        Sql sql = selection;
        append_order(sql, kind, filter);
        Database::ReadLease lease(database());
        Query query(lease.connection(), std::string("EXPLAIN QUERY PLAN SELECT ") + columns + sql.text);
        bind_values(query, sql.values);
        std::string text;
        while (query.step()) {
            text += std::string(query.text(3)) + "\n";
        }
        return text;
    }
    std::string plan_of(RowKind kind, const char* columns, filter_h filter) {
        Database::ReadLease lease(database());
        return plan(columns, select_rows(lease.connection(), kind, filter), kind, filter);
    }
    std::string plan_of_storage(filter_h filter) { return plan_of(RowKind::kMedia, kListColumns, filter); }
    std::string plan_of_folder(filter_h filter) {
        Database::ReadLease lease(database());
        const Sql selection = select_rows_of_folder(lease.connection(), std::stoll(photos_), filter);
        return plan(kListColumns, selection, RowKind::kMedia, filter);
    }

    static constexpr const char* kListColumns = "m.id, m.kind, m.is_360, m.folder, m.name";
};

void expect_index_only(const std::string& plan, const std::string& index) {
    EXPECT_NE(plan.find("COVERING INDEX " + index + " "), std::string::npos) << plan;
    EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << plan;
}

TEST_F(QueryPlans, FoldersComeFromOneIndexWithoutASort) {
    TestFilter filter(id(), "FOLDER_PARENT_FOLDER_ID = '" + photos_ + "'");
    filter.order("FOLDER_NAME");
    const std::string plan = plan_of(RowKind::kFolder, "f.id, f.name", filter);
    EXPECT_NE(plan.find("folder_by_parent"), std::string::npos) << plan;
    EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << plan;
    const std::string by_path =
        plan_of(RowKind::kFolder, "f.id", TestFilter(id(), "FOLDER_PATH = '" + path("/photos") + "'"));
    EXPECT_NE(by_path.find("(storage=? AND path=?)"), std::string::npos) << by_path;
}

TEST_F(QueryPlans, RecordingsAreFoundWithoutGoingThroughAllMedia) {
    const std::string plan = plan_of(RowKind::kRecording, "m.id", TestFilter(id(), kRecordings));
    EXPECT_EQ(plan.find("SCAN p\nSEARCH m USING INTEGER PRIMARY KEY (rowid=?)"), 0u) << plan;
}

TEST_F(QueryPlans, ListsComeFromOneIndexWithoutASort) {
    TestFilter filter(id(), kAll);
    expect_index_only(plan_of_storage(filter.order("MEDIA_DISPLAY_NAME")), "media_by_name");
    expect_index_only(plan_of_storage(filter.order("MEDIA_DISPLAY_NAME", kDescending)), "media_by_name");
    expect_index_only(plan_of_storage(filter.order("MEDIA_MODIFIED_TIME", kDescending)), "media_by_time");
    expect_index_only(plan_of_folder(filter.order("MEDIA_DISPLAY_NAME")), "media_in_folder_by_name");
    expect_index_only(plan_of_folder(filter.order("MEDIA_MODIFIED_TIME", kDescending)),
                      "media_in_folder_by_time");
    TestFilter named(id(), std::string(kAll) + " AND MEDIA_FOLDER_ID = '" + photos_ + "'");
    expect_index_only(plan_of_storage(named.order("MEDIA_MODIFIED_DATE", kDescending)),
                      "media_in_folder_by_time");
}

}  // namespace
}  // namespace media_content
