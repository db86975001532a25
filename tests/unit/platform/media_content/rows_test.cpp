#include <algorithm>
#include <atomic>
#include <climits>
#include <thread>

#include "tests/unit/platform/media_content/contract.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

MediaRecord picture() {
    MediaRecord record;
    record.kind = MediaKind::kImage;
    record.mime_type = "image/jpeg";
    record.title = "Lake";
    record.author = "Anna";
    record.provider = "provider";
    record.content_name = "content";
    record.category = "category";
    record.age_rating = "12";
    record.keyword = "water";
    record.location_tag = "37.5 126.9";
    record.latitude = 37.5;
    record.longitude = 126.9;
    record.altitude = -12.25;
    record.rating = 4;
    record.is_drm = true;
    record.is_360 = true;
    record.stitch_type = StitchType::kUnstitched;
    record.image.width = 4000;
    record.image.height = 3000;
    record.image.orientation = 6;
    record.image.iso = 100;
    record.image.f_number = 2.8;
    record.image.exposure_time = "1/60";
    record.image.date_taken = "2021:05:06 10:20:30";
    record.image.model = "Camera";
    record.image.burst_id = "burst";
    return record;
}

template <typename Handle, typename Value>
Value value_of(int (*getter)(Handle, Value*), Handle handle) {
    Value value{};
    EXPECT_EQ(getter(handle, &value), 0);
    return value;
}

class Rows : public TemporaryDatabase {
protected:
    MediaHandle put(const std::string& name, const MediaRecord& record) {
        return media_by_id(put_file("/dir", FileFacts{name, 5000000000, 1620289230123456789}, record));
    }
};

TEST_F(Rows, APictureTellsItsCommonValues) {
    const MediaHandle handle = put("lake.jpg", picture());
    media_info_s* media = handle.get();
    EXPECT_EQ(int_of(media_info_get_media_type, media), 0);
    EXPECT_EQ(int_of(media_info_get_storage_type, media), MEDIA_CONTENT_STORAGE_EXTERNAL);
    EXPECT_EQ(int_of(media_info_get_rating, media), 4);
    EXPECT_EQ(int_of(media_info_get_played_count, media), 0);
    EXPECT_EQ(int_of(media_info_get_played_position, media), 0);
    EXPECT_EQ(int_of(media_info_get_stitched_state, media), 0x10000);
    EXPECT_EQ(text_of(media_info_get_title, media), "Lake");
    EXPECT_EQ(text_of(media_info_get_file_path, media), drive().link_path() + "/dir/lake.jpg");
    EXPECT_EQ(text_of(media_info_get_display_name, media), "lake.jpg");
    EXPECT_EQ(text_of(media_info_get_mime_type, media), "image/jpeg");
    EXPECT_EQ(text_of(media_info_get_author, media), "Anna");
    EXPECT_EQ(text_of(media_info_get_provider, media), "provider");
    EXPECT_EQ(text_of(media_info_get_content_name, media), "content");
    EXPECT_EQ(text_of(media_info_get_category, media), "category");
    EXPECT_EQ(text_of(media_info_get_location_tag, media), "37.5 126.9");
    EXPECT_EQ(text_of(media_info_get_age_rating, media), "12");
    EXPECT_EQ(text_of(media_info_get_keyword, media), "water");
    EXPECT_FALSE(value_of(media_info_get_favorite, media));
    EXPECT_TRUE(value_of(media_info_is_drm, media));
    EXPECT_TRUE(value_of(media_info_is_360_content, media));
    EXPECT_EQ(value_of(media_info_get_size, media), 5000000000u);
    EXPECT_EQ(value_of(media_info_get_longitude, media), 126.9);
    EXPECT_EQ(value_of(media_info_get_latitude, media), 37.5);
    EXPECT_EQ(value_of(media_info_get_altitude, media), -12.25);
    EXPECT_EQ(value_of(media_info_get_modified_time, media), 1620289230);
    EXPECT_NEAR(static_cast<double>(value_of(media_info_get_added_time, media)),
                static_cast<double>(time(nullptr)), 60);
    EXPECT_EQ(value_of(media_info_get_played_time, media), 0);
}

