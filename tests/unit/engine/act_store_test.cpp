#include "engine/src/act_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "tests/unit/engine/temp_folder.h"

namespace {

using engine::ActStore;
using engine::ItemKey;

const ItemKey kItem = {1000, "cloud", "/a"};

class ActStoreTest : public testing::Test {
protected:
    TempFolder folder_;
    const std::string path_ = folder_.path("state/opinions.db");
    ActStore store_{path_};
};

TEST_F(ActStoreTest, KnowsNothingOfAnItemAtFirst) {
    const auto opinion = store_.opinion(kItem);
    ASSERT_TRUE(opinion);
    EXPECT_FALSE(opinion->like);
    EXPECT_TRUE(opinion->comments.empty());
}

TEST_F(ActStoreTest, KeepsALikeForOneUserAccountAndItem) {
    EXPECT_TRUE(store_.set_like(kItem, true));
    EXPECT_TRUE(store_.set_like(kItem, true));
    EXPECT_TRUE(store_.opinion(kItem)->like);
    for (const ItemKey& other :
         {ItemKey{1001, "cloud", "/a"}, ItemKey{1000, "other", "/a"}, ItemKey{1000, "cloud", "/b"}}) {
        EXPECT_FALSE(store_.opinion(other)->like);
    }
    EXPECT_TRUE(store_.set_like(kItem, false));
    EXPECT_FALSE(store_.opinion(kItem)->like);
}

TEST_F(ActStoreTest, GivesCommentsBackInTheirOrderAndToTheNextStore) {
    EXPECT_TRUE(store_.add_comment(kItem, "b'; DROP TABLE comments", 5));
    EXPECT_TRUE(store_.add_comment(kItem, "a", 4));
    ActStore next(path_);
    const auto opinion = next.opinion(kItem);
    ASSERT_TRUE(opinion);
    ASSERT_EQ(2u, opinion->comments.size());
    EXPECT_EQ("b'; DROP TABLE comments", opinion->comments[0].text);
    EXPECT_EQ(5, opinion->comments[0].time);
    EXPECT_EQ("a", opinion->comments[1].text);
}

TEST_F(ActStoreTest, KeepsTheLatestComments) {
    for (int i = 0; i <= ActStore::kMostComments; ++i) {
        ASSERT_TRUE(store_.add_comment(kItem, std::to_string(i), i));
    }
    const auto opinion = store_.opinion(kItem);
    ASSERT_TRUE(opinion);
    ASSERT_EQ(static_cast<size_t>(ActStore::kMostComments), opinion->comments.size());
    EXPECT_EQ("1", opinion->comments.front().text);
}

TEST_F(ActStoreTest, RefusesACommentThatIsEmptyOrTooLong) {
    EXPECT_FALSE(store_.add_comment(kItem, "", 1));
    EXPECT_FALSE(store_.add_comment(kItem, std::string(ActStore::kLongestComment + 1, 'x'), 1));
    EXPECT_TRUE(store_.add_comment(kItem, std::string(ActStore::kLongestComment, 'x'), 1));
}

TEST_F(ActStoreTest, LetsNobodyElseReadTheFile) {
    ASSERT_TRUE(store_.set_like(kItem, true));
    struct stat info = {};
    ASSERT_EQ(0, stat(path_.c_str(), &info));
    EXPECT_EQ(0600u, info.st_mode & 07777u);
    ASSERT_EQ(0, stat(std::filesystem::path(path_).parent_path().c_str(), &info));
    EXPECT_EQ(0700u, info.st_mode & 07777u);
}

TEST_F(ActStoreTest, FailsOnAFileThatIsNoDatabaseAndWorksWhenItIsGone) {
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
    std::ofstream(path_) << std::string(5000, 'x');
    EXPECT_FALSE(store_.set_like(kItem, true));
    EXPECT_FALSE(store_.opinion(kItem));
    std::filesystem::remove(path_);
    EXPECT_TRUE(store_.set_like(kItem, true));
}

TEST_F(ActStoreTest, FailsOnADatabaseOfALaterVersion) {
    ASSERT_TRUE(store_.set_like(kItem, true));
    sqlite3* database = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(path_.c_str(), &database));
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(database, "PRAGMA user_version = 99", nullptr, nullptr, nullptr));
    sqlite3_close(database);
    ActStore later(path_);
    EXPECT_FALSE(later.set_like(kItem, false));
    EXPECT_FALSE(later.opinion(kItem));
}

}  // namespace
