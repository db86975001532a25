#include "platform/media-content/host/database/media_writer.h"

#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

using MediaWriterTest = TemporaryDatabase;

MediaRecord recording(const std::string& title, const std::string& channel) {
    MediaRecord record;
    record.kind = MediaKind::kRecording;
    record.recording.program_title = title;
    record.recording.channel_name = channel;
    record.recording.start_time = 1700000000;
    return record;
}

TEST_F(MediaWriterTest, AFolderIsMadeWithTheFoldersAboveIt) {
    const int64_t deep = put_folder("/a/b/c");
    EXPECT_EQ(number("SELECT count(*) FROM folder"), 4);
    EXPECT_EQ(text("SELECT name FROM folder WHERE id = " + std::to_string(deep)), "c");
    EXPECT_EQ(text("SELECT path FROM folder WHERE id = (SELECT parent FROM folder WHERE path = '/a/b/c')"),
              "/a/b");
    EXPECT_EQ(number("SELECT parent IS NULL FROM folder WHERE path = ''"), 1);
}

TEST_F(MediaWriterTest, AFolderThatIsThereKeepsItsId) {
    const int64_t first = put_folder("/photos");
    EXPECT_EQ(put_folder("/photos"), first);
}

TEST_F(MediaWriterTest, FoldersAndMediaCountInRangesThatDoNotMeet) {
    const int64_t folder = put_folder("/photos");
    const int64_t file = put_file("/photos", "a.jpg", MediaKind::kImage);
    EXPECT_GT(folder, int64_t{1} << 40);
    EXPECT_LT(file, 1000);
}

TEST_F(MediaWriterTest, FoldersThatDifferByCaseOnlyAreTwo) {
    EXPECT_NE(put_folder("/Photos"), put_folder("/photos"));
}

TEST_F(MediaWriterTest, WhatIsKnownOfAFolderIsWhatWasWritten) {
    const int64_t folder = put_folder("/photos");
    const int64_t id = put_file("/photos", "a.jpg", MediaKind::kImage, 42);
    put_file("/photos/deep", "b.jpg", MediaKind::kImage);

    Database::ReadLease reader(database());
    const std::vector<KnownFile> files = known_files(reader.connection(), folder);
    const std::vector<KnownFolder> folders = known_folders(reader.connection(), folder);

    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].id, id);
    EXPECT_EQ(files[0].facts.name, "a.jpg");
    EXPECT_EQ(files[0].facts.size, 100);
    EXPECT_EQ(files[0].facts.modified_ns, 42000000000);
    ASSERT_EQ(folders.size(), 1u);
    EXPECT_EQ(folders[0].name, "deep");
}

TEST_F(MediaWriterTest, AFileThatIsWrittenAgainKeepsItsIdAndWhatTheUserDid) {
    const int64_t id = put_file("", "a.mp4", MediaKind::kVideo, 1);
    {
        Database::WriteLease write(database());
        write.connection().execute("UPDATE media SET played_count = 3, played_position = 5000, favorite = 1");
        write.commit();
    }
    MediaRecord changed;
    changed.kind = MediaKind::kVideo;
    changed.video.width = 1920;
    EXPECT_EQ(put_file("", FileFacts{"a.mp4", 200, 0}, changed), id);
    EXPECT_EQ(number("SELECT played_count * 10000 + played_position FROM media"), 35000);
    EXPECT_EQ(number("SELECT width FROM media"), 1920);
    EXPECT_EQ(number("SELECT size FROM media"), 200);
}

TEST_F(MediaWriterTest, ANameOfAnyBytesComesBackAsItWas) {
    const std::string name = "100%_'\"\n\xff\xfe.jpg";
    put_file("", name, MediaKind::kImage);
    EXPECT_EQ(text("SELECT name FROM media"), name);
}

TEST_F(MediaWriterTest, AFileWithoutATitleHasItsNameForOne) {
    put_file("", "Holiday.2021.jpg", MediaKind::kImage);
    EXPECT_EQ(text("SELECT title FROM media"), "Holiday.2021");
}