TEST_F(Rows, APictureTellsItsOwnValues) {
    const MediaHandle handle = put("lake.jpg", picture());
    image_meta_h image = nullptr;
    ASSERT_EQ(media_info_get_image(handle.get(), &image), 0);
    EXPECT_EQ(int_of(image_meta_get_width, image), 4000);
    EXPECT_EQ(int_of(image_meta_get_height, image), 3000);
    EXPECT_EQ(int_of(image_meta_get_orientation, image), 6);
    EXPECT_EQ(int_of(image_meta_get_iso, image), 100);
    EXPECT_EQ(value_of(image_meta_get_fnumber, image), 2.8);
    EXPECT_EQ(text_of(image_meta_get_exposure_time, image), "1/60");
    EXPECT_EQ(text_of(image_meta_get_date_taken, image), "2021:05:06 10:20:30");
    EXPECT_EQ(text_of(image_meta_get_model, image), "Camera");
    EXPECT_EQ(text_of(image_meta_get_burst_id, image), "burst");
    EXPECT_EQ(image_meta_destroy(image), 0);
}

TEST_F(Rows, AFilmTellsItsOwnValues) {
    MediaRecord record;
    record.kind = MediaKind::kVideo;
    record.video = {1920, 1080, 7200000, 8000000};
    const MediaHandle handle = put("film.mp4", record);
    video_meta_h video = nullptr;
    ASSERT_EQ(media_info_get_video(handle.get(), &video), 0);
    EXPECT_EQ(int_of(video_meta_get_width, video), 1920);
    EXPECT_EQ(int_of(video_meta_get_height, video), 1080);
    EXPECT_EQ(int_of(video_meta_get_duration, video), 7200000);
    EXPECT_EQ(int_of(video_meta_get_bit_rate, video), 8000000);
    EXPECT_EQ(video_meta_destroy(video), 0);
}

TEST_F(Rows, ANumberThatIsTooLargeIsCut) {
    MediaRecord record;
    record.kind = MediaKind::kVideo;
    record.video.duration_ms = 1LL << 40;
    const MediaHandle handle = put("film.mp4", record);
    video_meta_h video = nullptr;
    ASSERT_EQ(media_info_get_video(handle.get(), &video), 0);
    EXPECT_EQ(int_of(video_meta_get_duration, video), INT_MAX);
    video_meta_destroy(video);
}

TEST_F(Rows, MusicTellsItsOwnValues) {
    MediaRecord record;
    record.kind = MediaKind::kMusic;
    record.audio = {20023,   2,          320000, 44100,        16,    "Album", "Artist",
                    "Genre", "Composer", "1999", "1999-01-02", "(c)", "7"};
    const MediaHandle handle = put("song.mp3", record);
    audio_meta_h audio = nullptr;
    ASSERT_EQ(media_info_get_audio(handle.get(), &audio), 0);
    EXPECT_EQ(int_of(audio_meta_get_duration, audio), 20023);
    EXPECT_EQ(int_of(audio_meta_get_channel, audio), 2);
    EXPECT_EQ(int_of(audio_meta_get_bit_rate, audio), 320000);
    EXPECT_EQ(int_of(audio_meta_get_sample_rate, audio), 44100);
    EXPECT_EQ(int_of(audio_meta_get_bitpersample, audio), 16);
    EXPECT_EQ(text_of(audio_meta_get_album, audio), "Album");
    EXPECT_EQ(text_of(audio_meta_get_artist, audio), "Artist");
    EXPECT_EQ(text_of(audio_meta_get_genre, audio), "Genre");
    EXPECT_EQ(text_of(audio_meta_get_composer, audio), "Composer");
    EXPECT_EQ(text_of(audio_meta_get_year, audio), "1999");
    EXPECT_EQ(text_of(audio_meta_get_recorded_date, audio), "1999-01-02");
    EXPECT_EQ(text_of(audio_meta_get_copyright, audio), "(c)");
    EXPECT_EQ(text_of(audio_meta_get_track_num, audio), "7");
    EXPECT_EQ(audio_meta_destroy(audio), 0);
}

