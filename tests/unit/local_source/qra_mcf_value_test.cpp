#include "libqra-agent/source/local-source/qra_mcf_value.h"

#include <sys/stat.h>

#include <chrono>
#include <climits>
#include <map>

#include "libqra-agent/source/local-source/qra_mcf_row.h"
#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

/// A drive with one row of each kind, under its file name.
class CQRAMCFValueOnDrive : public SampleDrive {
protected:
    CQRAMCFValueOnDrive() {
        write("folder/a.jpg");
        write("folder/b.mp4");
        write("folder/c.mp3");
        write_recording("folder/d", "program_title=News\nduration=5400000\nhd=1\ncontent_lock=true\n");
        write("folder/e.um4");
        write("folder/f.uvu");
        scan();
        media_folder_foreach_folder_from_db(
            nullptr,
            [](media_folder_h row, void* test) {
                CMedia media;
                std::string id;
                EXPECT_TRUE(CQRAMCFRow::FromFolder(row, id, media));
                static_cast<CQRAMCFValueOnDrive*>(test)->rows_[media.GetName()] = media;
                return true;
            },
            this);
        media_info_foreach_media_from_db(
            nullptr,
            [](media_info_h row, void* test) {
                CMedia media;
                std::string id;
                char* name = nullptr;
                EXPECT_TRUE(CQRAMCFRow::FromMedia(row, id, media));
                EXPECT_EQ(media_info_get_display_name(row, &name), 0);
                static_cast<CQRAMCFValueOnDrive*>(test)->rows_[take(name)] = media;
                return true;
            },
            this);
        faults::reset();
    }

    const CMedia& row(const std::string& name) const { return rows_.at(name); }

    bool get(const std::string& name, const std::string& field, const mcf_out& out) const {
        return CQRAMCFValue::GetFieldValue(row(name), field, out);
    }

    std::string text(const std::string& name, const std::string& field) const {
        char* value = nullptr;
        return get(name, field, &value) ? take(value) : "(failed)";
    }

    int number(const std::string& name, const std::string& field) const {
        int value = -1;
        return get(name, field, &value) ? value : -1;
    }

private:
    std::map<std::string, CMedia> rows_;
};

enum class Type { kInt, kText, kBool, kWide, kReal, kTime };

/// Where a value of a type goes, and what frees it.
struct Target {
    mcf_out of(Type type) {
        switch (type) {
            case Type::kInt:
                return &number;
            case Type::kText:
                return &text;
            case Type::kBool:
                return &flag;
            case Type::kWide:
                return &wide;
            case Type::kReal:
                return &real;
            default:
                return &time;
        }
    }
    ~Target() { std::free(text); }

    int number = 0;
    char* text = nullptr;
    bool flag = false;
    unsigned long long wide = 0;
    double real = 0;
    long time = 0;
};

/// Keys of one row, of one type. Their getter is the prefix and the key in lower case, where no other is
/// given.
struct Keys {
    const char* row;
    const char* prefix;
    Type type;
    std::vector<std::string> regular;
    std::vector<std::pair<std::string, std::string>> others;
};

