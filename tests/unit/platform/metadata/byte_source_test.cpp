#include "platform/media-content/host/metadata/byte_source.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <numeric>

namespace media_content {
namespace {

/// A temporary file of 100,000 bytes whose values are their positions.
class FileSourceTest : public testing::Test {
protected:
    FileSourceTest() : file_(tmpfile()), bytes_(100000) {
        std::iota(bytes_.begin(), bytes_.end(), uint8_t{0});
        fwrite(bytes_.data(), 1, bytes_.size(), file_);
        fflush(file_);
        source_.open(fileno(file_), bytes_.size());
    }
    ~FileSourceTest() override { fclose(file_); }

    std::vector<uint8_t> read(ByteSource& source, uint64_t offset, size_t length) {
        std::vector<uint8_t> out(length);
        out.resize(source.read(offset, out.data(), length));
        return out;
    }
    std::vector<uint8_t> expected(size_t offset, size_t length) const {
        return {bytes_.begin() + static_cast<ptrdiff_t>(offset),
                bytes_.begin() + static_cast<ptrdiff_t>(offset + length)};
    }

    FILE* file_;
    std::vector<uint8_t> bytes_;
    FileSource source_;
};

TEST_F(FileSourceTest, ReadsAnyPartInAnyOrder) {
    for (const auto& [offset, length] : std::initializer_list<std::pair<size_t, size_t>>{
             {0, 16}, {90000, 10}, {8, 20000}, {16380, 10}, {99990, 10}, {0, 100000}, {5, 3}}) {
        EXPECT_EQ(read(source_, offset, length), expected(offset, length)) << offset << ' ' << length;
    }
}

TEST_F(FileSourceTest, GivesWhatThereIsAtTheEnd) {
    EXPECT_EQ(read(source_, 99990, 100), expected(99990, 10));
    EXPECT_TRUE(read(source_, 100000, 1).empty());
    EXPECT_TRUE(read(source_, UINT64_MAX, 1).empty());
}

TEST_F(FileSourceTest, AFileShorterThanItWasGivesWhatThereIs) {
    ASSERT_EQ(ftruncate(fileno(file_), 50), 0);
    EXPECT_EQ(read(source_, 40, 20).size(), 10U);
    EXPECT_FALSE(source_.failed());
}

TEST_F(FileSourceTest, AStopEndsReading) {
    std::atomic<bool> stop{true};
    FileSource source(&stop);
    source.open(fileno(file_), bytes_.size());
    EXPECT_TRUE(read(source, 0, 10).empty());
}

TEST_F(FileSourceTest, ARefusedReadIsAFailureUntilTheNextFile) {
    source_.open(-1, 10);
    EXPECT_TRUE(read(source_, 0, 10).empty());
    EXPECT_TRUE(source_.failed());
    source_.open(fileno(file_), bytes_.size());
    EXPECT_FALSE(source_.failed());
}

TEST_F(FileSourceTest, NoFileGivesMoreThanTheAppetite) {
    ASSERT_EQ(ftruncate(fileno(file_), static_cast<off_t>(2 * FileSource::kAppetite)), 0);
    source_.open(fileno(file_), 2 * FileSource::kAppetite);
    std::vector<uint8_t> block(1 << 20);
    uint64_t total = 0;
    for (uint64_t offset = 0; offset < 2 * FileSource::kAppetite; offset += block.size()) {
        total += source_.read(offset, block.data(), block.size());
    }
    EXPECT_EQ(total, FileSource::kAppetite);
}

TEST_F(FileSourceTest, ABlockIsReadWholeOrNotAtAll) {
    std::vector<uint8_t> block;
    EXPECT_TRUE(source_.read_block({10, 100}, 100, block));
    EXPECT_EQ(block, expected(10, 100));
    EXPECT_TRUE(source_.read_block({10, 0}, 100, block));
    EXPECT_TRUE(block.empty());
    EXPECT_FALSE(source_.read_block({10, 101}, 100, block));
    EXPECT_TRUE(block.empty());
    EXPECT_FALSE(source_.read_block({99999, 2}, 100, block));
    EXPECT_FALSE(source_.read_block({UINT64_MAX, 2}, 100, block));
    EXPECT_FALSE(source_.read_block({1, UINT64_MAX}, SIZE_MAX, block));
}

TEST(MemorySource, ReadsWithinItsBytes) {
    const char text[] = "0123456789";
    MemorySource source(text, 10);
    char out[4] = {};
    EXPECT_EQ(source.read(8, out, 4), 2U);
    EXPECT_EQ(std::string(out, 2), "89");
    EXPECT_EQ(source.read(10, out, 4), 0U);
    EXPECT_EQ(source.read(UINT64_MAX, out, 4), 0U);
}

}  // namespace
}  // namespace media_content