TEST_F(Rows, WhatIsNotKnownIsZeroAndEmpty) {
    MediaRecord record;
    record.kind = MediaKind::kImage;
    const MediaHandle handle = put("plain.jpg", record);
    image_meta_h image = nullptr;
    ASSERT_EQ(media_info_get_image(handle.get(), &image), 0);
    EXPECT_EQ(int_of(image_meta_get_width, image), 0);
    EXPECT_EQ(value_of(image_meta_get_fnumber, image), 0.0);
    EXPECT_EQ(text_of(image_meta_get_model, image), "");
    EXPECT_EQ(value_of(media_info_get_altitude, handle.get()), 0.0);
    image_meta_destroy(image);
}

TEST_F(Rows, ARowOfAnotherKindHasNoPictureValues) {
    MediaRecord record;
    record.kind = MediaKind::kSound;
    const MediaHandle handle = put("a.wav", record);
    image_meta_h image = nullptr;
    video_meta_h video = nullptr;
    audio_meta_h audio = nullptr;
    EXPECT_EQ(media_info_get_image(handle.get(), &image), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_info_get_video(handle.get(), &video), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_info_get_audio(handle.get(), &audio), 0);
    audio_meta_destroy(audio);
}

MediaRecord recording() {
    MediaRecord record;
    record.kind = MediaKind::kRecording;
    RecordingMetadata& r = record.recording;
    int next = 100;
    for (int* number : {&r.timezone,
                        &r.ptc,
                        &r.major,
                        &r.minor,
                        &r.channel_type,
                        &r.program_num,
                        &r.duration,
                        &r.embargo_time,
                        &r.expiry_time,
                        &r.start_time,
                        &r.program_start_time,
                        &r.program_end_time,
                        &r.program_date,
                        &r.parental_rating,
                        &r.aspect_ratio,
                        &r.resolution,
                        &r.sports_type,
                        &r.guidance_length,
                        &r.tv_mode,
                        &r.play_count,
                        &r.hd}) {
        *number = next++;
    }
    r.channel_name = "One";
    r.channel_num = "1-1";
    r.program_title = "News";
    r.program_crid = "crid";
    r.guidance = "guidance";
    r.synopsis = "synopsis";
    r.genre = "genre";
    r.language = "eng";
    r.modified_month = "5";
    r.private_data = "private";
    return record;
}

TEST_F(Rows, ARecordingTellsItsNumbers) {
    const PvrHandle pvr = pvr_by_id(put_file("", FileFacts{"a.srf", 77, 0}, recording()));
    using Getter = int (*)(media_pvr_h, int*);
    const Getter getters[] = {media_pvr_get_timezone,
                              media_pvr_get_ptc,
                              media_pvr_get_major,
                              media_pvr_get_minor,
                              media_pvr_get_channel_type,
                              media_pvr_get_program_num,
                              media_pvr_get_duration,
                              media_pvr_get_embargo_time,
                              media_pvr_get_expiry_time,
                              media_pvr_get_start_time,
                              media_pvr_get_program_start_time,
                              media_pvr_get_program_end_time,
                              media_pvr_get_program_date,
                              media_pvr_get_parental_rating,
                              media_pvr_get_aspectratio,
                              media_pvr_get_resolution,
                              media_pvr_get_sports_type,
                              media_pvr_get_guidance_length,
                              media_pvr_get_tvmode,
                              media_pvr_get_play_count,
                              media_pvr_get_hd};
    int expected = 100;
    for (const Getter getter : getters) {
        EXPECT_EQ(int_of(getter, pvr.get()), expected) << "getter " << expected - 100;
        ++expected;
    }
    EXPECT_EQ(value_of(media_pvr_get_size, pvr.get()), 77u);
}

