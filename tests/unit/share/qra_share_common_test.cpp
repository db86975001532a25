#include "libqra-agent/share/src/qra_share_common.h"

#include <gtest/gtest.h>
#include <qra/qra_types.h>

#include <string>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

namespace {

std::string numbered(int n) {
    char text[32];
    snprintf(text, sizeof text, "name_%03d.jpg", n);
    return text;
}

}  // namespace

TEST(QRAShareCommon, TakesTheExtensionOfTheLastComponent) {
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::string("/a/b.tar.gz")), "gz");
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::string("/a.b/c")), "");
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::string("a.b\\c")), "");
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::string("c:\\dir\\Pic.JPG")), "JPG");
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::string("name.")), "");
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::string("")), "");
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::wstring(L"/a.b/c.d")), L"d");
    EXPECT_EQ(QRAShareCommon::ExtractExtension(std::wstring(L"/a.b/c")), L"");
}

TEST(QRAShareCommon, TakesPathsApart) {
    EXPECT_EQ(QRAShareCommon::ExtractFullFileName("/a/b\\c.d"), "c.d");
    EXPECT_EQ(QRAShareCommon::ExtractFullFileName("c.d"), "c.d");
    EXPECT_EQ(QRAShareCommon::ExtractFullFileName("/a/"), "");
    EXPECT_EQ(QRAShareCommon::ExtractFileNameNoExt("/a.b/c.d.e"), "c.d");
    EXPECT_EQ(QRAShareCommon::ExtractFileNameNoExt("/a.b/c"), "c");
    EXPECT_EQ(QRAShareCommon::ExtractFileNameNoExt(".jpg"), "");
    EXPECT_EQ(QRAShareCommon::ExtractFilePath("/a/b/c.d"), "/a/b");
    EXPECT_EQ(QRAShareCommon::ExtractFilePath("/a\\c.d"), "/a");
    EXPECT_EQ(QRAShareCommon::ExtractFilePath("c.d"), "");
    EXPECT_EQ(QRAShareCommon::ExtractFullPathandNameNoExt("/a.b/c.d"), "/a.b/c");
    EXPECT_EQ(QRAShareCommon::ExtractFullPathandNameNoExt("/a.b/c"), "/a");
}

TEST(QRAShareCommon, NamesAFolderForEachKind) {
    EXPECT_EQ(QRAShareCommon::MakeLocalFolderName(QRA_MEDIA_TYPE_IMAGE, "/d", 0), "/d/PHOTO/");
    EXPECT_EQ(QRAShareCommon::MakeLocalFolderName(QRA_MEDIA_TYPE_IMAGE_EXT, "/d", 1), "/d/PHOTO001/");
    EXPECT_EQ(QRAShareCommon::MakeLocalFolderName(QRA_MEDIA_TYPE_VIDEO, "/d", 0), "/d/VIDEO/");
    EXPECT_EQ(QRAShareCommon::MakeLocalFolderName(QRA_MEDIA_TYPE_VIDEO_EXT, "/d", 9), "/d/VIDEO009/");
    EXPECT_EQ(QRAShareCommon::MakeLocalFolderName(QRA_MEDIA_TYPE_MUSIC, "/d", 0), "/d/MUSIC/");
    EXPECT_EQ(QRAShareCommon::MakeLocalFolderName(QRA_MEDIA_TYPE_PVR, "/d", 0), "/d/CONTENTS/");
    for (const int type : std::initializer_list<int>{-1, 0, QRA_MEDIA_TYPE_FOLDER, QRA_MEDIA_TYPE_UHD}) {
        EXPECT_EQ(QRAShareCommon::MakeLocalFolderName(type, "/d", 3), "") << type;
    }
}

