#include "libqra-agent/source/local-source/qra_msc_source.h"

#include <map>

#include "tests/unit/local_source/msc_source_fixture.h"

namespace {

namespace faults = media_content_faults;

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
