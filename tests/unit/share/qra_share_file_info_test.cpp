#include "libqra-agent/share/src/qra_share_file_info.h"

#include "tests/unit/share/share_fixture.h"

namespace {

using Keys = std::vector<std::string>;

class ShareFileInfo : public ShareTest {
protected:
    /// Selects one item that has every value.
    void select_full_item() {
        SharedItem item;
        for (const char* key : {"DISPLAY_NAME", "FILE_PATH", "ID_QRA", "THUMBNAIL_PATH", "TITLE", "MIME_TYPE",
                                "ARTIST", "ALBUM", "GENRE", "YEAR", "LOCATION_TAG", "FORMAT"}) {
            item.texts[key] = std::string("text of ") + key;
        }
        long long number = 100;
        for (const char* key : {"PLAYED_COUNT", "SAMPLERATE", "BIT_RESOLUTION", "BITRATE", "MEDIA_TYPE",
                                "MODIFIED_TIME", "DURATION", "ADDED_TIME", "SIZE"}) {
            item.numbers[key] = ++number;
        }
        item.numbers["CONTENT_LOCK"] = 1;
        item.numbers["IS_DRM"] = 1;
        script_.items.push_back(item);
        script_.cursor = static_cast<int>(script_.items.size()) - 1;
    }

    /// What a build reads, in order, from a full item.
    Keys keys_of(qra_processor_type_e type, qra_dev_type_e device = QRA_DEV_TYPE_DEFAULT) {
        CQRAShareFileInfo info(list_);
        script_.read.clear();
        EXPECT_TRUE(CQRAShareFileBuilder(&info).Build(type, device));
        return script_.read;
    }
};

struct TextValue {
    const char* key;
    bool (CQRAShareFileInfo::*set)();
    const std::string& (CQRAShareFileInfo::*get)() const;
    const char* failure;
};

const TextValue kTexts[] = {
    {"DISPLAY_NAME", &CQRAShareFileInfo::SetFileName, &CQRAShareFileInfo::GetFileName,
     "Get FileName faild , error code[23]!"},
    {"FILE_PATH", &CQRAShareFileInfo::SetFilePath, &CQRAShareFileInfo::GetFilePath,
     "Get FilePath faild, error code[23]!"},
    {"ID_QRA", &CQRAShareFileInfo::SetMediaId, &CQRAShareFileInfo::GetMediaId,
     "Get mediaId faild, error code[23]!"},
    {"THUMBNAIL_PATH", &CQRAShareFileInfo::SetThumbnailPath, &CQRAShareFileInfo::GetThumbnailPath,
     "Get ThumbnailPath faild, error code[23]!"},
    {"TITLE", &CQRAShareFileInfo::SetTitle, &CQRAShareFileInfo::GetTitle, "Get Title faild, error code[23]!"},
    {"MIME_TYPE", &CQRAShareFileInfo::SetMimeType, &CQRAShareFileInfo::GetMimeType,
     "Get MimeType faild, error code[23]!"},
    {"ARTIST", &CQRAShareFileInfo::SetArtist, &CQRAShareFileInfo::GetArtist,
     "Get Artist faild, error code[23]!"},
    {"ALBUM", &CQRAShareFileInfo::SetAlbum, &CQRAShareFileInfo::GetAlbum, "Get Album faild, error code[23]!"},
    {"GENRE", &CQRAShareFileInfo::SetGenre, &CQRAShareFileInfo::GetGenre, "Get Album faild, error code[23]!"},
    {"YEAR", &CQRAShareFileInfo::SetYear, &CQRAShareFileInfo::GetYear, "Get Album faild, error code[23]!"},
    {"LOCATION_TAG", &CQRAShareFileInfo::SetLocationTag, &CQRAShareFileInfo::GetLocationTag,
     "Get Album faild, error code[23]!"},
    {"FORMAT", &CQRAShareFileInfo::SetFormat, &CQRAShareFileInfo::GetFormat,
     "Get Album faild, error code[23]!"},
};

struct NumberSetter {
    const char* key;
    bool (CQRAShareFileInfo::*set)();
    const char* failure;
};

const NumberSetter kNumbers[] = {
    {"PLAYED_COUNT", &CQRAShareFileInfo::SetPlayCount, "Get FileType faild, error code[23]!"},
    {"SAMPLERATE", &CQRAShareFileInfo::SetSamplerate, "Get FileType faild, error code[23]!"},
    {"BIT_RESOLUTION", &CQRAShareFileInfo::SetBitResolition, "Get FileType faild, error code[23]!"},
    {"BITRATE", &CQRAShareFileInfo::SetBitrate, "Get FileType faild, error code[23]!"},
    {"MEDIA_TYPE", &CQRAShareFileInfo::SetFileType, "Get FileType faild, error code[23]!"},
    {"MODIFIED_TIME", &CQRAShareFileInfo::SetModTime, "Get mod time faild, error code[23]!"},
    {"DURATION", &CQRAShareFileInfo::SetDuration, "Get mod time faild, error code[23]!"},
    {"ADDED_TIME", &CQRAShareFileInfo::SetAddTime, "Get mod time faild, error code[23]!"},
    {"SIZE", &CQRAShareFileInfo::SetFileSize, "Get file size faild, error code[23]!"},
    {"CONTENT_LOCK", &CQRAShareFileInfo::SetLockStatus, "Get lock status faild, error code[23]!"},
    {"IS_DRM", &CQRAShareFileInfo::SetIsDrm, "Get lock status faild, error code[23]!"},
};

}  // namespace

