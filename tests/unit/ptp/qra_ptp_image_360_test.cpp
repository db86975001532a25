#include "libqra-agent/source/ptp/qra_ptp_image_360.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/fakes/camera_media.h"

using namespace std::string_literals;

namespace {

/// A file in memory that counts what is read of it.
class CountedFile {
public:
    explicit CountedFile(std::string content) : content_(std::move(content)) {
        const cookie_io_functions_t functions = {&CountedFile::read, nullptr, &CountedFile::seek, nullptr};
        file_.reset(fopencookie(this, "r", functions));
    }

    FILE* get() const { return file_.get(); }
    size_t bytes_read() const { return bytes_read_; }

private:
    struct Close {
        void operator()(FILE* file) const { std::fclose(file); }
    };

    static ssize_t read(void* cookie, char* buffer, size_t size) {
        auto* self = static_cast<CountedFile*>(cookie);
        const size_t at = std::min(self->position_, self->content_.size());
        const size_t count = self->content_.copy(buffer, size, at);
        self->position_ += count;
        self->bytes_read_ += count;
        return static_cast<ssize_t>(count);
    }

    static int seek(void* cookie, off64_t* offset, int whence) {
        auto* self = static_cast<CountedFile*>(cookie);
        const auto base = whence == SEEK_CUR   ? static_cast<off64_t>(self->position_)
                          : whence == SEEK_END ? static_cast<off64_t>(self->content_.size())
                                               : 0;
        if (base + *offset < 0) {
            return -1;
        }
        *offset += base;
        self->position_ = static_cast<size_t>(*offset);
        return 0;
    }

