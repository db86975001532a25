#include "platform/nubelink/host/position_store.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/fakes/temp_dir.h"

namespace {

using nbl::PositionStore;

struct PositionStoreTest : testing::Test {
    TempDir directory;
    const std::string path = directory.path("in/side/positions");
    PositionStore store{path};
};

TEST_F(PositionStoreTest, KnowsNothingAtFirst) {
    EXPECT_EQ(store.find("uuid:1", "a"), 0);
}

TEST_F(PositionStoreTest, KeepsAPositionForADeviceAndAContent) {
    ASSERT_TRUE(store.keep("uuid:1", "a", 75));

    EXPECT_EQ(store.find("uuid:1", "a"), 75);
    EXPECT_EQ(store.find("uuid:2", "a"), 0);
    EXPECT_EQ(store.find("uuid:1", "b"), 0);
}

TEST_F(PositionStoreTest, IsTheSameForAnotherProcess) {
    PositionStore other(path);
    EXPECT_EQ(other.find("uuid:1", "a"), 0);

    ASSERT_TRUE(store.keep("uuid:1", "a", 75));
    EXPECT_EQ(other.find("uuid:1", "a"), 75);

    ASSERT_TRUE(other.keep("uuid:1", "b", 8));
    ASSERT_TRUE(store.keep("uuid:1", "a", 76));
    EXPECT_EQ(store.find("uuid:1", "b"), 8);
    EXPECT_EQ(other.find("uuid:1", "a"), 76);
}

TEST_F(PositionStoreTest, ForgetsAPositionThatIsSetToTheStart) {
    ASSERT_TRUE(store.keep("uuid:1", "a", 75));
    ASSERT_TRUE(store.keep("uuid:1", "a", 0));
    ASSERT_TRUE(store.keep("uuid:1", "never set", 0));

    EXPECT_EQ(store.find("uuid:1", "a"), 0);
    EXPECT_EQ(PositionStore(path).find("uuid:1", "a"), 0);
}

TEST_F(PositionStoreTest, TakesIdsWithAnyLetters) {
    const std::string odd = "[a]=b;\n\xFF#/c\\ " + std::string(1, '\0') + "d";
    ASSERT_TRUE(store.keep(odd, odd, 3));
    ASSERT_TRUE(store.keep("", "", 4));

    PositionStore other(path);
    EXPECT_EQ(other.find(odd, odd), 3);
    EXPECT_EQ(other.find("", ""), 4);
}

TEST_F(PositionStoreTest, RefusesIdsThatNoServerNeeds) {
    EXPECT_FALSE(store.keep("uuid:1", std::string(PositionStore::kLongestId + 1, 'a'), 3));
    EXPECT_FALSE(store.keep(std::string(PositionStore::kLongestId + 1, 'a'), "a", 3));
}

TEST_F(PositionStoreTest, ForgetsWhatWasSetLongestAgoWhereThereAreTooMany) {
    std::string text = "[positions]\n";
    for (size_t i = 0; i < PositionStore::kMost; ++i) {
        text += "uuid/" + std::to_string(i) + "=5 " + std::to_string(1000 + (i + 7) % PositionStore::kMost) +
                "\n";
    }
    PositionStore full(directory.write("full", text));
    const std::string oldest = std::to_string(PositionStore::kMost - 7);
    ASSERT_EQ(full.find("uuid", oldest), 5);

    ASSERT_TRUE(full.keep("uuid", "new", 9));

    EXPECT_EQ(full.find("uuid", "new"), 9);
    EXPECT_EQ(full.find("uuid", oldest), 0);
    EXPECT_EQ(full.find("uuid", "0"), 5);
}

TEST_F(PositionStoreTest, TakesAFileThatIsNoneForAnEmptyOneAndReplacesIt) {
    PositionStore odd(
        directory.write("odd", "[positions]\na/b=nonsense\na/c=-5 3\na/d=99999999999 1\na/e=7 1\nx"));
    EXPECT_EQ(odd.find("a", "b"), 0);

    ASSERT_TRUE(odd.keep("a", "b", 6));

    EXPECT_EQ(PositionStore(directory.path("odd")).find("a", "b"), 6);
}

TEST_F(PositionStoreTest, LeavesOutValuesThatAreNoPositions) {
    PositionStore odd(
        directory.write("odd", "[positions]\na/b=nonsense\na/c=-5 3\na/d=99999999999 1\na/e=7 1\na/f=7\n"));

    EXPECT_EQ(odd.find("a", "b"), 0);
    EXPECT_EQ(odd.find("a", "c"), 0);
    EXPECT_EQ(odd.find("a", "d"), 0);
    EXPECT_EQ(odd.find("a", "e"), 7);
    EXPECT_EQ(odd.find("a", "f"), 0);
}

TEST_F(PositionStoreTest, SaysThatItCannotKeepWhereNothingCanBeWritten) {
    PositionStore nowhere(directory.write("file", "") + "/below/a/file");

    EXPECT_FALSE(nowhere.keep("uuid:1", "a", 75));
    EXPECT_EQ(nowhere.find("uuid:1", "a"), 0);
}

TEST_F(PositionStoreTest, LosesNothingWhereSeveralWriteAtOnce) {
    constexpr int kEach = 10;
    const auto write = [this](const std::string& device) {
        PositionStore own(path);
        for (int i = 0; i < kEach; ++i) {
            EXPECT_TRUE(own.keep(device, std::to_string(i), i + 1));
            EXPECT_TRUE(store.keep(device + "-shared", std::to_string(i), i + 1));
        }
    };
    std::thread one(write, "uuid:1");
    std::thread other(write, "uuid:2");
    one.join();
    other.join();

    for (int i = 0; i < kEach; ++i) {
        for (const char* device : {"uuid:1", "uuid:2", "uuid:1-shared", "uuid:2-shared"}) {
            EXPECT_EQ(store.find(device, std::to_string(i)), i + 1) << device << " " << i;
        }
    }
}

}  // namespace
