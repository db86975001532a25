#include "libqra-agent/source/local-source/qra_content_info_provider.h"

#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

class CContentInfoProviderOnDrive : public SampleDrive {
protected:
    CContentInfoProviderOnDrive() {
        write("a.jpg");
        std::filesystem::copy_file(QRA_TEST_FIXTURES "/music/song.mp3", path("song.mp3"));
    }

    CContentInfoProvider provider;
    char* value = nullptr;
};

}  // namespace

TEST_F(CContentInfoProviderOnDrive, ReadsTheCodecsOfAFile) {
    ASSERT_TRUE(provider.GetAudioCodec(path("song.mp3").c_str(), &value));
    EXPECT_EQ(take(value), "mp3");
    EXPECT_TRUE(log.contains("codec is[mp3]."));
    EXPECT_EQ(faults::count("metadata_extractor_destroy"), 1);
}

TEST_F(CContentInfoProviderOnDrive, ACodecThatIsNotThereIsAnEmptyText) {
    ASSERT_TRUE(provider.GetVideoCodec(path("song.mp3").c_str(), &value));
    EXPECT_EQ(take(value), "");
}

TEST_F(CContentInfoProviderOnDrive, AFileThatHasGoneNeedsNoExtractor) {
    EXPECT_FALSE(provider.GetVideoCodec(path("gone.mp4").c_str(), &value));
    EXPECT_TRUE(log.contains("File[" + path("gone.mp4") + "] is not exist."));
    EXPECT_EQ(faults::count("metadata_extractor_create"), 0);
}

TEST_F(CContentInfoProviderOnDrive, EachStepThatFailsIsLoggedAndTheExtractorDestroyed) {
    const struct {
        const char* function;
        int destroyed;
    } steps[] = {{"metadata_extractor_create", 0},
                 {"metadata_extractor_set_path", 1},
                 {"metadata_extractor_get_metadata", 1}};
    for (const auto& step : steps) {
        faults::reset();
        faults::fail(step.function);
        EXPECT_FALSE(provider.GetAudioCodec(path("song.mp3").c_str(), &value)) << step.function;
        EXPECT_EQ(value, nullptr);
        EXPECT_TRUE(log.contains(std::string("]] ") + step.function + " fail, ret[4711]."));
        EXPECT_EQ(faults::count("metadata_extractor_destroy"), step.destroyed);
    }
}

TEST(CContentInfoProviderDeathTest, NullArgumentsEndTheProcess) {
    CContentInfoProvider provider;
    char* value = nullptr;
    EXPECT_DEATH(provider.GetVideoCodec(nullptr, &value), "pPath != __null");
    EXPECT_DEATH(provider.GetAudioCodec("/x", nullptr), "ppValue != __null");
}
