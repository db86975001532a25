#include "engine/plugins/support/item_text.h"

#include <gtest/gtest.h>

#include "engine/plugins/support/held_items.h"
#include "engine/plugins/support/media_kind.h"

using namespace engine;

TEST(ItemText, IsOneLineWithTheFieldsOfAFile) {
    Item item;
    item.media_type = 3;
    item.id = "a/b.mp4";
    item.title = "line\nfeed";
    item.size = uint64_t{5} << 32;
    item.modified = 7;

    EXPECT_EQ(item_text(item),
              R"({"DISPLAY_NAME":"","DURATION":0,"ID_QRA":"a/b.mp4","MEDIA_TYPE":3,"MIME_TYPE":"",)"
              R"("MODIFIED_TIME":7,"SIZE":21474836480,"THUMBNAIL_PATH":"","TITLE":"line\nfeed","URL":""})"
              "\n");
}

TEST(ItemText, AFolderHasNoSizeAndNoType) {
    Item item;
    item.media_type = 1;

    EXPECT_EQ(item_text(item), R"({"DISPLAY_NAME":"","ID_QRA":"","MEDIA_TYPE":1,"MODIFIED_TIME":0,)"
                               R"("THUMBNAIL_PATH":"","TITLE":"","URL":""})"
                               "\n");
}

TEST(ItemText, IsWholeAlsoWithATextThatIsCutWithinACharacter) {
    Item item;
    item.media_type = 1;
    item.title = "a\xc3";
    item.url = "b";
    item.details = {{"MORE", "\xe2\x82"}};

    EXPECT_EQ(item_text(item), R"({"DISPLAY_NAME":"","ID_QRA":"","MEDIA_TYPE":1,"MODIFIED_TIME":0,)"
                               R"("THUMBNAIL_PATH":"","TITLE":"a\uFFFD","URL":"b","MORE":"\uFFFD\uFFFD"})"
                               "\n");
}

TEST(ItemText, TimesFitTheNumbersOfClients) {
    Item item;
    item.media_type = 1;
    item.modified = int64_t{1} << 40;
    EXPECT_NE(item_text(item).find("\"MODIFIED_TIME\":2147483647"), std::string::npos);
    item.modified = -1;
    EXPECT_NE(item_text(item).find("\"MODIFIED_TIME\":0"), std::string::npos);
}

TEST(MediaKind, TheServersWordComesBeforeTheName) {
    EXPECT_EQ(media_kind_of("Video/MP4; codecs=x", "a.jpg").media_type, 3);
    EXPECT_EQ(media_kind_of("Video/MP4; codecs=x", "a.jpg").mime_type, "video/mp4");
}

TEST(MediaKind, TheNameTellsWhereTheServerDoesNot) {
    for (const char* type : {"", "application/octet-stream", "text/plain", "nonsense", "/"}) {
        EXPECT_EQ(media_kind_of(type, "A.JPG").media_type, 2) << type;
        EXPECT_EQ(media_kind_of(type, "A.JPG").mime_type, "image/jpeg") << type;
    }
    EXPECT_EQ(media_kind_of("application/ogg", "a.mp3").media_type, 5);
}

TEST(MediaKind, OtherFilesAreNoMedia) {
    EXPECT_EQ(media_kind_of("text/plain", "a.txt").media_type, 0);
    EXPECT_EQ(media_kind_of("text/plain", "a.txt").mime_type, "text/plain");
    EXPECT_FALSE(is_wanted(0, ""));
}

TEST(MediaKind, AListWantsAllMediaOrOneKind) {
    EXPECT_TRUE(is_wanted(2, ""));
    EXPECT_TRUE(is_wanted(2, "image"));
    EXPECT_FALSE(is_wanted(2, "video"));
    EXPECT_TRUE(is_wanted(5, "audio"));
}

TEST(TitleFilter, KnowsNoCapitals) {
    const TitleFilter filter("K\xc3\x9cSTE");

    EXPECT_TRUE(filter.lets_pass("An der k\xc3\xbcste"));
    EXPECT_FALSE(filter.lets_pass("kuste"));
    EXPECT_TRUE(TitleFilter("").lets_pass(""));
}
