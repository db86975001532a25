#include "tests/fakes/camera_media.h"

#include <algorithm>

using namespace std::string_literals;

namespace {

constexpr uint16_t kExifDirectory = 34665;
constexpr uint16_t kMakerNote = 37500;
constexpr uint16_t kMaker = 271;
constexpr uint16_t kExposure = 33434;

std::string big_endian(uint64_t value, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i) {
        text += static_cast<char>(value >> (8 * i));
    }
    return text;
}

std::string in_order(std::string big, const std::string& order) {
    if (order != "MM") {
        std::reverse(big.begin(), big.end());
    }
    return big;
}

/// The note's directory, with a tag that means nothing here in front, and what tag 21 leads to behind it.
std::string note_of(const NoteSpec& note) {
    std::vector<std::string> entries = {exif_entry(1, 7, note.order)};
    if (note.kind) {
        entries.push_back(exif_entry(16, *note.kind, note.order));
    }
    if (!note.stitch_bits) {
        return exif_directory(entries, note.order);
    }
    // The data lie eight bytes behind the place that the tag names, which counts from the note's start.
    const auto size = static_cast<uint32_t>(2 + 12 * (entries.size() + 1) + 4);
    entries.push_back(exif_entry(21, size, note.order));
    return exif_directory(entries, note.order) + std::string(8, '\x55') +
           number32(*note.stitch_bits, note.order);
}

}  // namespace

std::string number16(uint16_t value, const std::string& order) {
    return in_order(big_endian(value, 2), order);
}

std::string number32(uint32_t value, const std::string& order) {
    return in_order(big_endian(value, 4), order);
}

std::string exif_entry(uint16_t tag, uint32_t value, const std::string& order) {
    return number16(tag, order) + number16(4, order) + number32(1, order) + number32(value, order);
}

std::string exif_directory(const std::vector<std::string>& entries, const std::string& order) {
    std::string directory = number16(static_cast<uint16_t>(entries.size()), order);
    for (const std::string& entry : entries) {
        directory += entry;
    }
    return directory + number32(0, order);
}

std::string exif_picture(const std::string& directories, const std::string& order) {
    const std::string data = "Exif\0\0"s + order + number16(42, order) + number32(8, order) + directories;
    return jpeg_picture({jpeg_segment(0xE1, data)});
}

std::string noted_picture(const NoteSpec& note) {
    constexpr uint32_t first = 8;
    constexpr uint32_t directory_size = 2 + 2 * 12 + 4;
    constexpr uint32_t exif = first + directory_size;
    constexpr uint32_t maker_note = exif + directory_size;
    return exif_picture(
        exif_directory({exif_entry(kMaker, 1, note.order), exif_entry(kExifDirectory, exif, note.order)},
                       note.order) +
            exif_directory(
                {exif_entry(kExposure, 1, note.order), exif_entry(kMakerNote, maker_note, note.order)},
                note.order) +
            note_of(note),
        note.order);
}

std::string jpeg_segment(uint8_t marker, const std::string& data, std::optional<uint16_t> length) {
    return "\xFF"s + static_cast<char>(marker) +
           number16(length.value_or(static_cast<uint16_t>(data.size() + 2))) + data;
}

std::string xmp_segment(const std::string& packet) {
    return jpeg_segment(0xE1, "http://ns.adobe.com/xap/1.0/\0"s + packet);
}

std::string jpeg_picture(const std::vector<std::string>& segments) {
    std::string picture = "\xFF\xD8"s;
    for (const std::string& segment : segments) {
        picture += segment;
    }
    return picture + jpeg_segment(0xC0, std::string(15, '\x01')) + "\xFF\xD9"s;
}

std::string panorama_packet() {
    return "<rdf:Description GPano:UsePanoramaViewer=\"True\" GPano:ProjectionType=\"equirectangular\"/>";
}

std::string box(const std::string& type, const std::string& payload) {
    return box_head(type, static_cast<uint32_t>(payload.size() + 8)) + payload;
}

std::string large_box(const std::string& type, const std::string& payload) {
    return box_head(type, 1) + big_endian(payload.size() + 16, 8) + payload;
}

std::string box_head(const std::string& type, uint32_t size) {
    return big_endian(size, 4) + type;
}

std::string m360_box(uint64_t kind) {
    return box("m360", big_endian(kind, 8));
}

std::string stip_box(const std::string& digits) {
    std::string payload(54, '9');
    payload.replace(12, digits.size(), digits);
    return box("stip", payload);
}

std::string spherical_box(const std::string& stitched, const std::string& spherical) {
    std::string text = "<rdf:SphericalVideo><GSpherical:Spherical>" + spherical + "</GSpherical:Spherical>";
    if (!stitched.empty()) {
        text += "<GSpherical:Stitched>" + stitched + "</GSpherical:Stitched>";
    }
    return box("uuid", "\xFF\xCC\x82\x63\xF8\x55\x4A\x93\x88\x14\x58\x7A\x02\x52\x1F\xDD"s + text +
                           "</rdf:SphericalVideo>");
}

std::string noted_film(const std::string& boxes, size_t sample_bytes) {
    const std::string note = box("udta", box("kywd", boxes));
    return box("ftyp", "mp42"s + std::string(4, '\0')) +
           box("moov",
               box("mvhd", std::string(100, '\0')) + box("trak", box("tkhd", std::string(84, '\0'))) + note) +
           box("mdat", std::string(sample_bytes, '\x5A'));
}
