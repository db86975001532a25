#include "platform/nubelink/host/item_values.h"

#include <gtest/gtest.h>

#include "nubelink.h"

using namespace nbl;

namespace {

ItemPtr item_with(std::initializer_list<std::pair<const char*, const char*>> properties, int type = 0) {
    ItemBuilder builder;
    for (const auto& [name, value] : properties) {
        builder.add(name, value);
    }
    return builder.build(type);
}

TEST(ItemValues, DurationIsInMilliseconds) {
    EXPECT_EQ(milliseconds_of("0:03:25"), 205'000U);
    EXPECT_EQ(milliseconds_of("1:02:03.5"), 3'723'500U);
    EXPECT_EQ(milliseconds_of("00:00:01.004"), 1'004U);
    EXPECT_EQ(milliseconds_of(" 100:00:00 "), 360'000'000U);
    for (const char* wrong :
         {"", "5", "1:2", "0:60:00", "0:00:61", "a:b:c", "-1:00:00", "99999999999999999999:00:00"}) {
        EXPECT_FALSE(milliseconds_of(wrong)) << wrong;
    }
}

TEST(ItemValues, ResolutionGivesWidthAndHeight) {
    const ItemPtr item = item_with({{"res@resolution", "1920x1080"}});
    EXPECT_EQ(resolution_of(*item), "1920x1080");
    EXPECT_EQ(width_of(*item), 1920);
    EXPECT_EQ(height_of(*item), 1080);
    for (const char* wrong : {"1920", "x", "1920x", "1920x1080x3", "wide", "99999999999x1"}) {
        const ItemPtr odd = item_with({{"res@resolution", wrong}});
        EXPECT_EQ(resolution_of(*odd), "") << wrong;
        EXPECT_FALSE(width_of(*odd)) << wrong;
    }
}

TEST(ItemValues, SeekModeFollowsTheOperationsOfTheServer) {
    const auto mode = [](const char* info) { return seek_mode_of(*item_with({{"res@protocolInfo", info}})); };
    EXPECT_EQ(mode("http-get:*:video/mp4:DLNA.ORG_PN=X;DLNA.ORG_OP=01;DLNA.ORG_CI=0"), NBL_SEEK_MODE_BYTES);
    EXPECT_EQ(mode("http-get:*:video/mp4:DLNA.ORG_OP=10"), NBL_SEEK_MODE_TIME);
    EXPECT_EQ(mode("http-get:*:video/mp4:DLNA.ORG_OP=11"), NBL_SEEK_MODE_BYTES | NBL_SEEK_MODE_TIME);
    EXPECT_EQ(mode("http-get:*:video/mp4:*"), NBL_SEEK_MODE_NONE);
    EXPECT_FALSE(seek_mode_of(*item_with({})));
}

TEST(ItemValues, ExtensionIsThatOfTheAddressOrFitsTheType) {
    const auto extension = [](const char* address, const char* info) {
        return extension_of(*item_with({{"res", address}, {"res@protocolInfo", info}}));
    };
    EXPECT_EQ(extension("http://a/MediaItems/22.JPG", "http-get:*:image/jpeg:*"), "jpg");
    EXPECT_EQ(extension("http://a/x.mkv?start=1#t", ""), "mkv");
    EXPECT_EQ(extension("http://a/get.php?id=3", "http-get:*:audio/mpeg:*"), "mp3");
    EXPECT_EQ(extension("http://a.jpg/22", "http-get:*:video/mp4;codecs=x:*"), "mp4");
    EXPECT_EQ(extension("http://a/22", "http-get:*:video/x-matroska:*"), "mkv");
    EXPECT_EQ(extension("http://a/notes.pdf", "http-get:*:application/pdf:*"), "pdf");
    EXPECT_EQ(extension("http://a/22", "http-get:*:application/pdf:*"), "");
    EXPECT_EQ(extension("", ""), "");
}

TEST(ItemValues, AFolderHasNoExtensionWhateverItsPlaylistIs) {
    const ItemPtr folder = item_with({{"res", "http://a/folder/didl_s_playlist.xml"}}, NBL_ITEM_TYPE_FOLDER);
    EXPECT_EQ(extension_of(*folder), "");
}

TEST(ItemValues, ArtistIsWhoeverIsNamedFirst) {
    EXPECT_EQ(artist_of(*item_with({{"dc:creator", "C"}, {"upnp:artist", "A"}})), "A");
    EXPECT_EQ(artist_of(*item_with({{"dc:creator", "C"}, {"upnp:author", "U"}})), "C");
    EXPECT_EQ(artist_of(*item_with({{"upnp:author", "U"}})), "U");
    EXPECT_EQ(artist_of(*item_with({})), "");
}

TEST(ItemValues, ChildCountIsAFoldersOnly) {
    EXPECT_EQ(child_count_of(*item_with({{"@childCount", "12"}}, NBL_ITEM_TYPE_FOLDER)), 12);
    EXPECT_FALSE(child_count_of(*item_with({{"@childCount", "12"}}, NBL_ITEM_TYPE_VIDEO)));
    EXPECT_FALSE(child_count_of(*item_with({{"@childCount", "many"}}, NBL_ITEM_TYPE_FOLDER)));
    EXPECT_FALSE(child_count_of(*item_with({{"@childCount", "-1"}}, NBL_ITEM_TYPE_FOLDER)));
    EXPECT_FALSE(child_count_of(*item_with({{"@childCount", "4294967296"}}, NBL_ITEM_TYPE_FOLDER)));
}

TEST(ItemValues, BookmarkIsThePositionThatTheServerKeeps) {
    EXPECT_EQ(server_bookmark_of(*item_with({{"upnp:lastPlaybackPosition", "0:01:05.9"}})), 65);
    EXPECT_EQ(server_bookmark_of(*item_with({{"kvr:dcmInfo", "CREATIONDATE=1,FOLDER=x,BM=77"}})), 77);
    EXPECT_FALSE(server_bookmark_of(*item_with({{"kvr:dcmInfo", "CREATIONDATE=1"}})));
    EXPECT_FALSE(server_bookmark_of(*item_with({})));
}

TEST(ItemValues, TypeFollowsTheClassAndThenTheMimeType) {
    EXPECT_EQ(item_type_of(true, "object.item.videoItem", "video/mp4"), NBL_ITEM_TYPE_FOLDER);
    EXPECT_EQ(item_type_of(false, "object.item.audioItem.musicTrack", "video/mp4"), NBL_ITEM_TYPE_MUSIC);
    EXPECT_EQ(item_type_of(false, "object.item", "Video/MP4"), NBL_ITEM_TYPE_VIDEO);
    EXPECT_EQ(item_type_of(false, "", "image/png"), NBL_ITEM_TYPE_IMAGE);
    EXPECT_EQ(item_type_of(false, "", "text/plain"), NBL_ITEM_TYPE_OTHER);
}

TEST(ItemRecord, KeepsTheFirstOfTwoPropertiesOfOneName) {
    const ItemPtr item =
        item_with({{"dc:title", "a"}, {"own", "x"}, {"dc:title", "b"}, {"own", "y"}, {"empty", ""}});
    EXPECT_EQ(item->text("dc:title"), "a");
    EXPECT_EQ(item->text("own"), "x");
    EXPECT_FALSE(item->find("empty"));
}

TEST(ItemRecord, TakesAnotherChildCount) {
    const ItemPtr item = item_with({{"@id", "7"}, {"@childCount", "3"}, {"own", "x"}}, NBL_ITEM_TYPE_FOLDER);
    const ItemPtr other = with_child_count(*item, 9);
    EXPECT_EQ(child_count_of(*other), 9);
    EXPECT_EQ(other->text("@id"), "7");
    EXPECT_EQ(other->text("own"), "x");
    EXPECT_EQ(child_count_of(*item), 3);
}

}  // namespace