TEST_F(ShareFileInfo, ReadsEachTextUnderItsKey) {
    select_full_item();
    CQRAShareFileInfo info(list_);
    for (const TextValue& value : kTexts) {
        EXPECT_TRUE((info.*value.set)()) << value.key;
        EXPECT_EQ((info.*value.get)(), std::string("text of ") + value.key);
    }
}

TEST_F(ShareFileInfo, ReadsEachNumberUnderItsKey) {
    select_full_item();
    CQRAShareFileInfo info(list_);
    script_.read.clear();
    Keys expected;
    for (const NumberSetter& value : kNumbers) {
        EXPECT_TRUE((info.*value.set)()) << value.key;
        expected.push_back(value.key);
    }
    EXPECT_EQ(script_.read, expected);
    EXPECT_EQ(info.GetPlayCount(), 101);
    EXPECT_EQ(info.GetSamplerate(), 102);
    EXPECT_EQ(info.GetBitResolition(), 103);
    EXPECT_EQ(info.GetBitrate(), 104);
    EXPECT_EQ(info.GetFileType(), 105);
    EXPECT_EQ(info.GetModTime(), 106);
    EXPECT_EQ(info.GetDuration(), 107u);
    EXPECT_EQ(info.GetAddTime(), 108);
    EXPECT_EQ(info.GetFileSize(), 109u);
    EXPECT_TRUE(info.GetLockStatus());
    EXPECT_TRUE(info.GetIsDrm());
}

TEST_F(ShareFileInfo, SaysWhichValueIsMissing) {
    script_.items.emplace_back();
    script_.cursor = 0;
    CQRAShareFileInfo info(list_);
    for (const TextValue& value : kTexts) {
        const int before = log_.count(value.failure);
        EXPECT_FALSE((info.*value.set)()) << value.key;
        EXPECT_EQ(log_.count(value.failure), before + 1) << value.key << log_.text();
    }
    for (const NumberSetter& value : kNumbers) {
        const int before = log_.count(value.failure);
        EXPECT_FALSE((info.*value.set)()) << value.key;
        EXPECT_EQ(log_.count(value.failure), before + 1) << value.key << log_.text();
    }
}

TEST_F(ShareFileInfo, HasNoFileTypeBeforeItIsRead) {
    const CQRAShareFileInfo info(list_);
    EXPECT_EQ(info.GetFileType(), -1);
    EXPECT_EQ(info.GetFileSize(), 0u);
    EXPECT_FALSE(info.GetLockStatus());
}

TEST_F(ShareFileInfo, KeepsAValueThatTheNextItemDoesNotHave) {
    select_full_item();
    script_.items.emplace_back();
    CQRAShareFileInfo info(list_);
    ASSERT_TRUE(info.MoveToIndex(0));
    EXPECT_TRUE(
        CQRAShareFileBuilder(&info).Build(QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_ADD, QRA_DEV_TYPE_DEFAULT));

    ASSERT_TRUE(info.MoveToIndex(1));

    EXPECT_TRUE(
        CQRAShareFileBuilder(&info).Build(QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_ADD, QRA_DEV_TYPE_DEFAULT));
    EXPECT_EQ(info.GetArtist(), "text of ARTIST");
}

TEST_F(ShareFileInfo, SaysWhichItemItCannotMoveTo) {
    CQRAShareFileInfo info(list_);
    EXPECT_FALSE(info.MoveToIndex(4));
    EXPECT_TRUE(log_.contains("Move to selected item[4] faild, error code[3]!")) << log_.text();
}

