#ifndef QRA_MEDIA_CONTENT_METADATA_NUMBER_TEXT_H
#define QRA_MEDIA_CONTENT_METADATA_NUMBER_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

namespace media_content {

// Numbers as texts and back, the same in every locale.

/// A number with a fixed count of digits after the point.
std::string fixed_text(double value, int digits);

/// An exposure time in seconds as photographers write it: "1/60", "0.4", "2", "2.5"; empty for no time at
/// all.
std::string exposure_text(uint32_t numerator, uint32_t denominator);

/// "37.566500 126.978000": latitude and longitude in degrees.
std::string location_text(double latitude, double longitude);

/// Whether a place is one on earth.
bool is_position(double latitude, double longitude);

/// Whether a text is a date as EXIF writes it, "2021:05:06 10:20:30", and not the blank one of an unset
/// clock.
bool is_exif_date(std::string_view text);

/// Drops blanks, line ends and NULs at both ends.
std::string_view trimmed(std::string_view text);

}  // namespace media_content

#endif