const std::vector<Keys>& all_keys() {
    static const std::vector<Keys> keys = {
        {"a.jpg",
         "media_info_get_",
         Type::kInt,
         {"STORAGE_TYPE", "RATING", "PLAYED_COUNT", "PLAYED_POSITION"},
         {{"STITCH_TYPE", "media_info_get_stitched_state"}}},
        {"a.jpg",
         "media_info_get_",
         Type::kText,
         {"TITLE", "FILE_PATH", "DISPLAY_NAME", "MIME_TYPE", "AUTHOR", "PROVIDER", "CONTENT_NAME", "CATEGORY",
          "LOCATION_TAG", "AGE_RATING", "KEYWORD"},
         {{"ID_QRA", "media_info_get_media_id"}, {"THUMBNAIL_PATH", "media_info_get_file_path"}}},
        {"a.jpg",
         "media_info_get_",
         Type::kBool,
         {},
         {{"FAVOURITE", "media_info_get_favorite"},
          {"IS_DRM", "media_info_is_drm"},
          {"IS_360", "media_info_is_360_content"}}},
        {"a.jpg", "media_info_get_", Type::kWide, {"SIZE"}, {}},
        {"a.jpg", "media_info_get_", Type::kReal, {"LONGITUDE", "LATITUDE", "ALTITUDE"}, {}},
        {"a.jpg", "media_info_get_", Type::kTime, {"ADDED_TIME", "MODIFIED_TIME", "PLAYED_TIME"}, {}},
        {"a.jpg", "image_meta_get_", Type::kInt, {"WIDTH", "HEIGHT", "ORIENTATION", "ISO"}, {}},
        {"a.jpg", "image_meta_get_", Type::kText, {"DATE_TAKEN", "BURST_ID", "EXPOSURE_TIME", "MODEL"}, {}},
        {"a.jpg", "image_meta_get_", Type::kReal, {"FNUMBER"}, {}},
        {"b.mp4",
         "video_meta_get_",
         Type::kInt,
         {"WIDTH", "HEIGHT", "DURATION"},
         {{"BITRATE", "video_meta_get_bit_rate"}}},
        {"c.mp3",
         "audio_meta_get_",
         Type::kInt,
         {"DURATION", "CHANNEL"},
         {{"BITRATE", "audio_meta_get_bit_rate"},
          {"SAMPLERATE", "audio_meta_get_sample_rate"},
          {"BIT_RESOLUTION", "audio_meta_get_bitpersample"}}},
        {"c.mp3",
         "audio_meta_get_",
         Type::kText,
         {"ALBUM", "ARTIST", "GENRE", "COMPOSER", "YEAR", "RECORDED_DATE", "COPYRIGHT", "TRACK_NUM"},
         {}},
        {"d.srf",
         "media_pvr_get_",
         Type::kInt,
         {"TIMEZONE",
          "PTC",
          "MAJOR",
          "MINOR",
          "CHANNEL_TYPE",
          "PROGRAM_NUM",
          "DURATION",
          "EMBARGO_TIME",
          "EXPIRY_TIME",
          "START_TIME",
          "PROGRAM_START_TIME",
          "PROGRAM_END_TIME",
          "PROGRAM_DATE",
          "PARENTAL_RATING",
          "ASPECTRATIO",
          "RESOLUTION",
          "SPORTS_TYPE",
          "GUIDANCE_LENGTH",
          "TVMODE",
          "PLAY_COUNT",
          "HD"},
         {}},
        {"d.srf",
         "media_pvr_get_",
         Type::kText,
         {"STORAGE_ID", "CHANNEL_NAME", "CHANNEL_NUM", "PROGRAM_TITLE", "PROGRAM_CRID", "GUIDANCE",
          "SYNOPSIS", "GENRE", "LANGUAGE", "MODIFIED_MONTH", "PRIVATE_DATA"},
         {{"ID_QRA", "media_pvr_get_media_id"}, {"FILE_PATH", "media_pvr_get_path"}}},
        {"d.srf",
         "media_pvr_get_",
         Type::kBool,
         {"TIMER_RECORD", "SERIES_RECORD", "SUBTITLE", "TTX", "AD", "HARD_OF_HEARING_RADIO", "DATA_SERVICE",
          "CONTENT_LOCK", "CONTENT_WATCH", "HAS_AUDIO_ONLY", "IS_LOCAL_RECORD"},
         {}},
        {"d.srf", "media_pvr_get_", Type::kWide, {"SIZE"}, {}},
        {"e.um4",
         "media_uhd_get_",
         Type::kText,
         {},
         {{"ID_QRA", "media_uhd_get_media_id"},
          {"UHD_SERVER_ID", "media_uhd_get_content_id"},
          {"FILE_PATH", "media_uhd_get_path"},
          {"TITLE", "media_uhd_get_content_title"},
          {"DATE_TAKEN", "media_uhd_get_release_date"},
          {"DISPLAY_NAME", "media_uhd_get_file_name"}}},
        {"e.um4", "media_uhd_get_", Type::kWide, {"SIZE"}, {}},
        {"e.um4", "media_uhd_get_", Type::kTime, {"MODIFIED_TIME"}, {}},
        {"e.um4", "media_uhd_get_", Type::kInt, {"PLAYED_POSITION", "PLAYED_COUNT"}, {}},
        {"folder",
         "media_folder_get_",
         Type::kText,
         {},
         {{"ID_QRA", "media_folder_get_folder_id"},
          {"PARENT_ID", "media_folder_get_parent_folder_id"},
          {"FILE_PATH", "media_folder_get_path"},
          {"DISPLAY_NAME", "media_folder_get_name"},
          {"TITLE", "media_folder_get_name"}}},
        {"folder",
         "media_folder_get_",
         Type::kTime,
         {},
         {{"ADDED_TIME", "media_folder_get_modified_time"},
          {"MODIFIED_TIME", "media_folder_get_modified_time"}}},
    };
    return keys;
}

