#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/fakes/heap_watch.h"
#include "tests/unit/platform/metadata/fixtures.h"

namespace {

uint64_t g_bytes_read = 0;

}  // namespace

extern "C" {

ssize_t __real_pread64(int file, void* bytes, size_t size, off64_t offset);

/// The linker lets the readers call this one.
ssize_t __wrap_pread64(int file, void* bytes, size_t size, off64_t offset) {
    const ssize_t count = __real_pread64(file, bytes, size, offset);
    g_bytes_read += count > 0 ? static_cast<uint64_t>(count) : 0;
    return count;
}
}

namespace media_content {
namespace {

namespace fs = std::filesystem;

std::string content_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A directory for copies, gone after the test.
class BrokenFiles : public testing::Test {
protected:
    BrokenFiles() {
        std::string pattern = (fs::temp_directory_path() / "qra-broken-XXXXXX").string();
        directory_ = mkdtemp(pattern.data());
    }
    ~BrokenFiles() override { fs::remove_all(directory_); }

    ReadResult read_as(const std::string& name, const std::string& content) {
        std::ofstream(directory_ / name, std::ios::binary) << content;
        return read_metadata_of(directory_ / name);
    }

    fs::path directory_;
};

TEST_F(BrokenFiles, AreReadToTheirKindWithAProblem) {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(std::string(QRA_FIXTURES) + "/broken")) {
        if (entry.path().filename() == "entities.jpg") {
            continue;  // its picture is whole
        }
        const ReadResult result = read_metadata_of(entry.path());
        EXPECT_NE(result.problem, nullptr) << entry.path();
        EXPECT_EQ(result.record.kind, find_media_type(entry.path().string())->kind) << entry.path();
        EXPECT_NE(result.record.mime_type, "") << entry.path();
        ++count;
    }
    EXPECT_GT(count, 20);
}

TEST_F(BrokenFiles, OfEveryTypeAreReadWithoutHarmWhateverTheyHold) {
    const std::string contents[] = {"",
                                    "x",
                                    std::string(20, '\xff'),
                                    std::string(5000, '\0'),
                                    content_of(std::string(QRA_FIXTURES) + "/pictures/photo.jpg"),
                                    content_of(std::string(QRA_FIXTURES) + "/broken/lying.mp4"),
                                    content_of(std::string(QRA_FIXTURES) + "/broken/playlist.mp4")};
    for (const MediaType& type : media_types()) {
        for (const std::string& content : contents) {
            const ReadResult result = read_as("file." + std::string(type.extension), content);
            EXPECT_EQ(result.record.kind, type.kind);
        }
    }
}

TEST_F(BrokenFiles, CutOffAnywhereAreReadWithoutHarm) {
    for (const char* name :
         {"pictures/photo.jpg", "pictures/phone.heic", "pictures/extended.webp", "pictures/scan.tif",
          "pictures/picture.avif", "music/song.mp3", "music/song.m4a", "music/song.flac", "music/song.opus",
          "video/clip.mp4", "video/clip.webm", "video/sphere.mp4"}) {
        const std::string whole = content_of(std::string(QRA_FIXTURES) + "/" + name);
        const std::string file_name = fs::path(name).filename();
        for (size_t length = 0; length < whole.size(); length += 1 + whole.size() / 60) {
            read_as(file_name, whole.substr(0, length));
        }
    }
}

TEST_F(BrokenFiles, ThatClaimToBeHugeTakeNoMemory) {
    for (const auto& entry : fs::directory_iterator(std::string(QRA_FIXTURES) + "/broken")) {
        const heap_watch::Count count;
        read_metadata_of(entry.path());
        EXPECT_GT(count.bytes(), 0U) << entry.path();
        EXPECT_LT(count.bytes(), size_t{64} << 20) << entry.path();
    }
}

TEST_F(BrokenFiles, OfGigabytesOfNothingAreReadOnlyInPart) {
    for (const char* name :
         {"a.mp3", "a.jpg", "a.mp4", "a.mpg", "a.ts", "a.aac", "a.flac", "a.mkv", "a.wav"}) {
        std::ofstream(directory_ / name).close();
        fs::resize_file(directory_ / name, uint64_t{4} << 30);
        g_bytes_read = 0;
        EXPECT_NE(read_metadata_of(directory_ / name).problem, nullptr) << name;
        EXPECT_GT(g_bytes_read, 0U) << name;
        EXPECT_LE(g_bytes_read, uint64_t{32} << 20) << name;
    }
}

}  // namespace
}  // namespace media_content
