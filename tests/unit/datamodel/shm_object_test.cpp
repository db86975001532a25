#include "common/cache/shm_object.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/result_objects.h"

namespace {

TEST(CShmObject, ReadsWhatLiesWithinTheMappedBytes) {
    const ShmFile file("headertext and more");
    CShmObject object(file.name());
    char header[6] = {};

    ASSERT_TRUE(object.Open(header, sizeof(header)));
    ASSERT_TRUE(object.Map(14));

    EXPECT_EQ(std::string(header, sizeof(header)), "header");
    std::string text;
    EXPECT_TRUE(object.ReadText(6, 8, text));
    EXPECT_EQ(text, "text and");
    EXPECT_TRUE(object.ReadText(14, 0, text));
    EXPECT_EQ(text, "");
}

TEST(CShmObject, RefusesEveryRangeThatLeavesTheMappedBytes) {
    const ShmFile file("0123456789abcdef");
    CShmObject object(file.name());
    char header[1];
    ASSERT_TRUE(object.Open(header, sizeof(header)));
    ASSERT_TRUE(object.Map(10));
    std::string text = "untouched";
    const LogCapture log;

    EXPECT_FALSE(object.ReadText(-1, 1, text));
    EXPECT_FALSE(object.ReadText(0, -1, text));
    EXPECT_FALSE(object.ReadText(0, 11, text));
    EXPECT_FALSE(object.ReadText(10, 1, text));
    EXPECT_FALSE(object.ReadText(11, 0, text));
    EXPECT_FALSE(object.ReadText(INT64_MAX, INT64_MAX, text));

    EXPECT_EQ(text, "untouched");
    EXPECT_EQ(log.count("do not lie in the object[" + file.name() + "]."), 6);
}

TEST(CShmObject, ReadsTheTablesOfAWalkOnceHoweverLongItsTextsAre) {
    constexpr size_t kSize = 1 << 20;
    const ShmFile tables("before");
    const ShmFile texts(std::string(kSize, 't'));
    CShmObject table(tables.name());
    CShmObject block(texts.name());
    char header[1];
    ASSERT_TRUE(table.Open(header, sizeof(header)) && table.Map(6));
    ASSERT_TRUE(block.Open(header, sizeof(header)) && block.Map(kSize));
    std::string text;
    ASSERT_TRUE(table.ReadText(0, 6, text));

    tables.write("after!");

    for (size_t at = 0; at < kSize; at += 500) {
        ASSERT_TRUE(block.Read(static_cast<int64_t>(at), header, sizeof(header)));
        ASSERT_TRUE(table.ReadText(0, 6, text));
        ASSERT_EQ(text, "before") << "read again at " << at;
    }
}

TEST(CShmObject, HoldsCountsEntriesWithoutOverflow) {
    const ShmFile file("0123456789abcdef");
    CShmObject object(file.name());
    char header[1];
    ASSERT_TRUE(object.Open(header, sizeof(header)));
    ASSERT_TRUE(object.Map(16));

    EXPECT_TRUE(object.Holds(0, 2, 8));
    EXPECT_TRUE(object.Holds(16, 0, 8));
    EXPECT_FALSE(object.Holds(1, 2, 8));
    EXPECT_FALSE(object.Holds(0, -1, 8));
    EXPECT_FALSE(object.Holds(0, INT64_MAX, 8));
}

TEST(CShmObject, AnObjectShorterThanItClaimsIsNotMapped) {
    const ShmFile file("0123456789");
    CShmObject object(file.name());
    char header[1];
    ASSERT_TRUE(object.Open(header, sizeof(header)));
    const LogCapture log;

    EXPECT_FALSE(object.Map(11));
    EXPECT_FALSE(object.Map(0));
    EXPECT_FALSE(object.Map(-1));

    EXPECT_TRUE(log.contains("Object[" + file.name() + "] of 10 bytes claims to have 11."));
}

TEST(CShmObject, AReadAfterTheWriterShortenedTheObjectFails) {
    const ShmFile file(std::string(3 * 4096, 'x'));
    CShmObject object(file.name());
    char header[1];
    ASSERT_TRUE(object.Open(header, sizeof(header)));
    ASSERT_TRUE(object.Map(3 * 4096));

    file.truncate(4096);

    std::string text;
    EXPECT_TRUE(object.ReadText(0, 4096, text));
    EXPECT_FALSE(object.ReadText(4096, 1, text));
}

TEST(CShmObject, ReadsTheSameWhereverPiecesOfItBeginAndEnd) {
    std::string bytes(5 * 4096 + 17, '\0');
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 256);
    const ShmFile file(bytes);
    CShmObject object(file.name());
    char header[1];
    ASSERT_TRUE(object.Open(header, sizeof(header)));
    ASSERT_TRUE(object.Map(static_cast<int32_t>(bytes.size())));

    for (const int64_t length : {0, 1, 4095, 4096, 4097, 8192, 8193, 20000}) {
        for (int64_t offset = 0; offset + length <= static_cast<int64_t>(bytes.size()); offset += 509) {
            std::string text;
            ASSERT_TRUE(object.ReadText(offset, length, text)) << length << " at " << offset;
            ASSERT_EQ(text, bytes.substr(offset, length)) << length << " at " << offset;
        }
    }
}

TEST(CShmObject, ManyObjectsReadInTurnKeepTheirOwnBytes) {
    std::vector<std::unique_ptr<ShmFile>> files;
    std::vector<std::unique_ptr<CShmObject>> objects;
    char header[1];
    for (char letter = 'a'; letter <= 'j'; ++letter) {
        files.push_back(std::make_unique<ShmFile>(std::string(100, letter)));
        objects.push_back(std::make_unique<CShmObject>(files.back()->name()));
        ASSERT_TRUE(objects.back()->Open(header, sizeof(header)));
        ASSERT_TRUE(objects.back()->Map(100));
    }

    for (int round = 0; round < 3; ++round) {
        for (size_t i = 0; i < objects.size(); ++i) {
            std::string text;
            ASSERT_TRUE(objects[i]->ReadText(10, 5, text));
            EXPECT_EQ(text, std::string(5, static_cast<char>('a' + i)));
        }
    }
}

TEST(CShmObject, AnUnknownNameIsNotOpened) {
    const LogCapture log;
    CShmObject object("qra_test_no_such_object");
    char header[1];

    EXPECT_FALSE(object.Open(header, sizeof(header)));

    EXPECT_TRUE(log.contains("shm_open failed, m_strShmName[qra_test_no_such_object]."));
}

TEST(CShmObject, AShortHeaderOfAWriterThatIsNotTrustedIsFalse) {
    const ShmFile file("123");
    CShmObject object(file.name(), EQRAWriter::Untrusted);
    char header[4];
    const LogCapture log;

    EXPECT_FALSE(object.Open(header, sizeof(header)));

    EXPECT_TRUE(log.contains("Object[" + file.name() + "] is shorter than its header."));
}

TEST(CShmObject, APipeInPlaceOfTheObjectDoesNotHoldTheReaderUp) {
    const std::string name = "qra_test_pipe_" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(("/dev/shm/" + name).c_str(), 0600), 0);
    CShmObject object(name, EQRAWriter::Untrusted);
    char header[4];

    EXPECT_FALSE(object.Open(header, sizeof(header)));

    shm_unlink(name.c_str());
}

TEST(CShmObjectDeathTest, AShortHeaderIsAnAssertion) {
    const ShmFile file("123");
    CShmObject object(file.name());
    char header[4];

    EXPECT_DEATH(object.Open(header, sizeof(header)), "ret == 1");
}

}  // namespace
