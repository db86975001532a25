#ifndef QRA_TESTS_FAKES_CAMERA_MEDIA_H
#define QRA_TESTS_FAKES_CAMERA_MEDIA_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Pictures and films as a camera makes them, with as much in them as tells 360-degree media from plain ones.

/// The maker note of a picture. "MM" and "II" are written as these byte orders are, anything else as "II".
struct NoteSpec {
    std::string order = "MM";
    std::optional<uint32_t> kind = {};         ///< tag 16
    std::optional<uint32_t> stitch_bits = {};  ///< what tag 21 leads to
};

/// Bytes of a number in a byte order.
std::string number16(uint16_t value, const std::string& order = "MM");
std::string number32(uint32_t value, const std::string& order = "MM");

/// An entry of a directory of EXIF data.
std::string exif_entry(uint16_t tag, uint32_t value, const std::string& order = "MM");
/// A directory: the number of entries, the entries, and no next one.
std::string exif_directory(const std::vector<std::string>& entries, const std::string& order = "MM");
/// A picture whose first directory, at offset 8 of the EXIF data, and all that follows is `directories`.
std::string exif_picture(const std::string& directories, const std::string& order = "MM");
/// A picture with a directory that leads to the EXIF directory, which leads to a maker note.
std::string noted_picture(const NoteSpec& note);

/// A segment of a JPEG picture; without `length` the right one is written.
std::string jpeg_segment(uint8_t marker, const std::string& data, std::optional<uint16_t> length = {});
std::string xmp_segment(const std::string& packet);
/// The start of a picture, the segments, and the head of a frame.
std::string jpeg_picture(const std::vector<std::string>& segments);
/// An XMP packet that asks for a panorama viewer.
std::string panorama_packet();

std::string box(const std::string& type, const std::string& payload);
/// A box with a 64-bit size.
std::string large_box(const std::string& type, const std::string& payload);
/// A box's head alone, with whatever size.
std::string box_head(const std::string& type, uint32_t size);
std::string m360_box(uint64_t kind);
/// `digits` has five characters.
std::string stip_box(const std::string& digits);
/// The description of a spherical video; `stitched` is "true", "false" or "" for none.
std::string spherical_box(const std::string& stitched, const std::string& spherical = "true");
/// A film with the camera's own boxes in their place, and samples behind them.
std::string noted_film(const std::string& boxes, size_t sample_bytes = 1000);

#endif