    std::string content_;
    size_t position_ = 0;
    size_t bytes_read_ = 0;
    std::unique_ptr<FILE, Close> file_;
};

struct Found {
    bool is_360;
    int stitch_type;
    bool operator==(const Found& other) const {
        return is_360 == other.is_360 && stitch_type == other.stitch_type;
    }
    friend std::ostream& operator<<(std::ostream& out, const Found& found) {
        return out << found.is_360 << ", 0x" << std::hex << found.stitch_type;
    }
};

Found note_of(const std::string& picture, Found found = {false, 0}) {
    const CountedFile file(picture);
    qra_ptp_read_image_makernote(file.get(), &found.is_360, &found.stitch_type);
    return found;
}

bool has_panorama(const std::string& picture) {
    const CountedFile file(picture);
    return qra_ptp_has_panorama_packet(file.get());
}

TEST(PtpImageNote, TellsTheKindOfThePicture) {
    EXPECT_EQ(note_of(noted_picture({"MM", 0x10000})), (Found{true, 0x10000}));
    EXPECT_EQ(note_of(noted_picture({"MM", 0x20000})), (Found{true, 0x20000}));
}

TEST(PtpImageNote, OfKindZeroIsOfNo360Picture) {
    EXPECT_EQ(note_of(noted_picture({"MM", 0}), {true, 0x10000}), (Found{false, 0x10000}));
}

TEST(PtpImageNote, OfAnotherKindTellsNothing) {
    for (const uint32_t kind : {1U, 0x30000U, 0x20001U, 0xFFFFFFFFU}) {
        EXPECT_EQ(note_of(noted_picture({"MM", kind})), (Found{false, 0})) << kind;
    }
}

TEST(PtpImageNote, AddsTheBitsOfTheStitchingData) {
    EXPECT_EQ(note_of(noted_picture({"MM", 0x20000, 0x0103})), (Found{true, 0x20103}));
    EXPECT_EQ(note_of(noted_picture({"MM", 0x10000, 0x80020001})),
              (Found{true, static_cast<int>(0x80030001)}));
    EXPECT_EQ(note_of(noted_picture({"MM", 0, 0x0103})), (Found{false, 0x0103}));
}

TEST(PtpImageNote, EndsAtTheStitchingData) {
    const std::string directory =
        exif_directory({exif_entry(16, 0x10000), exif_entry(21, 20), exif_entry(16, 0x20000)});
    // Without a maker note the data are looked for from the file's start: at 28, in the middle of the first
    // entry.
    const Found found = note_of(exif_picture(directory));
    EXPECT_TRUE(found.is_360);
    EXPECT_EQ(found.stitch_type & 0x30000, 0x10000);
}

TEST(PtpImageNote, LooksForStitchingDataFromTheNotesStart) {
    // In front of the note stands what would be found from the file's start.
    const std::string picture = noted_picture({"MM", 0x10000, 0x22});
    EXPECT_EQ(note_of(picture), (Found{true, 0x10022}));
    EXPECT_EQ(note_of(picture + std::string(100, '\xEE')), (Found{true, 0x10022}));
}

TEST(PtpImageNote, IsReadAsBigEndianIfAnyByteOrderIsNamed) {
    EXPECT_EQ(note_of(noted_picture({"II", 0x20000, 1})), (Found{false, 0}));
    // Numbers of the one order under the name of the other.
    std::string picture = noted_picture({"MM", 0x20000, 1});
    picture.replace(12, 2, "II");
    EXPECT_EQ(note_of(picture), (Found{true, 0x20001}));
}

TEST(PtpImageNote, IsReadInTheProcessorsOrderIfNoneIsNamed) {
    EXPECT_EQ(note_of(noted_picture({"??", 0x20000, 1})), (Found{true, 0x20001}));
    EXPECT_EQ(note_of(noted_picture({"MI", 0x10000})), (Found{true, 0x10000}));
}

TEST(PtpImageNote, IsLookedForInPicturesWithExifDataInFrontOnly) {
    const std::string picture = noted_picture({"MM", 0x20000});
    for (const size_t position : {0, 1, 2, 3}) {
        std::string other = picture;
        other[position] = '\x11';
        EXPECT_EQ(note_of(other), (Found{false, 0})) << position;
    }
    EXPECT_EQ(note_of(jpeg_picture({xmp_segment(panorama_packet())})), (Found{false, 0}));
}

TEST(PtpImageNote, OfACutPictureTellsWhatCameBeforeTheCut) {
    const std::string picture = noted_picture({"MM", 0x20000, 0x0103});
    const size_t kind = picture.find(exif_entry(16, 0x20000)) + 12;
    for (size_t size = 0; size < picture.size(); ++size) {
        const Found found = note_of(picture.substr(0, size));
        EXPECT_EQ(found.is_360, size >= kind) << size;
        EXPECT_EQ(found.stitch_type & 0x30000, size >= kind ? 0x20000 : 0) << size;
    }
}

TEST(PtpImageNote, GoesOnBehindADirectoryThatLeadsNowhere) {
    const std::string first = number16(1) + exif_entry(271, 1);
    EXPECT_EQ(note_of(exif_picture(first + number16(1) + exif_entry(16, 0x10000))), (Found{true, 0x10000}));
}

TEST(PtpImageNote, WithADirectoryThatLeadsToItselfEnds) {
    for (const uint16_t tag : {34665, 37500}) {
        const std::string loop = exif_directory({exif_entry(16, 0x10000), exif_entry(tag, 8)});
        EXPECT_EQ(note_of(exif_picture(loop)), (Found{true, 0x10000})) << tag;
    }
}

TEST(PtpImageNote, WithDirectoriesThatLeadToEachOtherIsReadABoundedNumberOfTimes) {
    constexpr size_t kFar = 500000;
    std::string picture = exif_picture(exif_directory({exif_entry(34665, kFar - 12)}));
    picture.resize(kFar);
    picture += exif_directory({exif_entry(34665, 8)});
    const CountedFile file(picture);
    Found found{false, 0};
    qra_ptp_read_image_makernote(file.get(), &found.is_360, &found.stitch_type);
    EXPECT_EQ(found, (Found{false, 0}));
    EXPECT_LT(file.bytes_read(), 200000U);
}

TEST(PtpImageNote, WithAnEntryCountBeyondTheFileEnds) {
    EXPECT_EQ(note_of(exif_picture(number16(0xFFFF) + exif_entry(16, 0x10000))), (Found{true, 0x10000}));
}

TEST(PtpImageNote, WithPlacesBeyondTheFileEnds) {
    for (const uint32_t place : {5000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(note_of(exif_picture(exif_directory({exif_entry(16, 0x10000), exif_entry(34665, place)}))),
                  (Found{true, 0x10000}))
            << place;
        EXPECT_EQ(note_of(exif_picture(exif_directory({exif_entry(16, 0x10000), exif_entry(21, place)}))),
                  (Found{true, 0x10000}))
            << place;
    }
}

TEST(PtpImagePacket, HasToAskForAPanoramaViewerAndAnEquirectangularProjection) {
    EXPECT_TRUE(has_panorama(jpeg_picture({xmp_segment(panorama_packet())})));
    for (const std::string word : {"UsePanoramaViewer", "True", "ProjectionType", "equirectangular"}) {
        std::string packet = panorama_packet();
        packet.replace(packet.find(word), 1, "_");
        EXPECT_FALSE(has_panorama(jpeg_picture({xmp_segment(packet)}))) << word;
    }
}

TEST(PtpImagePacket, IsReadWithoutItsNulBytes) {
    std::string packet;
    for (const char c : panorama_packet()) {
        packet += "\0"s + c;
    }
    EXPECT_TRUE(has_panorama(jpeg_picture({xmp_segment(packet)})));
}

TEST(PtpImagePacket, IsFoundBehindOtherSegments) {
    const std::string xmp = xmp_segment(panorama_packet());
    EXPECT_TRUE(has_panorama(jpeg_picture({jpeg_segment(0xE1, "Exif\0\0MM"s), xmp})));
    EXPECT_TRUE(has_panorama(jpeg_picture({jpeg_segment(0xE1, "Something else of this kind"), xmp})));
    EXPECT_TRUE(has_panorama(jpeg_picture({xmp_segment("<x/>"), xmp})));
    EXPECT_TRUE(has_panorama(jpeg_picture({jpeg_segment(0xDB, std::string(64, '\x01')), xmp})));
    // A segment whose marker is none.
    EXPECT_TRUE(has_panorama(jpeg_picture({"\x01" + jpeg_segment(0xE2, "1234").substr(1), xmp})));
    // Segments with less in them than is read of each.
    for (const size_t size : {0, 1, 2, 3, 4}) {
        EXPECT_TRUE(has_panorama(jpeg_picture({jpeg_segment(0xDD, std::string(size, '\x01')), xmp}))) << size;
        EXPECT_TRUE(has_panorama(jpeg_picture({jpeg_segment(0xE1, std::string(size, '\x01')), xmp}))) << size;
    }
}

TEST(PtpImagePacket, OfAnotherNamespaceIsNone) {
    std::string xmp = xmp_segment(panorama_packet());
    xmp[xmp.find("1.0") + 2] = '1';
    EXPECT_FALSE(has_panorama(jpeg_picture({xmp})));
    // The last byte of the 29 counts too.
    xmp = xmp_segment(panorama_packet());
    xmp[4 + 28] = ' ';
    EXPECT_FALSE(has_panorama(jpeg_picture({xmp})));
}

TEST(PtpImagePacket, IsNotLookedForBehindTheHeadOfAFrame) {
    const std::string xmp = xmp_segment(panorama_packet());
    for (const int marker : {0xC0, 0xC2}) {
        EXPECT_FALSE(has_panorama(
            jpeg_picture({jpeg_segment(static_cast<uint8_t>(marker), std::string(15, '\x01')), xmp})))
            << marker;
    }
}

TEST(PtpImagePacket, BehindASegmentShorterThanItsOwnHeadIsNotReached) {
    const std::string xmp = xmp_segment(panorama_packet());
    for (const uint16_t length : {0, 1}) {
        EXPECT_FALSE(has_panorama(jpeg_picture({jpeg_segment(0xDB, "1234", length), xmp}))) << length;
        EXPECT_FALSE(has_panorama(jpeg_picture({jpeg_segment(0xE1, "1234", length), xmp}))) << length;
    }
}

TEST(PtpImagePacket, LongerThanTheFileIsNone) {
    const std::string data = "http://ns.adobe.com/xap/1.0/\0"s + panorama_packet();
    EXPECT_FALSE(has_panorama("\xFF\xD8" + jpeg_segment(0xE1, data, 0xFFFF)));
    EXPECT_FALSE(has_panorama("\xFF\xD8" + jpeg_segment(0xDB, data, 0xFFFF)));
}

TEST(PtpImagePacket, OfACutPictureIsThereAsAWholeOrNot) {
    const std::string picture = jpeg_picture({xmp_segment(panorama_packet())});
    const size_t end = 2 + xmp_segment(panorama_packet()).size();
    for (size_t size = 0; size <= picture.size(); ++size) {
        EXPECT_EQ(has_panorama(picture.substr(0, size)), size >= end) << size;
    }
}

TEST(PtpImagePacket, IsLookedForInPicturesOnly) {
    const std::string picture = jpeg_picture({xmp_segment(panorama_packet())});
    EXPECT_FALSE(has_panorama("\xFF\xD9" + picture.substr(2)));
    EXPECT_FALSE(has_panorama("\xFF\xD8 no segment" + picture.substr(2)));
    EXPECT_FALSE(has_panorama(""));
}

}  // namespace