std::string lower(std::string text) {
    for (char& letter : text) {
        letter = static_cast<char>(std::tolower(letter));
    }
    return text;
}

/// Each key with its getter.
std::vector<std::pair<std::string, std::string>> with_getters(const Keys& keys) {
    std::vector<std::pair<std::string, std::string>> all = keys.others;
    for (const std::string& key : keys.regular) {
        all.emplace_back(key, keys.prefix + lower(key));
    }
    return all;
}

}  // namespace

TEST_F(CQRAMCFValueOnDrive, EachKeyIsReadWithItsGetter) {
    for (const Keys& keys : all_keys()) {
        for (const auto& [key, getter] : with_getters(keys)) {
            faults::reset();
            Target target;
            EXPECT_TRUE(get(keys.row, key, target.of(keys.type))) << keys.row << " " << key;
            EXPECT_EQ(faults::count(getter), 1) << keys.row << " " << key;
        }
    }
}

TEST_F(CQRAMCFValueOnDrive, EveryNumberCanBeAskedForInEveryNumericType) {
    for (const Keys& keys : all_keys()) {
        for (const auto& [key, getter] : with_getters(keys)) {
            for (const Type type : {Type::kInt, Type::kBool, Type::kWide, Type::kReal, Type::kTime}) {
                Target target;
                EXPECT_EQ(get(keys.row, key, target.of(type)), keys.type != Type::kText)
                    << keys.row << " " << key;
            }
            Target target;
            EXPECT_EQ(get(keys.row, key, &target.text), keys.type == Type::kText) << keys.row << " " << key;
        }
    }
}

TEST_F(CQRAMCFValueOnDrive, AGetterThatFailsIsFalseAndWritesNothing) {
    for (const Keys& keys : all_keys()) {
        for (const auto& [key, getter] : with_getters(keys)) {
            faults::reset();
            faults::fail(getter);
            Target target;
            target.number = 77;
            EXPECT_FALSE(get(keys.row, key, target.of(keys.type))) << keys.row << " " << key;
            EXPECT_EQ(target.number, 77);
            EXPECT_EQ(target.text, nullptr);
        }
    }
    EXPECT_TRUE(log.contains("MCF-Wrapper: GetValue failed with[4711]."));
}

TEST_F(CQRAMCFValueOnDrive, KnowsTheMediaTypeOfEachKind) {
    EXPECT_EQ(number("folder", "MEDIA_TYPE"), 1);
    EXPECT_EQ(number("a.jpg", "MEDIA_TYPE"), 2);
    EXPECT_EQ(number("b.mp4", "MEDIA_TYPE"), 3);
    EXPECT_EQ(number("c.mp3", "MEDIA_TYPE"), 5);
    EXPECT_EQ(number("d.srf", "MEDIA_TYPE"), 6);
    EXPECT_EQ(number("e.um4", "MEDIA_TYPE"), 10);
    EXPECT_EQ(number("f.uvu", "MEDIA_TYPE"), 11);
    EXPECT_EQ(text("a.jpg", "MEDIA_TYPE"), "(failed)");
}

TEST_F(CQRAMCFValueOnDrive, BothKindsOfSoundAreReadAsAudio) {
    faults::set_media_type(2);
    EXPECT_EQ(number("c.mp3", "MEDIA_TYPE"), 5);
    faults::set_media_type(3);
    EXPECT_EQ(number("c.mp3", "MEDIA_TYPE"), 5);
}

