#include "libqra-agent/source/ptp/qra_ptp_video_360.h"

#include <gtest/gtest.h>

#include "tests/fakes/camera_media.h"
#include "tests/fakes/dlog_capture.h"

using namespace std::string_literals;

namespace {

constexpr char kInvalid[] = "header is invalid.\n";

class PtpVideo : public testing::Test {
protected:
    /// Gives pieces of the film, and counts them.
    qra_ptp_piece_reader reader(const std::string& film) {
        return [this, film](unsigned long long offset, unsigned length, std::string& piece) {
            ++pieces_;
            if (offset > film.size() || film.size() - offset < length) {
                return false;
            }
            bytes_ += length;
            piece = film.substr(offset, length);
            return true;
        };
    }

    void read_note(const std::string& film) {
        qra_ptp_read_video_makernote(reader(film), film.size(), &is_360_, &stitch_type_);
    }

    void read_description(const std::string& film) {
        qra_ptp_read_video_description(reader(film), film.size(), &is_360_, &stitch_type_);
    }

    bool is_360_ = false;
    int stitch_type_ = 0;
    int pieces_ = 0;
    size_t bytes_ = 0;
    LogCapture log_;
};

TEST_F(PtpVideo, NoteTellsTheKind) {
    read_note(noted_film(m360_box(2)));
    EXPECT_TRUE(is_360_);
    EXPECT_EQ(stitch_type_, 0x20000);
}

TEST_F(PtpVideo, NoteOfKindZeroClearsBoth) {
    read_note(noted_film(m360_box(1) + stip_box("00005") + m360_box(0)));
    EXPECT_FALSE(is_360_);
    EXPECT_EQ(stitch_type_, 0);
}

TEST_F(PtpVideo, NoteOfALargeKindKeepsTheBitsThatFit) {
    read_note(noted_film(m360_box(0x100000000ULL)));
    EXPECT_TRUE(is_360_);
    EXPECT_EQ(stitch_type_, 0);
    read_note(noted_film(m360_box(0xFFFFFFFFFFFFFFFFULL)));
    EXPECT_EQ(stitch_type_, static_cast<int>(0xFFFF0000));
}

TEST_F(PtpVideo, NoteAddsTheBitsOfTheStitchingNumber) {
    read_note(noted_film(m360_box(1) + stip_box("00259")));
    EXPECT_TRUE(is_360_);
    EXPECT_EQ(stitch_type_, 0x10103);
}

TEST_F(PtpVideo, KindReplacesAStitchingNumberInFrontOfIt) {
    read_note(noted_film(stip_box("00259") + m360_box(1)));
    EXPECT_EQ(stitch_type_, 0x10000);
}

TEST_F(PtpVideo, StitchingNumberHasFiveCharacters) {
    for (const auto& [digits, number] :
         {std::pair("12345", 12345), std::pair("   42", 42), std::pair("7x999", 7), std::pair("-0001", 0),
          std::pair("     ", 0), std::pair("99999", 99999)}) {
        stitch_type_ = 0;
        read_note(noted_film(stip_box(digits)));
        EXPECT_EQ(stitch_type_, number) << digits;
    }
    EXPECT_FALSE(is_360_);
}

TEST_F(PtpVideo, NoteCostsHeadsAndItsPayloadsOnly) {
    const std::string film = noted_film(m360_box(2) + stip_box("00001"), 3000000);
    read_note(film);
    // ftyp, moov, mvhd, trak, tkhd, udta, kywd, m360, stip, mdat
    EXPECT_EQ(pieces_, 10 + 2);
    EXPECT_EQ(bytes_, 10U * 8 + 8 + 54);
    EXPECT_EQ(log_.count(kInvalid), 0);
}

TEST_F(PtpVideo, BoxesMayHaveLongSizes) {
    read_note(large_box("free", std::string(100, 'x')) +
              large_box("moov", large_box("udta", large_box("kywd", m360_box(1)))));
    EXPECT_TRUE(is_360_);
    EXPECT_EQ(log_.count(kInvalid), 0);
}

TEST_F(PtpVideo, WalkEndsAtABoxWithoutASize) {
    read_note(m360_box(1) + box_head("mdat", 0) + m360_box(2));
    EXPECT_EQ(stitch_type_, 0x10000);
    EXPECT_EQ(log_.count(kInvalid), 1);
}

TEST_F(PtpVideo, WalkEndsAtABoxSmallerThanItsHead) {
    for (uint32_t size = 2; size < 8; ++size) {
        read_note(m360_box(1) + box_head("mdat", size) + m360_box(2));
        EXPECT_EQ(stitch_type_, 0x10000) << size;
    }
    EXPECT_EQ(log_.count(kInvalid), 6);
    for (const char size : {0, 1, 15}) {
        read_note(m360_box(1) + box_head("mdat", 1) + std::string(7, '\0') + size + m360_box(2));
        EXPECT_EQ(stitch_type_, 0x10000) << static_cast<int>(size);
    }
    EXPECT_EQ(log_.count(kInvalid), 9);
}

TEST_F(PtpVideo, WalkEndsQuietlyAtTheFilmsEndAndBehindIt) {
    read_note(m360_box(1) + box("free", ""));
    read_note(m360_box(1) + box_head("mdat", 0xFFFFFFFF) + "samples");
    read_note(m360_box(1) + box_head("mdat", 1) + std::string(8, '\xFF') + m360_box(2));
    EXPECT_EQ(stitch_type_, 0x10000);
    EXPECT_EQ(log_.count(kInvalid), 0);
    read_note("");
    EXPECT_EQ(log_.count(kInvalid), 0);
}

TEST_F(PtpVideo, WalkOfNestedContainersWithoutEndAsksForABoundedNumberOfHeads) {
    std::string film;
    for (int i = 0; i < 3 * kPTPMostBoxes; ++i) {
        film += box_head("moov", 0xFFFFFFFF);
    }
    read_note(film);
    EXPECT_EQ(pieces_, kPTPMostBoxes);
    read_description(film);
    EXPECT_EQ(pieces_, 2 * kPTPMostBoxes);
}

TEST_F(PtpVideo, CutFilmTellsWhatCameBeforeTheCut) {
    const std::string film = noted_film(m360_box(2) + stip_box("00001"), 0);
    const size_t kind = film.find("m360") + 4 + 8;
    const size_t stitch = film.find("stip") + 4 + 54;
    for (size_t size = 0; size < film.size(); ++size) {
        is_360_ = false;
        stitch_type_ = 0;
        read_note(film.substr(0, size));
        EXPECT_EQ(is_360_, size >= kind) << size;
        EXPECT_EQ(stitch_type_, size >= stitch ? 0x20001 : size >= kind ? 0x20000 : 0) << size;
    }
}

TEST_F(PtpVideo, DescriptionTellsOfASphericalVideo) {
    read_description(box("moov", box("trak", spherical_box("true"))));
    EXPECT_TRUE(is_360_);
    EXPECT_EQ(stitch_type_, 0x20000);
    read_description(box("moov", box("trak", spherical_box("false"))));
    EXPECT_EQ(stitch_type_, 0x10000);
    stitch_type_ = 0;
    read_description(spherical_box(""));
    EXPECT_EQ(stitch_type_, 0x10000);
}

TEST_F(PtpVideo, DescriptionOfAnotherVideoTellsNothing) {
    read_description(box("moov", spherical_box("true", "false")));
    std::string other = spherical_box("true");
    other[8] = 'x';
    read_description(other);
    read_description(box("uuid", "short") + box("uuid", std::string(16, '\xFF')));
    EXPECT_FALSE(is_360_);
    EXPECT_EQ(stitch_type_, 0);
}

TEST_F(PtpVideo, DescriptionIsFoundBehindAnotherOne) {
    read_description(box("uuid", std::string(20, 'x')) + spherical_box("true", "false") +
                     spherical_box("true"));
    EXPECT_EQ(stitch_type_, 0x20000);
}

TEST_F(PtpVideo, DescriptionIsNotLookedForInTheUsersData) {
    read_description(box("moov", box("udta", spherical_box("true"))));
    EXPECT_FALSE(is_360_);
}

TEST_F(PtpVideo, DescriptionCostsHeadsItsIdAndItsText) {
    const std::string description = spherical_box("true");
    read_description(box("mdat", std::string(100000, 'x')) + box("uuid", std::string(1000, 'x')) +
                     description);
    EXPECT_EQ(pieces_, 3 + 1 + 2);
    EXPECT_EQ(bytes_, 3U * 8 + 16 + description.size() - 8);
}

TEST_F(PtpVideo, DescriptionLongerThanAnyIsReadInPart) {
    std::string description = spherical_box("true");
    description = box("uuid", description.substr(8) + std::string(2 * kPTPLargestDescription, ' '));
    read_description(description);
    EXPECT_TRUE(is_360_);
    EXPECT_EQ(bytes_, 8U + 16 + kPTPLargestDescription);
}

TEST_F(PtpVideo, DescriptionLongerThanTheFilmTellsNothing) {
    std::string description = spherical_box("true");
    description.replace(0, 4, "\x7F\xFF\xFF\xFF"s);
    read_description(description);
    EXPECT_FALSE(is_360_);
    for (size_t size = 0; size < description.size(); ++size) {
        read_description(description.substr(0, size));
    }
    EXPECT_FALSE(is_360_);
}

}  // namespace
