#include "libqra-agent/source/ptp/qra_ptp_image_360.h"

#include <endian.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

using namespace std::string_view_literals;

namespace {

constexpr uint16_t EXIF_TAG_EXIF_IFD_POINTER = 34665;
constexpr uint16_t EXIF_TAG_MAKER_NOTE = 37500;
constexpr uint16_t kTagPictureKind = 16;
constexpr uint16_t kTagStitchData = 21;
constexpr uint32_t kKindUnstitched = 0x10000;
constexpr uint32_t kKindStitched = 0x20000;

constexpr long kTiffStart = 12;       // of the file: what offsets in the EXIF data count from
constexpr long kStitchDataStart = 8;  // of the place that the tag names
constexpr int kMostJumps = 16;        // from directory to directory: an honest file has two

constexpr size_t kSegmentHead = 8;  // marker, length, and the first four bytes of the data
constexpr size_t kLengthSize = 2;   // the length counts itself
constexpr size_t kSmallestLength = kLengthSize;
constexpr uint16_t kMarkerApp1 = 0xFFE1;
constexpr uint16_t kMarkerBaseline = 0xFFC0;
constexpr uint16_t kMarkerProgressive = 0xFFC2;
constexpr std::string_view kXmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;
static_assert(kXmpMark.size() == 29);

long SizeOf(std::FILE* pFile) {
    const bool bAtEnd = std::fseek(pFile, 0, SEEK_END) == 0;
    const long nSize = bAtEnd ? std::ftell(pFile) : -1;
    return std::fseek(pFile, 0, SEEK_SET) == 0 ? nSize : -1;
}

bool ReadBytes(std::FILE* pFile, void* pBuffer, size_t nSize) {
    return std::fread(pBuffer, 1, nSize, pFile) == nSize;
}

uint16_t BigEndian16(const unsigned char* pBytes) {
    return static_cast<uint16_t>(pBytes[0] << 8 | pBytes[1]);
}

uint16_t Swapped(uint16_t nValue) {
    return __builtin_bswap16(nValue);
}

uint32_t Swapped(uint32_t nValue) {
    return __builtin_bswap32(nValue);
}

/// The walk from directory to directory, which ends behind as many bytes as the file has: one that reads more
/// goes in circles.
class MakerNoteWalk {
public:
    MakerNoteWalk(std::FILE* pFile, bool* pIs360, int* pStitchType)
        : m_pFile(pFile),
          m_nSize(SizeOf(pFile)),
          m_nBytesLeft(m_nSize),
          m_pIs360(pIs360),
          m_pStitchType(pStitchType) {}

    void Run() {
        if (!m_ReadHead())
            return;
        while (m_ReadDirectory()) {
        }
    }

private:
    struct Entry {
        uint16_t nTag;
        uint32_t nValue;
    };

    bool m_Read(void* pBuffer, size_t nSize) {
        m_nBytesLeft -= static_cast<long>(nSize);
        return m_nBytesLeft >= 0 && ReadBytes(m_pFile, pBuffer, nSize);
    }

    /// False beyond the file's end.
    bool m_SeekTo(long nStart, uint32_t nOffset) {
        return m_nSize >= 0 && nOffset <= static_cast<unsigned long>(m_nSize) &&
               std::fseek(m_pFile, nStart + static_cast<long>(nOffset), SEEK_SET) == 0;
    }

    bool m_ReadHead() {
        unsigned char head[20];
        if (!m_Read(head, sizeof head) || std::memcmp(head, "\xFF\xD8\xFF\xE1", 4) != 0)
            return false;
        if (std::memcmp(head + kTiffStart, "MM", 2) == 0)
            m_nByteOrder = BIG_ENDIAN;
        else if (std::memcmp(head + kTiffStart, "II", 2) == 0)
            m_nByteOrder = LITTLE_ENDIAN;
        return true;
    }

    template <class Number>
    Number m_Number(const unsigned char* pBytes) const {
        Number nValue;
        std::memcpy(&nValue, pBytes, sizeof nValue);
        return m_nByteOrder != 0 ? Swapped(nValue) : nValue;
    }