TEST_F(Rows, ARecordingTellsItsTexts) {
    const int64_t id = put_file("", FileFacts{"a.srf", 1, 0}, recording());
    const PvrHandle handle = pvr_by_id(id);
    media_pvr_s* pvr = handle.get();
    EXPECT_EQ(text_of(media_pvr_get_storage_id, pvr), drive().id);
    EXPECT_EQ(text_of(media_pvr_get_channel_name, pvr), "One");
    EXPECT_EQ(text_of(media_pvr_get_channel_num, pvr), "1-1");
    EXPECT_EQ(text_of(media_pvr_get_program_title, pvr), "News");
    EXPECT_EQ(text_of(media_pvr_get_program_crid, pvr), "crid");
    EXPECT_EQ(text_of(media_pvr_get_guidance, pvr), "guidance");
    EXPECT_EQ(text_of(media_pvr_get_synopsis, pvr), "synopsis");
    EXPECT_EQ(text_of(media_pvr_get_genre, pvr), "genre");
    EXPECT_EQ(text_of(media_pvr_get_language, pvr), "eng");
    EXPECT_EQ(text_of(media_pvr_get_modified_month, pvr), "5");
    EXPECT_EQ(text_of(media_pvr_get_private_data, pvr), "private");
    EXPECT_EQ(text_of(media_pvr_get_media_id, pvr), std::to_string(id));
    EXPECT_EQ(text_of(media_pvr_get_path, pvr), drive().link_path() + "/a.srf");
}

TEST_F(Rows, ARecordingTellsItsMarksOneByOne) {
    using Getter = int (*)(media_pvr_h, bool*);
    const std::pair<Getter, bool RecordingMetadata::*> marks[] = {
        {media_pvr_get_timer_record, &RecordingMetadata::timer_record},
        {media_pvr_get_series_record, &RecordingMetadata::series_record},
        {media_pvr_get_subtitle, &RecordingMetadata::subtitle},
        {media_pvr_get_ttx, &RecordingMetadata::ttx},
        {media_pvr_get_ad, &RecordingMetadata::ad},
        {media_pvr_get_hard_of_hearing_radio, &RecordingMetadata::hard_of_hearing_radio},
        {media_pvr_get_data_service, &RecordingMetadata::data_service},
        {media_pvr_get_content_lock, &RecordingMetadata::content_lock},
        {media_pvr_get_content_watch, &RecordingMetadata::content_watch},
        {media_pvr_get_has_audio_only, &RecordingMetadata::has_audio_only},
        {media_pvr_get_is_local_record, &RecordingMetadata::is_local_record}};
    for (const auto& [set_getter, member] : marks) {
        MediaRecord record = recording();
        record.recording.*member = true;
        const PvrHandle pvr = pvr_by_id(put_file("", FileFacts{"a.srf", 1, 0}, record));
        for (const auto& [getter, other] : marks) {
            EXPECT_EQ(value_of(getter, pvr.get()), other == member);
        }
    }
}

TEST_F(Rows, AUhdTitleTellsItsValues) {
    MediaRecord record;
    record.kind = MediaKind::kUhd;
    record.uhd = {"cid", "Film", "2020-02-02", -1};
    const int64_t id = put_file("", FileFacts{"film.um4", 9, 3000000000}, record);
    media_uhd_h uhd = nullptr;
    ASSERT_EQ(media_uhd_get_uhd_from_db(std::to_string(id).c_str(), &uhd), 0);
    EXPECT_EQ(text_of(media_uhd_get_media_id, uhd), std::to_string(id));
    EXPECT_EQ(text_of(media_uhd_get_content_id, uhd), "cid");
    EXPECT_EQ(text_of(media_uhd_get_path, uhd), drive().link_path() + "/film.um4");
    EXPECT_EQ(text_of(media_uhd_get_content_title, uhd), "Film");
    EXPECT_EQ(text_of(media_uhd_get_release_date, uhd), "2020-02-02");
    EXPECT_EQ(text_of(media_uhd_get_file_name, uhd), "film.um4");
    EXPECT_EQ(value_of(media_uhd_get_size, uhd), 9u);
    EXPECT_EQ(value_of(media_uhd_get_modified_time, uhd), 3);
    media_uhd_set_played_position(uhd, 11);
    media_uhd_set_played_count(uhd, 12);
    media_uhd_set_sub_type(uhd, 2);
    media_uhd_set_content_title(uhd, "Mine");
    EXPECT_EQ(media_uhd_update_to_db(uhd), 0);
    EXPECT_EQ(int_of(media_uhd_get_played_position, uhd), 11);
    EXPECT_EQ(int_of(media_uhd_get_played_count, uhd), 12);
    EXPECT_EQ(text_of(media_uhd_get_content_title, uhd), "Mine");
    EXPECT_EQ(number("SELECT sub_type FROM uhd"), 2);
    EXPECT_EQ(media_uhd_destroy(uhd), 0);
    put_file("", FileFacts{"film.um4", 10, 0}, record);
    EXPECT_EQ(text("SELECT content_title || sub_type FROM uhd"), "Mine2");
}

