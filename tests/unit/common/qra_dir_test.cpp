#include "common/util/qra_dir.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

namespace {

std::vector<std::string> names(const CQRADir& dir) {
    std::vector<std::string> result;
    for (int i = 0; i < dir.GetEntryCount(); ++i) {
        result.push_back(dir.GetEntryName(i));
    }
    return result;
}

}  // namespace

TEST(CQRADir, ListsTheEntriesSortedWithoutTheDots) {
    TempDir temp;
    temp.write("b", "");
    temp.write("a", "");
    temp.write(".hidden", "");
    CQRADir dir;

    ASSERT_TRUE(dir.Open(temp.path().c_str()));

    std::vector<std::string> sorted = names(dir);
    EXPECT_EQ(sorted.size(), 3u);
    EXPECT_TRUE(std::find(sorted.begin(), sorted.end(), ".hidden") != sorted.end());
    EXPECT_LT(std::find(sorted.begin(), sorted.end(), "a"), std::find(sorted.begin(), sorted.end(), "b"));
    EXPECT_EQ(dir.GetEntryName(3), nullptr);
    EXPECT_EQ(dir.GetEntryName(-1), nullptr);
    EXPECT_STREQ(dir.GetName(), temp.path().c_str());
}

TEST(CQRADir, OpensAnEmptyDirectory) {
    TempDir temp;
    CQRADir dir;

    EXPECT_TRUE(dir.Open(temp.path().c_str()));

    EXPECT_TRUE(dir.FlagCreate());
    EXPECT_EQ(dir.GetEntryCount(), 0);
}

TEST(CQRADir, RefusesASecondOpen) {
    LogCapture log;
    TempDir temp;
    CQRADir dir;
    ASSERT_TRUE(dir.Open(temp.path().c_str()));

    EXPECT_FALSE(dir.Open(temp.path().c_str()));

    EXPECT_TRUE(log.contains("FlagCreate() != false."));
    EXPECT_TRUE(dir.FlagCreate());
}

TEST(CQRADir, OpenOfWhatIsNoDirectoryFails) {
    LogCapture log;
    TempDir temp;
    CQRADir dir;

    EXPECT_FALSE(dir.Open(temp.path("absent").c_str()));
    EXPECT_FALSE(dir.Open(temp.write("file", "").c_str()));

    EXPECT_FALSE(dir.FlagCreate());
    EXPECT_TRUE(log.contains("System error. errno[2]"));
    EXPECT_TRUE(log.contains("System error. errno[20]"));
}

TEST(CQRADir, UpdateSeesWhatCameSince) {
    TempDir temp;
    CQRADir dir;
    ASSERT_TRUE(dir.Open(temp.path().c_str()));
    temp.write("new", "");

    EXPECT_TRUE(dir.Update());

    EXPECT_EQ(names(dir), std::vector<std::string>{"new"});
}

TEST(CQRADir, NeedsAnOpenDirectory) {
    LogCapture log;
    CQRADir dir;

    EXPECT_FALSE(dir.SetPositionTop());
    EXPECT_FALSE(dir.Update());
    dir.Destroy();

    EXPECT_EQ(log.count("FlagCreate() != true"), 3);
}

TEST(CQRADir, OpensAgainAfterDestroy) {
    TempDir temp;
    temp.write("a", "");
    CQRADir dir;
    ASSERT_TRUE(dir.Open(temp.path().c_str()));

    dir.Destroy();

    EXPECT_FALSE(dir.FlagCreate());
    EXPECT_EQ(dir.GetEntryCount(), 0);
    EXPECT_STREQ(dir.GetName(), "");
    EXPECT_TRUE(dir.Open(temp.path().c_str()));
    EXPECT_EQ(dir.GetEntryCount(), 1);
}

TEST(CQRADir, CutsALongNameAndListsTheDirectoryAllTheSame) {
    TempDir temp;
    const std::string deep = temp.path(std::string(200, 'a')) + "/" + std::string(200, 'b');
    std::filesystem::create_directories(deep + "/entry");
    CQRADir dir;

    ASSERT_TRUE(dir.Open(deep.c_str()));

    EXPECT_EQ(dir.GetName(), deep.substr(0, 255));
    EXPECT_EQ(names(dir), std::vector<std::string>{"entry"});
}

TEST(CQRADir, CreateMakesADirectoryOrFindsIt) {
    TempDir temp;
    const std::string path = temp.path("new");

    EXPECT_TRUE(CQRADir::Create(path.c_str()));
    EXPECT_TRUE(CQRADir::DirExists(path.c_str()));
    EXPECT_TRUE(CQRADir::Create(path.c_str()));
}

TEST(CQRADir, CreateRefusesTheNameOfAFile) {
    LogCapture log;
    TempDir temp;

    EXPECT_FALSE(CQRADir::Create(temp.write("file", "").c_str()));

    EXPECT_TRUE(log.contains("CQRADir::Create() : S_ISDIR() failed."));
}

TEST(CQRADir, CreateNeedsTheDirectoryAbove) {
    LogCapture log;
    TempDir temp;

    EXPECT_FALSE(CQRADir::Create(temp.path("no/such").c_str()));

    EXPECT_TRUE(log.contains("System error. errno[2]"));
}

TEST(CQRADir, RemovesAnEmptyDirectoryOnly) {
    TempDir temp;
    CQRADir::Create(temp.path("d").c_str());
    temp.write("d/file", "");

    EXPECT_FALSE(CQRADir::Remove(temp.path("d").c_str()));
    std::filesystem::remove(temp.path("d/file"));
    EXPECT_TRUE(CQRADir::Remove(temp.path("d").c_str()));
    EXPECT_FALSE(CQRADir::DirExists(temp.path("d").c_str()));
}

TEST(CQRADir, AFileIsNoDirectory) {
    TempDir temp;

    EXPECT_FALSE(CQRADir::DirExists(temp.write("file", "").c_str()));
    EXPECT_FALSE(CQRADir::DirExists(temp.path("absent").c_str()));
}
