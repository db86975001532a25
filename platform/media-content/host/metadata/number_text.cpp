#include "platform/media-content/host/metadata/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <numeric>

namespace media_content {

std::string fixed_text(double value, int digits) {
    std::array<char, 64> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits);
    return end.ec == std::errc() ? std::string(text.data(), end.ptr) : std::string();
}

std::string exposure_text(uint32_t numerator, uint32_t denominator) {
    if (numerator == 0 || denominator == 0) {
        return {};
    }
    constexpr double kLongestFraction = 0.3;  // beyond it cameras write decimals
    const uint32_t divisor = std::gcd(numerator, denominator);
    const double seconds = static_cast<double>(numerator) / denominator;
    if (denominator == divisor) {
        return std::to_string(numerator / divisor);
    }
    if (numerator == divisor) {
        return "1/" + std::to_string(denominator / divisor);
    }
    if (seconds < kLongestFraction) {
        return "1/" + std::to_string(std::llround(1 / seconds));
    }
    return fixed_text(seconds, 1);
}

bool is_position(double latitude, double longitude) {
    return std::fabs(latitude) <= 90 && std::fabs(longitude) <= 180;  // false for what is no number, too
}

std::string location_text(double latitude, double longitude) {
    return fixed_text(latitude, 6) + ' ' + fixed_text(longitude, 6);
}

bool is_exif_date(std::string_view text) {
    constexpr std::string_view kPattern = "dddd:dd:dd dd:dd:dd";
    if (text.size() != kPattern.size() || text.substr(0, 4) == "0000") {
        return false;
    }
    for (size_t i = 0; i < kPattern.size(); ++i) {
        const bool fits = kPattern[i] == 'd' ? text[i] >= '0' && text[i] <= '9' : text[i] == kPattern[i];
        if (!fits) {
            return false;
        }
    }
    return true;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlank("\0 \t\r\n", 5);
    const size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

}  // namespace media_content