TEST_F(Rows, AFolderTellsItsValues) {
    {
        MediaWriter writer(database());
        writer.ensure_folder(drive().key, "/a/b", 99000000000);
        writer.commit();
    }
    media_folder_h folder = nullptr;
    TestFilter filter(drive().id, "FOLDER_NAME = 'B'");
    const auto keep = [](media_folder_h row, void* out) {
        media_folder_clone(static_cast<media_folder_h*>(out), row);
        return true;
    };
    ASSERT_EQ(media_folder_foreach_folder_from_db(filter, keep, &folder), 0);
    ASSERT_NE(folder, nullptr);
    EXPECT_EQ(text_of(media_folder_get_folder_id, folder), text("SELECT id FROM folder WHERE path = '/a/b'"));
    EXPECT_EQ(text_of(media_folder_get_parent_folder_id, folder),
              text("SELECT id FROM folder WHERE path = '/a'"));
    EXPECT_EQ(text_of(media_folder_get_path, folder), drive().link_path() + "/a/b");
    EXPECT_EQ(text_of(media_folder_get_name, folder), "b");
    EXPECT_EQ(value_of(media_folder_get_modified_time, folder), 99);
    EXPECT_EQ(media_folder_destroy(folder), 0);
}

TEST_F(Rows, WhatIsSetShowsWhenItIsWrittenInEveryCopy) {
    put("a.mp4", MediaRecord{});
    const std::vector<MediaHandle> rows = kept_media(nullptr);
    media_info_h copy = nullptr;
    ASSERT_EQ(media_info_clone(&copy, rows[0].get()), 0);
    EXPECT_EQ(media_info_set_played_count(copy, 3), 0);
    EXPECT_EQ(media_info_set_played_position(copy, 60000), 0);
    EXPECT_EQ(media_info_set_played_time(copy, 1700000000), 0);
    EXPECT_EQ(int_of(media_info_get_played_count, rows[0].get()), 0);
    EXPECT_EQ(media_info_update_to_db(copy), 0);
    EXPECT_EQ(int_of(media_info_get_played_count, rows[0].get()), 3);
    EXPECT_EQ(int_of(media_info_get_played_position, rows[0].get()), 60000);
    EXPECT_EQ(value_of(media_info_get_played_time, rows[0].get()), 1700000000);
    EXPECT_EQ(number("SELECT played_count FROM media"), 3);
    media_info_destroy(copy);
}

TEST_F(Rows, AnUpdateWithNothingSetIsASuccess) {
    const MediaHandle media = put("a.mp4", MediaRecord{});
    EXPECT_EQ(media_info_update_to_db(media.get()), 0);
}

TEST_F(Rows, WhatTheUserSetsOnARecordingIsFoundAndStays) {
    const int64_t id = put_file("", FileFacts{"a.srf", 1, 0}, recording());
    const PvrHandle pvr = pvr_by_id(id);
    media_pvr_set_program_title(pvr.get(), "\u00dcber uns");
    media_pvr_set_play_count(pvr.get(), 5);
    media_pvr_set_content_lock(pvr.get(), true);
    media_pvr_set_content_watch(pvr.get(), true);
    EXPECT_EQ(media_pvr_update_to_db(pvr.get()), 0);
    put_file("", FileFacts{"a.srf", 2, 0}, recording());
    const PvrHandle again = pvr_by_id(id);
    EXPECT_EQ(text_of(media_pvr_get_program_title, again.get()), "\u00dcber uns");
    EXPECT_EQ(int_of(media_pvr_get_play_count, again.get()), 5);
    EXPECT_TRUE(value_of(media_pvr_get_content_lock, again.get()));
    EXPECT_TRUE(value_of(media_pvr_get_content_watch, again.get()));
    EXPECT_EQ(pvr_titles(TestFilter(drive().id, "PVR_PROGRAM_TITLE = '\u00fcBER UNS'")).size(), 1u);
}

