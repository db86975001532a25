#include "platform/media-content/host/metadata/picture_header.h"

#include <gtest/gtest.h>

#include <string>

namespace media_content {
namespace {

using namespace std::string_literals;

std::string big(uint64_t value, int width) {
    std::string bytes;
    for (int shift = (width - 1) * 8; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

std::string little(uint64_t value, int width) {
    const std::string bytes = big(value, width);
    return {bytes.rbegin(), bytes.rend()};
}

std::string box(const std::string& type, const std::string& payload) {
    return big(payload.size() + 8, 4) + type + payload;
}

struct Outcome {
    bool read;
    PictureHeader header;
};

Outcome read(const std::string& bytes) {
    MemorySource source(bytes.data(), bytes.size());
    Outcome outcome;
    outcome.read = read_picture_header(source, outcome.header);
    return outcome;
}

void expect_size(const std::string& bytes, int width, int height) {
    const Outcome outcome = read(bytes);
    EXPECT_TRUE(outcome.read);
    EXPECT_EQ(outcome.header.width, width);
    EXPECT_EQ(outcome.header.height, height);
}

std::string jpeg(int width, int height) {
    return "\xFF\xD8\xFF\xC2"s + big(17, 2) + big(8, 1) + big(height, 2) + big(width, 2) +
           std::string(10, '\0');
}

/// One entry of a TIFF directory that holds one number.
std::string entry(int tag, int type, uint32_t value) {
    return little(tag, 2) + little(type, 2) + little(1, 4) + little(value, 4);
}

std::string directory(const std::vector<std::string>& entries, uint32_t next = 0) {
    std::string bytes = little(entries.size(), 2);
    for (const std::string& one : entries) {
        bytes += one;
    }
    return bytes + little(next, 4);
}

TEST(JpegHeader, SkipsFillBytesAndOtherSegments) {
    expect_size("\xFF\xD8\xFF\xE0"s + big(6, 2) + "abcd" + "\xFF\xFF\xFF" + jpeg(640, 480).substr(3), 640,
                480);
}

TEST(JpegHeader, WithoutAFrameHasNoSize) {
    EXPECT_FALSE(read("\xFF\xD8\xFF\xDA"s + std::string(20, '\0')).read);
    EXPECT_FALSE(read("\xFF\xD8\xFF\xE0"s + big(1, 2) + jpeg(1, 1)).read);
    EXPECT_FALSE(read(jpeg(640, 0)).read);
}

TEST(JpegHeader, TellsWhereExifAndXmpAre) {
    const std::string xmp = "http://ns.adobe.com/xap/1.0/\0<x/>"s;
    const std::string exif = "Exif\0\0II*\0"s;
    const std::string bytes = "\xFF\xD8\xFF\xE1"s + big(exif.size() + 2, 2) + exif + "\xFF\xE1" +
                              big(xmp.size() + 2, 2) + xmp + jpeg(3, 2).substr(2);
    const Outcome outcome = read(bytes);
    ASSERT_EQ(outcome.header.exif.size(), 1U);
    EXPECT_EQ(bytes.substr(outcome.header.exif[0].offset, outcome.header.exif[0].length), "II*\0"s);
    EXPECT_EQ(bytes.substr(outcome.header.xmp.offset, outcome.header.xmp.length), "<x/>");
    EXPECT_EQ(outcome.header.width, 3);
}

TEST(PngHeader, TellsWhereExifAndXmpAre) {
    const std::string text = "XML:com.adobe.xmp\0\0\0\0\0<x/>"s;
    const std::string bytes = "\x89PNG\r\n\x1A\n"s + big(13, 4) + "IHDR" + big(7, 4) + big(5, 4) +
                              "\x08\x02\0\0\0cccc"s + big(4, 4) + "eXIfII*\0cccc"s + big(text.size(), 4) +
                              "iTXt" + text + "cccc" + big(0, 4) + "IDATcccc";
    const Outcome outcome = read(bytes);
    EXPECT_EQ(outcome.header.width, 7);
    EXPECT_EQ(outcome.header.height, 5);
    ASSERT_EQ(outcome.header.exif.size(), 1U);
    EXPECT_EQ(bytes.substr(outcome.header.exif[0].offset, outcome.header.exif[0].length), "II*\0"s);
    EXPECT_EQ(bytes.substr(outcome.header.xmp.offset, outcome.header.xmp.length), "<x/>");
}

TEST(BmpHeader, KnowsTheOldFormAndPicturesStoredTopDown) {
    const std::string head = "BM" + std::string(12, '\0');
    expect_size(head + little(12, 4) + little(11, 2) + little(9, 2) + little(0, 4), 11, 9);
    expect_size(head + little(40, 4) + little(11, 4) + little(static_cast<uint32_t>(-9), 4), 11, 9);
    EXPECT_FALSE(read(head + little(40, 4) + little(0x80000000, 4) + little(0x80000000, 4)).read);
}

TEST(WebpHeader, TakesTheCanvasOfTheExtendedForm) {
    const std::string bytes = "RIFF" + little(40, 4) + "WEBPVP8X" + little(10, 4) + little(0, 4) +
                              little(299, 3) + little(199, 3) + "XMP " + little(3, 4) + "<x>\0"s + "EXIF" +
                              little(10, 4) + "Exif\0\0II*\0"s;
    const Outcome outcome = read(bytes);
    EXPECT_EQ(outcome.header.width, 300);
    EXPECT_EQ(outcome.header.height, 200);
    EXPECT_EQ(bytes.substr(outcome.header.xmp.offset, outcome.header.xmp.length), "<x>");
    ASSERT_EQ(outcome.header.exif.size(), 1U);
    EXPECT_EQ(bytes.substr(outcome.header.exif[0].offset, outcome.header.exif[0].length), "II*\0"s);
}

TEST(TiffHeader, IsReadInBothByteOrders) {
    expect_size("II*\0"s + little(8, 4) + directory({entry(0x100, 3, 30), entry(0x101, 4, 20)}), 30, 20);
    expect_size("MM\0*"s + big(8, 4) + big(2, 2) + big(0x100, 2) + big(3, 2) + big(1, 4) + big(30, 2) +
                    big(0, 2) + big(0x101, 2) + big(4, 2) + big(1, 4) + big(20, 4) + big(0, 4),
                30, 20);
}

TEST(TiffHeader, OfARawFileTakesThePictureAndNotThePreview) {
    const std::string preview = directory({entry(0xFE, 4, 1), entry(0x100, 4, 9000), entry(0x101, 4, 9000),
                                           entry(0x14A, 4, 8 + 2 + 4 * 12 + 4)});
    const std::string picture = directory({entry(0xFE, 4, 0), entry(0x100, 4, 4000), entry(0x101, 4, 3000)});
    expect_size("II*\0"s + little(8, 4) + preview + picture, 4000, 3000);
    expect_size("IIRO"s + little(8, 4) + preview + picture, 4000, 3000);
}

TEST(TiffHeader, OfAPreviewAloneTakesThePreview) {
    expect_size(
        "II*\0"s + little(8, 4) + directory({entry(0xFE, 4, 1), entry(0x100, 4, 90), entry(0x101, 4, 80)}),
        90, 80);
}

TEST(TiffHeader, ThatOnlyExifKnowsTheSizeOfTakesThat) {
    const std::string exif = directory({entry(0xA002, 4, 70), entry(0xA003, 4, 60)});
    expect_size("II*\0"s + little(8, 4) + directory({entry(0x8769, 4, 8 + 2 + 12 + 4)}) + exif, 70, 60);
}

TEST(TiffHeader, OfPanasonicTakesTheSensorsBorders) {
    expect_size("IIU\0"s + little(8, 4) +
                    directory({entry(4, 3, 10), entry(5, 3, 20), entry(6, 3, 110), entry(7, 3, 220)}),
                200, 100);
}

TEST(TiffHeader, ThatGoesRoundInCirclesEnds) {
    const std::string circle = directory({entry(0x14A, 4, 8), entry(0x8769, 4, 8)}, 8);
    EXPECT_FALSE(read("II*\0"s + little(8, 4) + circle).read);
}

TEST(HeifHeader, TakesTheSizeOfThePrimaryItem) {
    const std::string none(4, '\0');
    const auto extent = [&](int width, int height) {
        return box("ispe", none + big(width, 4) + big(height, 4));
    };
    const std::string associations = none + big(2, 4) + big(1, 2) + big(1, 1) + big(0x81, 1) + big(2, 2) +
                                     big(2, 1) + big(2, 1) + big(0x83, 1);
    const std::string meta =
        none + box("pitm", none + big(2, 2)) +
        box("iprp", box("ipco", extent(160, 120) + box("pixi", none) + extent(4000, 3000)) +
                        box("ipma", associations));
    expect_size(box("ftyp", "heic") + box("meta", meta), 4000, 3000);
}

/// A HEIF file whose item 2 is EXIF, with the location table `locations`.
std::string heif_with_locations(const std::string& locations) {
    const std::string none(4, '\0');
    const std::string info =
        box("infe", big(2, 1) + big(0, 3) + big(2, 2) + big(0, 2) + "Exif" + std::string(1, '\0'));
    const std::string extent = box("ispe", none + big(40, 4) + big(30, 4));
    const std::string associations = none + big(1, 4) + big(1, 2) + big(1, 1) + big(1, 1);
    return box("ftyp", "heic") +
           box("meta", none + box("pitm", none + big(1, 2)) + box("iinf", none + big(1, 2) + info) +
                           box("iprp", box("ipco", extent) + box("ipma", associations)) +
                           box("iloc", locations));
}

TEST(HeifHeader, FindsAnItemBehindOneInPieces) {
    const std::string bytes =
        heif_with_locations(big(0, 4) + big(0x4400, 2) + big(2, 2) +                          //
                            big(1, 2) + big(0, 2) + big(3, 2) + std::string(3 * 8, '\x7F') +  //
                            big(2, 2) + big(0, 2) + big(1, 2) + big(0, 4) + big(uint64_t{1} << 20, 4));
    const Outcome outcome = read(bytes);
    ASSERT_EQ(outcome.header.exif.size(), 1U);
    EXPECT_EQ(outcome.header.exif[0].offset, 4 + uint64_t{12});  // behind its own head, which starts the file
}

TEST(HeifHeader, SkipsItemsInPiecesThatTakeNoBytes) {
    std::string locations = big(2, 1) + big(0, 3) + big(0, 2) + big(100'000, 4);
    for (int i = 0; i < 100'000; ++i) {
        locations += big(1, 4) + big(0, 2) + big(0, 2) + big(0xFFFF, 2);
    }
    expect_size(heif_with_locations(locations), 40, 30);
}

TEST(HeifHeader, OfCanonsRawFormatIsReadFromItsBoxes) {
    const std::string id = "\x85\xC0\xB6\x87\x82\x0F\x11\xE0\x81\x11\xF4\xCE\x46\x2B\x6A\x48";
    const std::string first =
        "II*\0"s + little(8, 4) + directory({entry(0x100, 4, 6000), entry(0x101, 4, 4000)});
    const std::string second = "II*\0"s + little(8, 4) + directory({});
    const Outcome outcome =
        read(box("ftyp", "crx ") + box("moov", box("uuid", id + box("CMT1", first) + box("CMT2", second))));
    EXPECT_EQ(outcome.header.width, 6000);
    EXPECT_EQ(outcome.header.height, 4000);
    EXPECT_EQ(outcome.header.exif.size(), 2U);
}

TEST(RafHeader, IsThatOfTheJpegWithin) {
    std::string head = "FUJIFILMCCD-RAW 0201";
    head.resize(84);
    expect_size(head + big(88, 4) + jpeg(320, 240), 320, 240);
}

TEST(PictureHeader, OfSomethingElseIsNone) {
    for (const std::string& bytes : {""s, "G"s, "GIF8"s, "plain text"s, std::string(100, '\0'), "II*\0"s}) {
        EXPECT_FALSE(read(bytes).read);
    }
}

TEST(PictureHeader, TakesNoSizeThatMakesNoSense) {
    PictureHeader header;
    header.set_size(0, 5);
    header.set_size(5, 0);
    header.set_size(UINT32_MAX, 5);
    EXPECT_FALSE(header.has_size());
    header.set_size(5, 6);
    EXPECT_TRUE(header.has_size());
}

}  // namespace
}  // namespace media_content
