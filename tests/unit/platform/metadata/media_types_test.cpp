#include "platform/media-content/host/metadata/media_types.h"

#include <gtest/gtest.h>

#include <set>

namespace media_content {
namespace {

MediaKind kind_of(std::string_view name) {
    const MediaType* type = find_media_type(name);
    return type ? type->kind : MediaKind::kOther;
}

TEST(MediaTypes, EveryExtensionStandsOnceInLowerCaseWithAMimeType) {
    std::set<std::string_view> seen;
    for (const MediaType& type : media_types()) {
        EXPECT_TRUE(seen.insert(type.extension).second) << type.extension;
        EXPECT_EQ(type.extension.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789"),
                  std::string_view::npos);
        EXPECT_NE(type.mime_type.find('/'), std::string_view::npos) << type.extension;
    }
}

TEST(MediaTypes, EveryExtensionIsFoundInAnyCase) {
    for (const MediaType& type : media_types()) {
        std::string upper(type.extension);
        for (char& c : upper) {
            c = static_cast<char>(toupper(c));
        }
        EXPECT_EQ(find_media_type("a." + std::string(type.extension)), &type);
        EXPECT_EQ(find_media_type("a." + upper), &type);
    }
}

TEST(MediaTypes, EachKindHasItsExtensions) {
    for (const char* name :
         {"a.jpg", "a.JPEG", "a.jpe", "a.jps", "a.mpo", "a.bmp", "a.png", "a.gif", "a.webp", "a.heic",
          "a.heif", "a.avif", "a.tif", "a.tiff", "a.dng", "a.cr2", "a.nef", "a.arw"}) {
        EXPECT_EQ(kind_of(name), MediaKind::kImage) << name;
    }
    for (const char* name : {"a.avi",  "a.mpg", "a.mpeg", "a.mp4",  "a.vob", "a.vro", "a.ts",  "a.trp",
                             "a.tp",   "a.svi", "a.mkv",  "a.wmv",  "a.asf", "a.3gp", "a.flv", "a.m2ts",
                             "a.divx", "a.mov", "a.s4ud", "a.rmvb", "a.rm",  "a.mts", "a.m4v", "a.webm"}) {
        EXPECT_EQ(kind_of(name), MediaKind::kVideo) << name;
    }
    for (const char* name : {"a.mp3", "a.wma", "a.wav", "a.m4a", "a.aac", "a.mpa", "a.flac", "a.ogg", "a.mid",
                             "a.midi", "a.ape", "a.aif", "a.aiff", "a.opus"}) {
        EXPECT_EQ(kind_of(name), MediaKind::kMusic) << name;
    }
    EXPECT_EQ(kind_of("a.srf"), MediaKind::kRecording);
    for (const char* name : {"a.um4", "a.km4", "a.sum4"}) {
        EXPECT_EQ(kind_of(name), MediaKind::kUhd) << name;
    }
    for (const char* name : {"a.uvu", "a.uva", "a.uvt", "a.scsa", "a.uvz"}) {
        EXPECT_EQ(kind_of(name), MediaKind::kScsa) << name;
    }
}

TEST(MediaTypes, OtherNamesAreOfNoMediaType) {
    for (const char* name : {"", ".", "a", "jpg", "a.", "a.txt", "a.inf", "a.m3u", "a.jpg.", "a.jp", "a.jpgx",
                             "a.extraordinarilylong", "a.jpg/b", "a.srt"}) {
        EXPECT_EQ(find_media_type(name), nullptr) << name;
    }
}

TEST(MediaTypes, TheLastExtensionCounts) {
    EXPECT_EQ(kind_of("holiday.mp4.jpg"), MediaKind::kImage);
    EXPECT_EQ(find_media_type("holiday.jpg.txt"), nullptr);
}

}  // namespace
}  // namespace media_content
