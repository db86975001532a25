#ifndef QRA_TESTS_FAKES_PACKAGE_MAKER_H
#define QRA_TESTS_FAKES_PACKAGE_MAKER_H

#include <cstdint>
#include <string>
#include <vector>

/**
 * Makes SCSA packages: SFF files, and containers of files.
 *
 * What is made is whole and right; who wants a broken one puts it together from boxes, or changes its bytes.
 */
namespace package_maker {

// Pieces of an SFF. Numbers are big-endian.

std::string be16(uint64_t number);
std::string be32(uint64_t number);
std::string be64(uint64_t number);
/// A type is four letters.
std::string box(const std::string& type, const std::string& payload);
std::string full_box(const std::string& type, int version, const std::string& payload);
std::string meta_box(const std::string& boxes);
/// An item of an "iinf" box. A content type is told for items of the type "mime" only.
std::string item_info(uint32_t number, const std::string& type, const std::string& name,
                      const std::string& content_type = "", uint16_t protection = 0);

/// Where the metadata's XML lies.
enum class XmlPlace { kBox, kItem, kMovie, kNowhere };

struct SffItem {
    uint32_t number = 0;
    std::string name;
    std::string bytes;
    size_t pieces = 1;  ///< the bytes lie in so many places
};

struct SffTrack {
    uint32_t number = 0;
    std::vector<std::string> samples;
    size_t per_chunk = 1;
    bool large_offsets = false;  ///< in 64 bits
};

struct Sff {
    std::string xml;
    XmlPlace xml_place = XmlPlace::kBox;
    std::vector<SffItem> items = {};
    bool items_in_meta = false;  ///< in the "meta" box, and not in the media data
    std::vector<SffTrack> tracks = {};
    uint64_t film = 0;  ///< bytes of a film that lies in front of all the rest; all zero
};

/// The whole file; a film makes it as large.
std::string sff_bytes(const Sff& sff);

/// Writes the file, its film as a hole that takes no room on a disk.
bool write_sff(const std::string& path, const Sff& sff);

// Containers.

struct Entry {
    std::string name;
    std::string bytes;
};

enum class Form { kZip, kStoredZip, kTar, kCpio, kTarGz };

bool write_container(const std::string& path, const std::vector<Entry>& entries, Form form);

/// An entry of a ZIP that is put together by hand, and may lie.
struct ZipEntry {
    std::string name;
    std::string bytes;
    uint16_t method = 0;  ///< 0 stored, 8 deflated; the bytes are taken as they are
    uint16_t flags = 0;   ///< 1 encrypted
    uint32_t size = 0;    ///< of the unpacked file; 0 for that of the bytes
    uint64_t hole = 0;    ///< so many zeros follow the bytes, and count as theirs
};

/// Writes a ZIP whose holes take no room on a disk. False also if it needs 64 bits and has 32.
bool write_zip(const std::string& path, const std::vector<ZipEntry>& entries, bool in_64_bits = false);

/// The 512 bytes before a file in a tar.
std::string tar_header(const std::string& name, uint64_t size, char type = '0');

}  // namespace package_maker

#endif
