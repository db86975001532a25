#include "apps/qra/playlist_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/fakes/temp_dir.h"

namespace {

/// The playlists as "file name items" with a bar behind each.
std::string playlists(const TempDir& dir) {
    std::string text;
    for (const PlaylistFile& playlist : playlists_in(dir.path()))
        text += playlist.file + " " + playlist.name + " " + std::to_string(playlist.items) + "|";
    return text;
}

TEST(PlaylistFiles, NamesComeFromTheFiles) {
    const TempDir dir;
    dir.write("2.m3u",
              "#EXTM3U\n#EXT-X-COUNT:9\n#EXT-X-NAME:Party: Summer\r\n#EXTINF:1|a|\n\n#EXTINF:2|b|\n\n");
    dir.write(".bgm.m3u", "#EXT-X-NAME:.bgm\n");
    dir.write("1.m3u", "#EXT-X-NAME:old\n #EXT-X-NAME:Zoo\n#EXT-X-NAMES:no\n");
    dir.write("x.m3u8", "#EXT-X-NAME:eight\n");
    dir.write("x.M3U", "#EXT-X-NAME:upper\n");
    std::filesystem::create_directories(dir.path("dir.m3u"));
    EXPECT_EQ(playlists(dir), ".bgm.m3u .bgm 0|2.m3u Party Summer 2|1.m3u Zoo 0|");
}

TEST(PlaylistFiles, LinesOfItemsAndStreamsAreNoTags) {
    const TempDir dir;
    dir.write("1.m3u",
              "#EXTINF:1|a|\n#EXT-X-NAME:item\n#EXT-X-STREAM-INF:A=1\n#EXT-X-NAME:stream\n#EXTINF:2|b|\n");
    EXPECT_EQ(playlists(dir), "1.m3u  1|");
    dir.write("1.m3u", "#EXT-X-NAME:a\n#EXT-X-NAME\n");
    EXPECT_EQ(playlists(dir), "1.m3u  0|");
}

TEST(PlaylistFiles, LinksOutOfTheDirectoryAndDirectoriesThatAreNotThereHaveNone) {
    const TempDir dir;
    const TempDir other;
    other.write("x.m3u", "#EXT-X-NAME:outside\n");
    ASSERT_EQ(symlink(other.path("x.m3u").c_str(), dir.path("x.m3u").c_str()), 0);
    EXPECT_EQ(playlists(dir), "");
    EXPECT_TRUE(playlists_in(dir.path("no")).empty());
}

}  // namespace