    /// False when the walk is at its end.
    bool m_ReadDirectory() {
        unsigned char count[2];
        if (!m_Read(count, sizeof count))
            return false;
        for (int i = m_Number<uint16_t>(count); i > 0; --i) {
            Entry entry;
            if (!m_ReadEntry(entry))
                return false;
            if (entry.nTag == EXIF_TAG_EXIF_IFD_POINTER || entry.nTag == EXIF_TAG_MAKER_NOTE)
                return m_JumpTo(entry);
            if (entry.nTag == kTagPictureKind)
                m_TakeKind(entry.nValue);
            if (entry.nTag == kTagStitchData) {
                m_AddStitchData(entry.nValue);
                return false;
            }
        }
        return true;
    }

    bool m_ReadEntry(Entry& entry) {
        unsigned char bytes[12];
        if (!m_Read(bytes, sizeof bytes))
            return false;
        entry.nTag = m_Number<uint16_t>(bytes);
        entry.nValue = m_Number<uint32_t>(bytes + 8);
        return true;
    }

    bool m_JumpTo(const Entry& entry) {
        if (++m_nJumps > kMostJumps || !m_SeekTo(kTiffStart, entry.nValue))
            return false;
        if (entry.nTag == EXIF_TAG_MAKER_NOTE)
            m_nNoteStart = std::ftell(m_pFile);
        return true;
    }

    void m_TakeKind(uint32_t nKind) {
        if (nKind == 0)
            *m_pIs360 = false;
        if (nKind == kKindUnstitched || nKind == kKindStitched) {
            *m_pIs360 = true;
            *m_pStitchType = static_cast<int>(nKind);
        }
    }

    void m_AddStitchData(uint32_t nOffset) {
        unsigned char bits[4];
        if (m_SeekTo(m_nNoteStart + kStitchDataStart, nOffset) && m_Read(bits, sizeof bits))
            *m_pStitchType |= static_cast<int>(m_Number<uint32_t>(bits));
    }

    std::FILE* const m_pFile;
    const long m_nSize;
    long m_nBytesLeft;
    bool* const m_pIs360;
    int* const m_pStitchType;
    int m_nByteOrder = 0;
    int m_nJumps = 0;
    long m_nNoteStart = 0;
};

bool Contains(const std::string& strText, std::string_view part) {
    return strText.find(part) != std::string::npos;
}

bool AsksForPanorama(std::string strPacket) {
    strPacket.erase(std::remove(strPacket.begin(), strPacket.end(), '\0'), strPacket.end());
    return Contains(strPacket, "UsePanoramaViewer") && Contains(strPacket, "True") &&
           Contains(strPacket, "ProjectionType") && Contains(strPacket, "equirectangular");
}

/// Reads all data of a segment whose head was read; false if the file ends before.
bool ReadSegmentData(std::FILE* pFile, size_t nLength, std::string& strData) {
    strData.resize(nLength - kLengthSize);
    return std::fseek(pFile, -4, SEEK_CUR) == 0 && ReadBytes(pFile, strData.data(), strData.size());
}

}  // namespace

void qra_ptp_read_image_makernote(std::FILE* pFile, bool* pIs360, int* pStitchType) {
    MakerNoteWalk(pFile, pIs360, pStitchType).Run();
}

bool qra_ptp_has_panorama_packet(std::FILE* pFile) {
    unsigned char head[kSegmentHead];
    if (!ReadBytes(pFile, head, 2) || BigEndian16(head) != 0xFFD8)
        return false;
    std::string strData;
    while (ReadBytes(pFile, head, sizeof head)) {
        const uint16_t nMarker = BigEndian16(head);
        const size_t nLength = BigEndian16(head + 2);
        if (nMarker == kMarkerBaseline || nMarker == kMarkerProgressive || nLength < kSmallestLength)
            return false;
        if (nMarker == kMarkerApp1 && std::memcmp(head + 4, "Exif", 4) != 0) {
            if (!ReadSegmentData(pFile, nLength, strData))
                return false;
            if (strData.compare(0, kXmpMark.size(), kXmpMark) == 0 && AsksForPanorama(strData))
                return true;
        } else if (std::fseek(pFile, static_cast<long>(nLength) - 6, SEEK_CUR) != 0) {
            return false;
        }
    }
    return false;
}