TEST_F(CQRAMCFValueOnDrive, AMediaRowOfNoKnownKindIsReadThroughTheCommonTable) {
    faults::set_media_type(4);
    EXPECT_EQ(number("a.jpg", "MEDIA_TYPE"), 4);
    EXPECT_EQ(text("a.jpg", "DISPLAY_NAME"), "a.jpg");
    EXPECT_EQ(number("a.jpg", "WIDTH"), -1);
}

TEST_F(CQRAMCFValueOnDrive, AnUnreadableKindLeavesTheCommonTable) {
    faults::fail("media_info_get_image");
    EXPECT_EQ(number("a.jpg", "WIDTH"), -1);
    EXPECT_EQ(text("a.jpg", "DISPLAY_NAME"), "a.jpg");
}

TEST_F(CQRAMCFValueOnDrive, EveryHandleOfAKindIsReleasedAfterTheRead) {
    number("a.jpg", "WIDTH");
    number("b.mp4", "WIDTH");
    number("c.mp3", "CHANNEL");
    faults::fail("image_meta_get_height");
    number("a.jpg", "HEIGHT");
    EXPECT_EQ(faults::count("image_meta_destroy"), 2);
    EXPECT_EQ(faults::count("video_meta_destroy"), 1);
    EXPECT_EQ(faults::count("audio_meta_destroy"), 1);
}

TEST_F(CQRAMCFValueOnDrive, AKeyOfAnotherKindIsAnInvalidField) {
    EXPECT_EQ(number("a.jpg", "DURATION"), -1);
    EXPECT_EQ(log.count("MCF-Wrapper: Invalid field[DURATION]."), 1);
    EXPECT_EQ(number("d.srf", "PLAYED_COUNT"), -1);
    EXPECT_EQ(log.count("MCF-Wrapper: Invalid field[PLAYED_COUNT]."), 1);
    EXPECT_EQ(text("folder", "THUMBNAIL_PATH"), "(failed)");
    EXPECT_EQ(text("e.um4", "ALBUM"), "(failed)");
    EXPECT_EQ(text("f.uvu", "TITLE"), "(failed)");
    EXPECT_EQ(log.count("MCF-Wrapper: Invalid field["), 5);
}

TEST_F(CQRAMCFValueOnDrive, ARecordingsNameIsThatOfItsFile) {
    EXPECT_EQ(text("d.srf", "DISPLAY_NAME"), "d.srf");
    EXPECT_EQ(number("d.srf", "DISPLAY_NAME"), -1);
    faults::fail("media_pvr_get_path");
    EXPECT_EQ(text("d.srf", "DISPLAY_NAME"), "(failed)");
}

TEST_F(CQRAMCFValueOnDrive, ARecordingsTimeOfChangeIsThatOfItsFile) {
    const auto time = std::filesystem::file_time_type(std::chrono::seconds(0));
    std::filesystem::last_write_time(path("folder/d.srf"), time);
    struct stat status {};
    ASSERT_EQ(stat(path("folder/d.srf").c_str(), &status), 0);
    long changed = -1;
    EXPECT_TRUE(get("d.srf", "MODIFIED_TIME", &changed));
    EXPECT_EQ(changed, status.st_mtime);
    EXPECT_EQ(text("d.srf", "MODIFIED_TIME"), "(failed)");
    std::filesystem::remove(path("folder/d.srf"));
    EXPECT_EQ(number("d.srf", "MODIFIED_TIME"), -1);
}

TEST_F(CQRAMCFValueOnDrive, ValuesComeFromTheRow) {
    EXPECT_EQ(text("d.srf", "PROGRAM_TITLE"), "News");
    unsigned long long duration = 0;
    EXPECT_TRUE(get("d.srf", "DURATION", &duration));
    EXPECT_EQ(duration, 5400000u);
    EXPECT_EQ(number("d.srf", "CONTENT_LOCK"), 1);
    bool hd = false;
    EXPECT_TRUE(get("d.srf", "HD", &hd));
    EXPECT_TRUE(hd);
    int modified = 0;
    long precise = 0;
    EXPECT_TRUE(get("a.jpg", "MODIFIED_TIME", &modified));
    EXPECT_TRUE(get("a.jpg", "MODIFIED_TIME", &precise));
    EXPECT_EQ(modified, precise);
    EXPECT_GT(precise, 1600000000);
}