TEST_F(ShareFileInfo, EndsTheProcessWithoutAHandleOrAnAgent) {
    CQRAAgentHandle without_agent;
    EXPECT_DEATH(CQRAShareFileInfo(nullptr), "pHandle != __null");
    EXPECT_DEATH(CQRAShareFileInfo{&without_agent}, "m_pAgent != __null");
}

TEST_F(ShareFileInfo, ReadsWhatEachKindOfJobNeedsAndNothingElse) {
    select_full_item();
    EXPECT_EQ(keys_of(QRA_PROCESSOR_TYPE_DELETE),
              (Keys{"MEDIA_TYPE", "DISPLAY_NAME", "FILE_PATH", "ID_QRA"}));
    EXPECT_EQ(keys_of(QRA_PROCESSOR_TYPE_COPY),
              (Keys{"MEDIA_TYPE", "DISPLAY_NAME", "FILE_PATH", "MODIFIED_TIME", "SIZE"}));
    EXPECT_EQ(keys_of(QRA_PROCESSOR_TYPE_LOCK),
              (Keys{"MEDIA_TYPE", "DISPLAY_NAME", "FILE_PATH", "ID_QRA", "CONTENT_LOCK"}));
    EXPECT_EQ(keys_of(QRA_PROCESSOR_TYPE_PLAYLIST_DELETE), (Keys{"MEDIA_TYPE", "DISPLAY_NAME", "FILE_PATH"}));
    EXPECT_EQ(keys_of(QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_DELETE),
              (Keys{"MEDIA_TYPE", "DISPLAY_NAME", "FILE_PATH", "ID_QRA"}));
    EXPECT_EQ(
        keys_of(QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_ADD),
        (Keys{"MEDIA_TYPE",     "ID_QRA",     "TITLE",          "DISPLAY_NAME", "FILE_PATH",    "MIME_TYPE",
              "ARTIST",         "ALBUM",      "GENRE",          "YEAR",         "DURATION",     "SIZE",
              "MODIFIED_TIME",  "ADDED_TIME", "THUMBNAIL_PATH", "PLAYED_COUNT", "LOCATION_TAG", "SAMPLERATE",
              "BIT_RESOLUTION", "BITRATE",    "FORMAT",         "IS_DRM"}));
}

TEST_F(ShareFileInfo, ReadsForAHomeNetworkByTheDevice) {
    select_full_item();
    const auto keys = [&](int device) {
        return keys_of(QRA_PROCESSOR_TYPE_DLNA, static_cast<qra_dev_type_e>(device));
    };
    EXPECT_EQ(keys(0), (Keys{"MEDIA_TYPE", "SIZE", "DISPLAY_NAME"}));
    EXPECT_EQ(keys(2), (Keys{"MEDIA_TYPE", "SIZE", "DISPLAY_NAME", "FILE_PATH"}));
    EXPECT_EQ(keys(3), (Keys{"MEDIA_TYPE", "SIZE", "DISPLAY_NAME", "THUMBNAIL_PATH"}));
    EXPECT_EQ(keys(4), (Keys{"MEDIA_TYPE", "SIZE", "DISPLAY_NAME", "MODIFIED_TIME", "ID_QRA"}));
}

TEST_F(ShareFileInfo, FailsWithoutAnyOneValueThatTheJobNeeds) {
    for (const qra_processor_type_e type :
         {QRA_PROCESSOR_TYPE_DELETE, QRA_PROCESSOR_TYPE_COPY, QRA_PROCESSOR_TYPE_DLNA,
          QRA_PROCESSOR_TYPE_LOCK, QRA_PROCESSOR_TYPE_PLAYLIST_DELETE,
          QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_DELETE}) {
        select_full_item();
        for (const std::string& key : keys_of(type, QRA_DEV_TYPE_DLNA_EXT)) {
            select_full_item();
            script_.items.back().texts.erase(key);
            script_.items.back().numbers.erase(key);
            CQRAShareFileInfo info(list_);
            EXPECT_FALSE(CQRAShareFileBuilder(&info).Build(type, QRA_DEV_TYPE_DLNA_EXT))
                << type << " " << key;
        }
    }
}

TEST_F(ShareFileInfo, KnowsNoOtherKindOfJob) {
    select_full_item();
    CQRAShareFileInfo info(list_);
    EXPECT_FALSE(CQRAShareFileBuilder(&info).Build(QRA_PROCESSOR_TYPE_RESERVED, QRA_DEV_TYPE_DEFAULT));
    EXPECT_TRUE(log_.contains("Unkown share type."));
}
