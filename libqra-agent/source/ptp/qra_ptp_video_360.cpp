#include "libqra-agent/source/ptp/qra_ptp_video_360.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "common/util/qra_log.h"
#include "libqra-agent/source/local-source/qra_msc_names.h"

using namespace std::string_view_literals;

namespace {

using Size = unsigned long long;

constexpr unsigned kHeadSize = 8;
constexpr unsigned kKindSize = 8;
constexpr unsigned kStitchSize = 54;
constexpr size_t kStitchDigits = 12;  // where the number stands in the payload
constexpr size_t kStitchDigitCount = 5;
constexpr unsigned kIdSize = 16;
constexpr std::string_view kSphericalId =
    "\xFF\xCC\x82\x63\xF8\x55\x4A\x93\x88\x14\x58\x7A\x02\x52\x1F\xDD"sv;
constexpr int kUnstitched = 0x10000;
constexpr int kStitched = 0x20000;

struct Box {
    std::string strType;
    Size nOffset;   ///< of its payload
    Size nPayload;  ///< bytes, as the box tells
};

Size BigEndian(std::string_view bytes) {
    Size nValue = 0;
    for (const char c : bytes)
        nValue = nValue << 8 | static_cast<unsigned char>(c);
    return nValue;
}

/// False for a head that is not there, or that tells a size smaller than itself.
bool ReadHead(const qra_ptp_piece_reader& readPiece, Size nOffset, Box& box) {
    std::string strHead;
    if (!readPiece(nOffset, kHeadSize, strHead))
        return false;
    box.strType = strHead.substr(4);
    Size nSize = BigEndian(strHead.substr(0, 4));
    Size nHead = kHeadSize;
    if (nSize == 1) {
        if (!readPiece(nOffset + kHeadSize, kHeadSize, strHead))
            return false;
        nSize = BigEndian(strHead);
        nHead += kHeadSize;
    }
    if (nSize < nHead)
        return false;
    box.nOffset = nOffset + nHead;
    box.nPayload = nSize - nHead;
    return true;
}

/// Goes from box to box, into the containers; `visit` takes the others, and ends the walk with false.
template <size_t nCount, class Visit>
void WalkBoxes(const qra_ptp_piece_reader& readPiece, Size nSize, const char* const (&containers)[nCount],
               Visit visit) {
    Size nOffset = 0;
    for (int i = 0; i < kPTPMostBoxes && nOffset < nSize; ++i) {
        Box box;
        if (!ReadHead(readPiece, nOffset, box)) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "header is invalid.\n");
            return;
        }
        nOffset = box.nOffset;
        if (IsOneOf(box.strType, containers))
            continue;
        if (!visit(box) || nOffset >= nSize || box.nPayload > nSize - nOffset)
            return;
        nOffset += box.nPayload;
    }
}

int ReadDecimal(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    unsigned nNumber = 0;
    std::from_chars(text.data(), text.data() + text.size(), nNumber);
    return static_cast<int>(nNumber);
}

}  // namespace

void qra_ptp_read_video_makernote(const qra_ptp_piece_reader& readPiece, unsigned long long nSize,
                                  bool* pIs360, int* pStitchType) {
    constexpr const char* kContainers[] = {"moov", "trak", "udta", "kywd"};
    WalkBoxes(readPiece, nSize, kContainers, [&](const Box& box) {
        std::string strPayload;
        if (box.strType == "m360") {
            if (!readPiece(box.nOffset, kKindSize, strPayload))
                return false;
            const Size nKind = BigEndian(strPayload);
            *pIs360 = nKind != 0;
            *pStitchType = static_cast<int>(static_cast<uint32_t>(nKind << 16));
        } else if (box.strType == "stip") {
            if (!readPiece(box.nOffset, kStitchSize, strPayload))
                return false;
            *pStitchType |=
                ReadDecimal(std::string_view(strPayload).substr(kStitchDigits, kStitchDigitCount));
        }
        return true;
    });
}

void qra_ptp_read_video_description(const qra_ptp_piece_reader& readPiece, unsigned long long nSize,
                                    bool* pIs360, int* pStitchType) {
    constexpr const char* kContainers[] = {"moov", "trak"};
    WalkBoxes(readPiece, nSize, kContainers, [&](const Box& box) {
        std::string strText;
        if (box.strType != "uuid" || box.nPayload <= kIdSize)
            return true;
        if (!readPiece(box.nOffset, kIdSize, strText))
            return false;
        if (strText != kSphericalId)
            return true;
        const Size nText = std::min<Size>(box.nPayload - kIdSize, kPTPLargestDescription);
        if (!readPiece(box.nOffset + kIdSize, static_cast<unsigned>(nText), strText))
            return false;
        if (strText.find("<GSpherical:Spherical>true</GSpherical:Spherical>") == std::string::npos)
            return true;
        *pIs360 = true;
        *pStitchType = strText.find("<GSpherical:Stitched>true</GSpherical:Stitched>") != std::string::npos
                           ? kStitched
                           : kUnstitched;
        return false;
    });
}