TEST_F(CQRAMCFValueOnDrive, PackagesAnswerThreeFields) {
    EXPECT_EQ(text("f.uvu", "FILE_PATH"), path("folder/f.uvu"));
    EXPECT_NE(text("f.uvu", "ID_QRA"), "(failed)");
    EXPECT_EQ(number("f.uvu", "FILE_PATH"), -1);
}

TEST(CQRAMCFValue, GroupsAnswerTwoFields) {
    LogCapture log;
    const CMedia group(MC_TYPE_GROUP, "2021-05-06", false, nullptr);
    char* name = nullptr;
    int type = 0;
    EXPECT_TRUE(CQRAMCFValue::GetFieldValue(group, "DISPLAY_NAME", &name));
    EXPECT_EQ(take(name), "2021-05-06");
    EXPECT_TRUE(CQRAMCFValue::GetFieldValue(group, "MEDIA_TYPE", &type));
    EXPECT_EQ(type, 9);
    EXPECT_FALSE(CQRAMCFValue::GetFieldValue(group, "TITLE", &name));
    EXPECT_TRUE(log.contains("MCF-Wrapper: Invalid field[TITLE]."));
}

TEST(CQRAMCFValue, AnEntryOfNoTypeAnswersNothing) {
    int value = 5;
    EXPECT_FALSE(CQRAMCFValue::GetFieldValue(CMedia(), "MEDIA_TYPE", &value));
    EXPECT_FALSE(CQRAMCFValue::GetFieldValue(CMedia(static_cast<EMCType>(7), "", false, nullptr),
                                             "MEDIA_TYPE", &value));
    EXPECT_FALSE(CQRAMCFValue::SetFieldValue(CMedia(), "PLAYED_COUNT", 1));
    EXPECT_EQ(value, 5);
}

TEST(CQRAMCFValue, ANullHandleIsLogged) {
    LogCapture log;
    int value = 5;
    for (const EMCType type : {MC_TYPE_FOLDER, MC_TYPE_MEDIA, MC_TYPE_PVR, MC_TYPE_UHD, MC_TYPE_SCSA}) {
        EXPECT_FALSE(CQRAMCFValue::GetFieldValue(CMedia(type, "", false, nullptr), "MEDIA_TYPE", &value));
    }
    for (const EMCType type : {MC_TYPE_MEDIA, MC_TYPE_PVR, MC_TYPE_UHD}) {
        EXPECT_FALSE(CQRAMCFValue::SetFieldValue(CMedia(type, "", false, nullptr), "PLAYED_COUNT", 1));
    }
    EXPECT_EQ(log.count("MCF-Wrapper: Invalid handle."), 8);
}

namespace {

struct SetKey {
    const char* row;
    const char* key;
    mcf_in value;
    const char* setter;
    const char* update;
};

const SetKey kSetKeys[] = {
    {"a.jpg", "PLAYED_COUNT", 3, "media_info_set_played_count", "media_info_update_to_db"},
    {"a.jpg", "PLAYED_POSITION", 4, "media_info_set_played_position", "media_info_update_to_db"},
    {"a.jpg", "PLAYED_TIME", 1700000000L, "media_info_set_played_time", "media_info_update_to_db"},
    {"d.srf", "PLAY_COUNT", 5, "media_pvr_set_play_count", "media_pvr_update_to_db"},
    {"d.srf", "PROGRAM_TITLE", "Late News", "media_pvr_set_program_title", "media_pvr_update_to_db"},
    {"d.srf", "CONTENT_LOCK", 0, "media_pvr_set_content_lock", "media_pvr_update_to_db"},
    {"d.srf", "CONTENT_WATCH", 1, "media_pvr_set_content_watch", "media_pvr_update_to_db"},
    {"e.um4", "PLAYED_POSITION", 6, "media_uhd_set_played_position", "media_uhd_update_to_db"},
    {"e.um4", "SUB_TYPE", 7, "media_uhd_set_sub_type", "media_uhd_update_to_db"},
    {"e.um4", "PLAYED_COUNT", 8, "media_uhd_set_played_count", "media_uhd_update_to_db"},
    {"e.um4", "TITLE", "A Film", "media_uhd_set_content_title", "media_uhd_update_to_db"},
};

}  // namespace