TEST(QRAShareCommon, MakesTheFolderOfAHardDisk) {
    const TempDir dir;
    for (const std::string& base : {dir.path(), dir.path() + "/"}) {
        std::string path = base;
        EXPECT_TRUE(QRAShareCommon::MakeHDDFolder(path));
        EXPECT_EQ(path, dir.path("MP"));
        EXPECT_TRUE(std::filesystem::is_directory(path));
    }
    std::string path = dir.path("missing/base");
    EXPECT_FALSE(QRAShareCommon::MakeHDDFolder(path));
}

TEST(QRAShareCommon, TakesTheNextFolderWhereAFileHasTheName) {
    const TempDir dir;
    dir.write("PHOTO", "a plain file");
    std::string path = dir.path();
    EXPECT_TRUE(QRAShareCommon::MakeLocalOutFolder(QRA_MEDIA_TYPE_IMAGE, path));
    EXPECT_EQ(path, dir.path("PHOTO001/"));
    EXPECT_TRUE(std::filesystem::is_directory(path));
}

TEST(QRAShareCommon, GivesUpAfterTenFoldersThatCannotBeMade) {
    const LogCapture log;
    const TempDir dir;
    dir.write("MUSIC", "");
    for (int n = 1; n < 10; ++n) {
        dir.write("MUSIC00" + std::to_string(n), "");
    }
    std::string path = dir.path();
    EXPECT_FALSE(QRAShareCommon::MakeLocalOutFolder(QRA_MEDIA_TYPE_MUSIC, path));
    EXPECT_EQ(path, dir.path());
    EXPECT_EQ(log.count("Create dir ["), 10);
    EXPECT_TRUE(log.contains("Create dir [" + dir.path("MUSIC009/") + "] faild."));

    std::string out;
    EXPECT_FALSE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_MUSIC, dir.path(), "a.mp3", out));
    EXPECT_TRUE(log.contains("MakeLocalOutFolder faild."));
}

TEST(QRAShareCommon, AKindWithoutAFolderHasNoOutput) {
    const TempDir dir;
    std::string out;
    EXPECT_FALSE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_FOLDER, dir.path(), "a", out));
    EXPECT_FALSE(QRAShareCommon::MakeOutputFileName(-1, dir.path(), "a.jpg", out));
}

TEST(QRAShareCommon, GivesANameWithoutAnExtensionOneOfAPicture) {
    const TempDir dir;
    std::string out;
    EXPECT_TRUE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_IMAGE, dir.path(), "name", out));
    EXPECT_EQ(out, dir.path("PHOTO/name.jpg"));
    EXPECT_TRUE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_VIDEO, dir.path(), "film", out));
    EXPECT_EQ(out, dir.path("VIDEO/film.jpg"));
}

TEST(QRAShareCommon, NumbersANameThatIsTakenUpToNinetyNine) {
    const LogCapture log;
    const TempDir dir;
    std::string out;
    ASSERT_TRUE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_IMAGE, dir.path(), "name.jpg", out));
    EXPECT_EQ(out, dir.path("PHOTO/name.jpg"));
    dir.write("PHOTO/name.jpg", "");
    for (int n = 1; n <= 99; ++n) {
        ASSERT_TRUE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_IMAGE, dir.path(), "name.jpg", out));
        ASSERT_EQ(out, dir.path("PHOTO/" + numbered(n)));
        dir.write("PHOTO/" + numbered(n), "");
    }
    EXPECT_FALSE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_IMAGE, dir.path(), "name.jpg", out));
    EXPECT_TRUE(log.contains("Create dest file[" + dir.path("PHOTO/name_099.jpg") + "] failed."));
}

TEST(QRAShareCommon, DoesNotNumberANameThatIsAllExtension) {
    const TempDir dir;
    std::string out;
    ASSERT_TRUE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_IMAGE, dir.path(), ".jpg", out));
    dir.write("PHOTO/.jpg", "");
    EXPECT_FALSE(QRAShareCommon::MakeOutputFileName(QRA_MEDIA_TYPE_IMAGE, dir.path(), ".jpg", out));
}