TEST_F(Rows, ARowThatIsGoneKeepsWhatWasReadAndRefusesTheRest) {
    const MediaHandle read = put("a.jpg", picture());
    const MediaHandle unread = put("b.jpg", picture());
    EXPECT_EQ(text_of(media_info_get_title, read.get()), "Lake");
    for (const MediaHandle* media : {&read, &unread}) {
        EXPECT_EQ(media_info_delete_from_db(text_of(media_info_get_media_id, media->get()).c_str()), 0);
    }
    EXPECT_EQ(text_of(media_info_get_title, read.get()), "Lake");
    char* title = nullptr;
    EXPECT_EQ(media_info_get_title(unread.get(), &title), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(title, nullptr);
    media_info_set_played_count(read.get(), 1);
    EXPECT_EQ(media_info_update_to_db(read.get()), MEDIA_CONTENT_ERROR_NOT_FOUND);
}

TEST_F(Rows, AHandleOutlivesTheConnection) {
    const MediaHandle media = put("a.jpg", picture());
    const MediaHandle unread = put("b.jpg", picture());
    EXPECT_EQ(int_of(media_info_get_rating, media.get()), 4);
    EXPECT_EQ(media_content_disconnect(), 0);
    EXPECT_EQ(int_of(media_info_get_rating, media.get()), 4);
    EXPECT_EQ(text_of(media_info_get_display_name, unread.get()), "b.jpg");
    int rating = 0;
    EXPECT_EQ(media_info_get_rating(unread.get(), &rating), MEDIA_CONTENT_ERROR_NOT_CONNECTED);
    EXPECT_EQ(media_content_connect(), 0);
    EXPECT_EQ(int_of(media_info_get_rating, unread.get()), 4);
}

TEST_F(Rows, IdsThatAreNoneAreNotFound) {
    put("a.jpg", picture());
    for (const char* id :
         {"", "0", "-1", "x", "1x", " 1", "01", "99999", "99999999999999999999", "1 OR 1=1"}) {
        media_info_h media = nullptr;
        EXPECT_EQ(media_info_get_media_from_db(id, &media), MEDIA_CONTENT_ERROR_NOT_FOUND) << id;
        EXPECT_EQ(media_info_delete_from_db(id), MEDIA_CONTENT_ERROR_NOT_FOUND) << id;
    }
    EXPECT_EQ(number("SELECT count(*) FROM media"), 1);
}

TEST_F(Rows, ARowOfAnotherKindIsNoRecording) {
    const std::string id = std::to_string(put_file("", "a.jpg", MediaKind::kImage));
    media_pvr_h pvr = nullptr;
    media_uhd_h uhd = nullptr;
    EXPECT_EQ(media_pvr_get_pvr_from_db(id.c_str(), &pvr), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_uhd_get_uhd_from_db(id.c_str(), &uhd), MEDIA_CONTENT_ERROR_NOT_FOUND);
}

TEST_F(Rows, NullArgumentsAreRefused) {
    const MediaHandle media = put("a.jpg", picture());
    const int refused = MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    int number = 0;
    char* text = nullptr;
    EXPECT_EQ(media_info_get_rating(nullptr, &number), refused);
    EXPECT_EQ(media_info_get_rating(media.get(), nullptr), refused);
    EXPECT_EQ(media_info_get_media_id(nullptr, &text), refused);
    EXPECT_EQ(media_info_get_media_type(nullptr, &number), refused);
    EXPECT_EQ(media_info_clone(nullptr, media.get()), refused);
    EXPECT_EQ(media_info_destroy(nullptr), refused);
    EXPECT_EQ(media_info_get_image(nullptr, nullptr), refused);
    EXPECT_EQ(media_info_get_image(media.get(), nullptr), refused);
    EXPECT_EQ(media_info_foreach_media_from_db(nullptr, nullptr, nullptr), refused);
    EXPECT_EQ(media_info_get_media_from_db(nullptr, nullptr), refused);
    EXPECT_EQ(media_info_update_to_db(nullptr), refused);
    EXPECT_EQ(media_info_set_played_count(nullptr, 1), refused);
    EXPECT_EQ(media_pvr_set_program_title(nullptr, nullptr), refused);
    EXPECT_EQ(media_folder_get_name(nullptr, &text), refused);
    EXPECT_EQ(media_folder_foreach_media_from_db(nullptr, nullptr, add_media_name, nullptr), refused);
    EXPECT_EQ(media_storage_get_id(nullptr, &text), refused);
    EXPECT_EQ(media_storage_get_scan_status(nullptr, &number), refused);
    EXPECT_EQ(media_folder_get_scan_status("", nullptr, &number), refused);
    EXPECT_EQ(media_group_foreach_group_and_count_from_db(nullptr, 30, nullptr, nullptr), refused);
}

TEST_F(Rows, ALongListIsKeptWholeAndInOrder) {
    {
        MediaWriter writer(database());
        const int64_t folder = writer.ensure_folder(drive().key, "/many", 0);
        for (int i = 0; i < 5000; ++i) {
            MediaRecord record;
            record.kind = MediaKind::kImage;
            record.title = "title " + std::to_string(i);
            writer.put_file(folder, FileFacts{std::to_string(i) + ".jpg", i, 0}, record);
        }
        writer.commit();
    }
    const std::vector<MediaHandle> rows = kept_media(nullptr);
    ASSERT_EQ(rows.size(), 5000u);
    for (size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(text_of(media_info_get_display_name, rows[i].get()), std::to_string(i) + ".jpg");
    }
    for (size_t i = rows.size(); i-- > 0;) {
        ASSERT_EQ(text_of(media_info_get_title, rows[i].get()), "title " + std::to_string(i));
    }
}

// Threads

TEST_F(Rows, MayBeReadByManyThreadsAtOnce) {
    for (int i = 0; i < 60; ++i) {
        put(std::to_string(i) + ".jpg", picture());
    }
    const std::vector<MediaHandle> rows = kept_media(nullptr);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (const MediaHandle& media : rows) {
                media_info_h copy = nullptr;
                media_info_clone(&copy, media.get());
                wrong += text_of(media_info_get_title, copy) == "Lake" ? 0 : 1;
                media_info_destroy(copy);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(Rows, MayBeWrittenWhileTheyAreRead) {
    for (int i = 0; i < 30; ++i) {
        put(std::to_string(i) + ".jpg", picture());
    }
    const std::vector<MediaHandle> rows = kept_media(nullptr);
    std::atomic<bool> stop{false};
    std::thread reader([&] {
        while (!stop) {
            for (const MediaHandle& media : rows) {
                int_of(media_info_get_played_count, media.get());
            }
        }
    });
    for (int round = 1; round <= 20; ++round) {
        media_info_set_played_count(rows[3].get(), round);
        EXPECT_EQ(media_info_update_to_db(rows[3].get()), 0);
    }
    stop = true;
    reader.join();
    EXPECT_EQ(int_of(media_info_get_played_count, rows[3].get()), 20);
}

TEST_F(Rows, AListIsWholeWhileAScanWrites) {
    put_folder("/dir");
    std::atomic<bool> stop{false};
    std::thread scanner([&] {
        for (int batch = 0; !stop; ++batch) {
            MediaWriter writer(database());
            const int64_t folder = writer.ensure_folder(drive().key, "/dir", 0);
            for (int i = 0; i < 20; ++i) {
                writer.put_file(folder,
                                FileFacts{std::to_string(batch) + "-" + std::to_string(i) + ".jpg", 1, 0},
                                picture());
            }
            writer.commit();
        }
    });
    size_t last = 0;
    for (int round = 0; round < 30 || last == 0; ++round) {
        const Names names = media_names(nullptr);
        EXPECT_EQ(names.size() % 20, 0u);
        EXPECT_GE(names.size(), last);
        last = names.size();
    }
    stop = true;
    scanner.join();
}

TEST_F(Rows, ConnectionsMayComeAndGoWhileListsAreRead) {
    put("a.jpg", picture());
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                wrong += media_content_connect() == 0 ? 0 : 1;
                wrong += media_names(nullptr).size() == 1 ? 0 : 1;
                wrong += media_content_disconnect() == 0 ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace media_content
