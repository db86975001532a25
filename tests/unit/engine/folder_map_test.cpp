#include "engine/src/folder_map.h"

#include <gtest/gtest.h>

#include "tests/unit/engine/temp_folder.h"

using engine::FolderKey;
using engine::FolderMap;

namespace {

class FolderMapTest : public testing::Test {
protected:
    FolderKey key(const std::string& name) const { return {1000, temp.path(name), "storage"}; }
    FolderKey added(const std::string& name, const std::string& id) {
        temp.old_folder(name);
        EXPECT_TRUE(map.add(key(name), id));
        return key(name);
    }

    TempFolder temp;
    FolderMap map{3};
};

TEST_F(FolderMapTest, FindsWhatWasAdded) {
    const FolderKey holiday = added("holiday", "12");
    added("music", "13");
    EXPECT_EQ("12", map.find(holiday));
    EXPECT_EQ("12", map.find(holiday));
}

TEST_F(FolderMapTest, KnowsNothingElse) {
    added("holiday", "12");
    EXPECT_EQ("", map.find(key("music")));
}

TEST_F(FolderMapTest, KeepsUsersAndStoragesApart) {
    const FolderKey holiday = added("holiday", "12");
    FolderKey of_other_user = holiday;
    of_other_user.owner = 1001;
    FolderKey on_other_storage = holiday;
    on_other_storage.storage_id = "other";
    EXPECT_EQ("", map.find(of_other_user));
    EXPECT_EQ("", map.find(on_other_storage));
}

TEST_F(FolderMapTest, GivesTheIdThatWasAddedLast) {
    const FolderKey holiday = added("holiday", "12");
    EXPECT_TRUE(map.add(holiday, "14"));
    EXPECT_EQ("14", map.find(holiday));
    EXPECT_EQ(1U, map.size());
}

TEST_F(FolderMapTest, ForgetsAFolderThatIsGone) {
    const FolderKey holiday = added("holiday", "12");
    std::filesystem::remove(holiday.path);
    EXPECT_EQ("", map.find(holiday));
    EXPECT_EQ(0U, map.size());
}

TEST_F(FolderMapTest, ForgetsAFolderThatBecameAFile) {
    const FolderKey holiday = added("holiday", "12");
    std::filesystem::remove(holiday.path);
    temp.write("holiday", "");
    EXPECT_EQ("", map.find(holiday));
}

TEST_F(FolderMapTest, ForgetsAFolderThatWasReplacedByOneOfTheSameAge) {
    const FolderKey holiday = added("holiday", "12");
    std::filesystem::remove(holiday.path);
    temp.old_folder("holiday");
    EXPECT_EQ("", map.find(holiday));
}

TEST_F(FolderMapTest, ForgetsAFolderWhoseEntriesChanged) {
    const FolderKey holiday = added("holiday", "12");
    temp.write("holiday/new.jpg", "");
    EXPECT_EQ("", map.find(holiday));
    age(holiday.path);
    EXPECT_EQ("", map.find(holiday)) << "an entry that was dropped must not come back";
}

TEST_F(FolderMapTest, ForgetsAFolderWhoseDriveWasExchanged) {
    temp.old_folder("stick-1");
    temp.old_folder("stick-2");
    const auto drive = temp.path("USBDrive1");
    std::filesystem::create_directory_symlink("stick-1", drive);
    ASSERT_TRUE(map.add(key("USBDrive1"), "12"));
    std::filesystem::remove(drive);
    std::filesystem::create_directory_symlink("stick-2", drive);
    EXPECT_EQ("", map.find(key("USBDrive1")));
}

TEST_F(FolderMapTest, ForgetsAFolderWhoseDriveWasAttachedAnew) {
    temp.old_folder("stick");
    temp.old_folder("stick/folder");
    const auto drive = temp.path("USBDrive1");
    std::filesystem::create_directory_symlink("stick", drive);
    ASSERT_TRUE(map.add(key("USBDrive1/folder"), "12"));
    EXPECT_EQ("12", map.find(key("USBDrive1/folder")));
    std::filesystem::rename(drive, temp.path("kept, so that its inode is not free again"));
    std::filesystem::create_directory_symlink("stick", drive);
    EXPECT_EQ("", map.find(key("USBDrive1/folder")));
}

TEST_F(FolderMapTest, ForgetsTheFoldersOfADatabaseThatWasReplaced) {
    const std::string database = temp.write("media.db", "rows");
    FolderMap of_database(3, database);
    const FolderKey holiday = {1000, temp.old_folder("holiday"), "storage"};
    ASSERT_TRUE(of_database.add(holiday, "12"));
    temp.write("media.db", "more rows");
    EXPECT_EQ("12", of_database.find(holiday)) << "the same database";
    std::filesystem::rename(database, temp.path("damaged.db"));
    temp.write("media.db", "rows");
    EXPECT_EQ("", of_database.find(holiday));
}

TEST_F(FolderMapTest, RefusesAPathThatIsNoDirectory) {
    temp.write("file", "");
    EXPECT_FALSE(map.add(key("file"), "12"));
    EXPECT_FALSE(map.add(key("absent"), "12"));
    EXPECT_FALSE(map.add({1000, "", "storage"}, "12"));
    EXPECT_EQ(0U, map.size());
}

TEST_F(FolderMapTest, RefusesAFolderThatChangedJustNow) {
    std::filesystem::create_directory(temp.path("fresh"));
    EXPECT_FALSE(map.add(key("fresh"), "12"));
    EXPECT_EQ("", map.find(key("fresh")));
}

TEST_F(FolderMapTest, ARefusedAddForgetsTheOlderId) {
    const FolderKey holiday = added("holiday", "12");
    std::filesystem::remove(holiday.path);
    EXPECT_FALSE(map.add(holiday, "14"));
    EXPECT_EQ(0U, map.size());
}

TEST_F(FolderMapTest, ForgetsWhatWasUsedLongestAgoWhenFull) {
    const FolderKey first = added("1", "1");
    const FolderKey second = added("2", "2");
    added("3", "3");
    EXPECT_EQ("1", map.find(first));
    added("4", "4");
    EXPECT_EQ(3U, map.size());
    EXPECT_EQ("", map.find(second));
    EXPECT_EQ("1", map.find(first));
}

}  // namespace