TEST_F(CQRAMCFValueOnDrive, EachKeyIsWrittenWithItsSetterAndToTheDatabase) {
    for (const SetKey& key : kSetKeys) {
        faults::reset();
        EXPECT_TRUE(CQRAMCFValue::SetFieldValue(row(key.row), key.key, key.value)) << key.row << key.key;
        EXPECT_EQ(faults::count(key.setter), 1) << key.key;
        EXPECT_EQ(faults::count(key.update), 1) << key.key;
    }
    EXPECT_EQ(number("a.jpg", "PLAYED_COUNT"), 3);
    EXPECT_EQ(number("a.jpg", "PLAYED_TIME"), 1700000000);
    EXPECT_EQ(text("d.srf", "PROGRAM_TITLE"), "Late News");
    EXPECT_EQ(number("d.srf", "CONTENT_LOCK"), 0);
    EXPECT_EQ(number("d.srf", "CONTENT_WATCH"), 1);
    EXPECT_EQ(text("e.um4", "TITLE"), "A Film");
}

TEST_F(CQRAMCFValueOnDrive, ASetterOrAnUpdateThatFailsIsFalse) {
    for (const SetKey& key : kSetKeys) {
        for (const char* const function : {key.setter, key.update}) {
            faults::reset();
            faults::fail(function);
            EXPECT_FALSE(CQRAMCFValue::SetFieldValue(row(key.row), key.key, key.value)) << function;
        }
    }
    EXPECT_EQ(log.count("MCF-Wrapper: SetValue failed with[4711]."), 22);
}

TEST_F(CQRAMCFValueOnDrive, TextAndNumberDoNotBecomeEachOtherWhenWritten) {
    EXPECT_FALSE(CQRAMCFValue::SetFieldValue(row("a.jpg"), "PLAYED_COUNT", "3"));
    EXPECT_FALSE(CQRAMCFValue::SetFieldValue(row("d.srf"), "PROGRAM_TITLE", 3));
    EXPECT_EQ(faults::count("media_info_update_to_db") + faults::count("media_pvr_update_to_db"), 0);
}

TEST_F(CQRAMCFValueOnDrive, NumbersAreCutToWhatTheSetterTakes) {
    if (sizeof(long) == sizeof(int)) {
        GTEST_SKIP() << "a long is no wider than an int here";
    }
    EXPECT_TRUE(CQRAMCFValue::SetFieldValue(row("a.jpg"), "PLAYED_COUNT", LONG_MAX));
    EXPECT_EQ(number("a.jpg", "PLAYED_COUNT"), INT_MAX);
    EXPECT_TRUE(CQRAMCFValue::SetFieldValue(row("d.srf"), "CONTENT_WATCH", 256L));
    EXPECT_EQ(number("d.srf", "CONTENT_WATCH"), 1);
}

TEST_F(CQRAMCFValueOnDrive, FoldersGroupsAndPackagesAreNotWritten) {
    EXPECT_FALSE(CQRAMCFValue::SetFieldValue(row("folder"), "TITLE", "x"));
    EXPECT_FALSE(CQRAMCFValue::SetFieldValue(CMedia(MC_TYPE_GROUP, "", false, nullptr), "TITLE", "x"));
    EXPECT_EQ(log.count("MCF-Wrapper: m_IsFolder() or m_IsGroup()."), 2);
    EXPECT_FALSE(CQRAMCFValue::SetFieldValue(row("f.uvu"), "TITLE", "x"));
}

TEST_F(CQRAMCFValueOnDrive, AnUnknownKeyIsNotWritten) {
    EXPECT_FALSE(CQRAMCFValue::SetFieldValue(row("d.srf"), "PLAYED_COUNT", 1));
    EXPECT_TRUE(log.contains("MCF-Wrapper: Invalid field[PLAYED_COUNT]."));
}
