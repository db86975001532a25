#include "metadata_extractor.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

class MetadataExtractor : public testing::Test {
protected:
    MetadataExtractor() { EXPECT_EQ(metadata_extractor_create(&extractor_), 0); }
    ~MetadataExtractor() override { EXPECT_EQ(metadata_extractor_destroy(extractor_), 0); }

    int set_fixture(const std::string& name) {
        return metadata_extractor_set_path(extractor_, (std::string(QRA_FIXTURES) + "/" + name).c_str());
    }

    std::string value(metadata_extractor_attr_e attribute) {
        char* text = nullptr;
        EXPECT_EQ(metadata_extractor_get_metadata(extractor_, attribute, &text), 0);
        const std::string copy = text ? text : "(null)";
        free(text);
        return copy;
    }
    std::string video_codec() { return value(METADATA_EXTRACTOR_VIDEO_CODEC); }
    std::string audio_codec() { return value(METADATA_EXTRACTOR_AUDIO_CODEC); }

    metadata_extractor_h extractor_ = nullptr;
};

TEST_F(MetadataExtractor, NamesTheCodecsOfVideos) {
    ASSERT_EQ(set_fixture("video/clip.mp4"), 0);
    EXPECT_EQ(video_codec(), "h264");
    EXPECT_EQ(audio_codec(), "aac");
    ASSERT_EQ(set_fixture("video/clip.webm"), 0);
    EXPECT_EQ(video_codec(), "vp8");
    EXPECT_EQ(audio_codec(), "opus");
    ASSERT_EQ(set_fixture("video/clip.mpg"), 0);
    EXPECT_EQ(video_codec(), "mpeg2video");
    EXPECT_EQ(audio_codec(), "mp2");
}

TEST_F(MetadataExtractor, ASoundFileHasNoVideoCodec) {
    ASSERT_EQ(set_fixture("music/song.flac"), 0);
    EXPECT_EQ(video_codec(), "");
    EXPECT_EQ(audio_codec(), "flac");
}

TEST_F(MetadataExtractor, APictureOrABrokenFileHasNoCodecs) {
    for (const char* name :
         {"pictures/photo.jpg", "broken/lying.mp4", "broken/empty.mp4", "broken/playlist.mp4"}) {
        ASSERT_EQ(set_fixture(name), 0) << name;
        EXPECT_EQ(video_codec(), "") << name;
        EXPECT_EQ(audio_codec(), "") << name;
    }
}

TEST_F(MetadataExtractor, AFileThatIsNotThereIsAFailureAndTheOldFileStays) {
    ASSERT_EQ(set_fixture("video/clip.mp4"), 0);
    EXPECT_EQ(set_fixture("video/none.mp4"), METADATA_EXTRACTOR_ERROR_FILE);
    EXPECT_EQ(set_fixture("video"), METADATA_EXTRACTOR_ERROR_FILE);
    EXPECT_EQ(video_codec(), "h264");
}

TEST_F(MetadataExtractor, WithoutAPathHasNothingToTell) {
    char* text = nullptr;
    EXPECT_EQ(metadata_extractor_get_metadata(extractor_, METADATA_EXTRACTOR_VIDEO_CODEC, &text),
              METADATA_EXTRACTOR_ERROR_NO_PATH);
    EXPECT_EQ(text, nullptr);
}

TEST_F(MetadataExtractor, RefusesNullArgumentsAndUnknownAttributes) {
    char* text = nullptr;
    ASSERT_EQ(set_fixture("video/clip.mp4"), 0);
    const auto unknown = static_cast<metadata_extractor_attr_e>(7);
    EXPECT_EQ(metadata_extractor_get_metadata(extractor_, unknown, &text),
              METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(metadata_extractor_get_metadata(extractor_, METADATA_EXTRACTOR_VIDEO_CODEC, nullptr),
              METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(metadata_extractor_get_metadata(nullptr, METADATA_EXTRACTOR_VIDEO_CODEC, &text),
              METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(metadata_extractor_set_path(extractor_, nullptr), METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(metadata_extractor_set_path(nullptr, "a"), METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(metadata_extractor_create(nullptr), METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(metadata_extractor_destroy(nullptr), METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER);
}

}  // namespace