TEST_F(MediaWriterTest, ARecordingsTimeIsItsStart) {
    put_file("", FileFacts{"a.srf", 1, 5000000000}, recording("News", "One"));
    EXPECT_EQ(number("SELECT sort_time FROM media"), 1700000000);
}

TEST_F(MediaWriterTest, ARecordingWithoutAStartHasTheTimeOfItsFile) {
    MediaRecord record = recording("News", "One");
    record.recording.start_time = 0;
    put_file("", FileFacts{"a.srf", 1, 5000000000}, record);
    EXPECT_EQ(number("SELECT sort_time FROM media"), 5);
}

TEST_F(MediaWriterTest, ATimeBefore1970IsRoundedDown) {
    put_file("", FileFacts{"a.jpg", 1, -1}, MediaRecord{});
    EXPECT_EQ(number("SELECT sort_time FROM media"), -1);
}

TEST_F(MediaWriterTest, ATitleThatTheUserSetSurvivesAScan) {
    put_file("", FileFacts{"a.srf", 1, 0}, recording("News", "One"));
    {
        Database::WriteLease write(database());
        write.connection().execute("UPDATE pvr SET program_title = 'Mine', user_set = user_set | 1");
        write.commit();
    }
    put_file("", FileFacts{"a.srf", 2, 0}, recording("Late news", "Two"));
    EXPECT_EQ(text("SELECT program_title FROM pvr"), "Mine");
    EXPECT_EQ(text("SELECT channel_name FROM pvr"), "Two");
}

TEST_F(MediaWriterTest, ARemovedFileTakesItsDetailsWithIt) {
    const int64_t id = put_file("", FileFacts{"a.srf", 1, 0}, recording("News", "One"));
    MediaWriter writer(database());
    writer.remove_file(id);
    writer.commit();
    EXPECT_EQ(number("SELECT (SELECT count(*) FROM media) + (SELECT count(*) FROM pvr)"), 0);
}

TEST_F(MediaWriterTest, ARemovedFolderTakesEverythingBelowWithIt) {
    put_file("/a/b", "1.jpg", MediaKind::kImage);
    put_file("/ab", "2.jpg", MediaKind::kImage);
    MediaWriter writer(database());
    writer.remove_folder(writer.ensure_folder(drive().key, "/a", 0));
    writer.commit();
    EXPECT_EQ(text("SELECT group_concat(name) FROM media"), "2.jpg");
    EXPECT_EQ(number("SELECT count(*) FROM folder"), 2);
}

TEST_F(MediaWriterTest, AnIdIsNeverUsedTwice) {
    const int64_t first = put_file("", "a.jpg", MediaKind::kImage);
    {
        MediaWriter writer(database());
        writer.remove_file(first);
        writer.commit();
    }
    EXPECT_GT(put_file("", "b.jpg", MediaKind::kImage), first);
}

TEST_F(MediaWriterTest, WhatIsNotCommittedIsUndone) {
    put_folder("");
    {
        MediaWriter writer(database());
        writer.ensure_folder(drive().key, "/lost", 0);
    }
    EXPECT_EQ(number("SELECT count(*) FROM folder"), 1);
}

TEST_F(MediaWriterTest, AnUnknownFolderIsAnError) {
    MediaWriter writer(database());
    EXPECT_THROW(writer.put_file(4711, FileFacts{"a.jpg", 1, 1}, MediaRecord{}), MediaError);
}

TEST_F(MediaWriterTest, StatusesAreKept) {
    const int64_t folder = put_folder("/a");
    MediaWriter writer(database());
    writer.set_folder_status(folder, MEDIA_SCAN_STATUS_FOLDER_SCANNED);
    writer.set_storage_status(drive().key, MEDIA_SCAN_STATUS_FULLY_SCANNED);
    writer.commit();
    EXPECT_EQ(number("SELECT scan_status FROM folder WHERE path = '/a'"), 4);
    EXPECT_EQ(number("SELECT scan_status FROM storage"), 7);
}

}  // namespace
}  // namespace media_content
