#include "platform/files/key_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/support/glib_ptr.h"
#include "tests/fakes/temp_dir.h"

namespace {

glib::KeyFilePtr key_file(const char* value) {
    glib::KeyFilePtr file(g_key_file_new());
    g_key_file_set_string(file.get(), "group", "key", value);
    return file;
}

class ReplaceKeyFile : public testing::Test {
protected:
    int entries() const {
        const std::filesystem::directory_iterator all(directory_.path());
        return static_cast<int>(std::distance(begin(all), end(all)));
    }

    TempDir directory_;
};

TEST_F(ReplaceKeyFile, MakesAFileWithTheWantedRights) {
    umask(022);

    ASSERT_TRUE(files::replace_key_file(key_file("1").get(), directory_.path("a.ini"), 0600));

    struct stat status {};
    ASSERT_EQ(stat(directory_.path("a.ini").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_EQ(directory_.read("a.ini"), "[group]\nkey=1\n");
    EXPECT_EQ(entries(), 1);
}

TEST_F(ReplaceKeyFile, PutsANewFileInThePlaceOfTheOldOne) {
    directory_.write("a.ini", "[group]\nkey=old\n");
    std::filesystem::create_hard_link(directory_.path("a.ini"), directory_.path("old"));

    ASSERT_TRUE(files::replace_key_file(key_file("new").get(), directory_.path("a.ini"), 0644));

    EXPECT_EQ(directory_.read("a.ini"), "[group]\nkey=new\n");
    EXPECT_EQ(directory_.read("old"), "[group]\nkey=old\n") << "the old file was written into";
}

TEST_F(ReplaceKeyFile, WritesAnEmptyOne) {
    directory_.write("a.ini", "[group]\nkey=old\n");

    ASSERT_TRUE(
        files::replace_key_file(glib::KeyFilePtr(g_key_file_new()).get(), directory_.path("a.ini"), 0644));

    EXPECT_EQ(directory_.read("a.ini"), "");
}

TEST_F(ReplaceKeyFile, ThatCannotBeWrittenLeavesEverythingAsItWas) {
    std::filesystem::create_directory(directory_.path("a.ini"));

    EXPECT_FALSE(files::replace_key_file(key_file("1").get(), directory_.path("a.ini"), 0644));
    EXPECT_FALSE(files::replace_key_file(key_file("1").get(), directory_.path("missing/a.ini"), 0644));

    EXPECT_EQ(entries(), 1);
}

}  // namespace
