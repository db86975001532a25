#include "platform/media-content/host/metadata/exif_reader.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/media-content/host/metadata/byte_order.h"
#include "platform/media-content/host/metadata/number_text.h"

namespace media_content {
namespace {

using namespace std::string_view_literals;

constexpr auto kExifMark = "Exif\0\0"sv;
constexpr size_t kLargestBlock = 0xFFFE;  // libexif takes no more
constexpr size_t kTiffHeader = 8;

constexpr auto kGpsLatitudeRef = static_cast<ExifTag>(EXIF_TAG_GPS_LATITUDE_REF);
constexpr auto kGpsLatitude = static_cast<ExifTag>(EXIF_TAG_GPS_LATITUDE);
constexpr auto kGpsLongitudeRef = static_cast<ExifTag>(EXIF_TAG_GPS_LONGITUDE_REF);
constexpr auto kGpsLongitude = static_cast<ExifTag>(EXIF_TAG_GPS_LONGITUDE);
constexpr auto kGpsAltitudeRef = static_cast<ExifTag>(EXIF_TAG_GPS_ALTITUDE_REF);
constexpr auto kGpsAltitude = static_cast<ExifTag>(EXIF_TAG_GPS_ALTITUDE);

struct ExifDataDeleter {
    void operator()(ExifData* data) const { exif_data_unref(data); }
};
using ExifDataPtr = std::unique_ptr<ExifData, ExifDataDeleter>;

/// Typed look-ups in a loaded block; an entry of another type or too short is as absent.
class ExifBlock {
public:
    explicit ExifBlock(ExifData* data) : data_(data), order_(exif_data_get_byte_order(data)) {}

    std::string_view text(ExifIfd directory, ExifTag tag) const {
        const ExifEntry* entry = find(directory, tag, EXIF_FORMAT_ASCII, 1);
        return entry ? trimmed({reinterpret_cast<const char*>(entry->data), entry->size})
                     : std::string_view();
    }

    std::optional<uint32_t> number(ExifIfd directory, ExifTag tag) const {
        if (const ExifEntry* entry = find(directory, tag, EXIF_FORMAT_SHORT, 2)) {
            return exif_get_short(entry->data, order_);
        }
        if (const ExifEntry* entry = find(directory, tag, EXIF_FORMAT_LONG, 4)) {
            return exif_get_long(entry->data, order_);
        }
        return std::nullopt;
    }

    std::optional<uint8_t> byte(ExifIfd directory, ExifTag tag) const {
        const ExifEntry* entry = find(directory, tag, EXIF_FORMAT_BYTE, 1);
        return entry ? std::optional<uint8_t>(entry->data[0]) : std::nullopt;
    }

    /// The part `index` of an entry of fractions, where its denominator is not 0.
    std::optional<ExifRational> fraction(ExifIfd directory, ExifTag tag, size_t index = 0) const {
        const size_t end = (index + 1) * 8;
        const ExifEntry* entry = find(directory, tag, EXIF_FORMAT_RATIONAL, end);
        if (!entry) {
            return std::nullopt;
        }
        const ExifRational value = exif_get_rational(entry->data + index * 8, order_);
        return value.denominator != 0 ? std::optional<ExifRational>(value) : std::nullopt;
    }

private:
    const ExifEntry* find(ExifIfd directory, ExifTag tag, ExifFormat format, size_t least) const {
        const ExifEntry* entry = exif_content_get_entry(data_->ifd[directory], tag);
        // Canon's third raw format keeps each directory as the first one of a block of its own.
        if (!entry && directory == EXIF_IFD_EXIF) {
            entry = exif_content_get_entry(data_->ifd[EXIF_IFD_0], tag);
        }
        return entry && entry->format == format && entry->data && entry->size >= least ? entry : nullptr;
    }

    ExifData* data_;
    ExifByteOrder order_;
};

double value_of(ExifRational fraction) {
    return static_cast<double>(fraction.numerator) / fraction.denominator;
}

void read_date(const ExifBlock& exif, ImageMetadata& image) {
    constexpr std::pair<ExifIfd, ExifTag> kDates[] = {
        {EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL},
        {EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_DIGITIZED},
        {EXIF_IFD_0, EXIF_TAG_DATE_TIME},
    };
    for (const auto& [directory, tag] : kDates) {
        const std::string_view date = exif.text(directory, tag);
        if (is_exif_date(date)) {
            image.date_taken = date;
            return;
        }
    }
}

void read_iso(const ExifBlock& exif, ImageMetadata& image) {
    constexpr uint32_t kBeyondShort = 65535;  // the short field then refers to one of the long ones
    constexpr ExifTag kTags[] = {EXIF_TAG_ISO_SPEED_RATINGS, EXIF_TAG_RECOMMENDED_EXPOSURE_INDEX,
                                 EXIF_TAG_ISO_SPEED, EXIF_TAG_STANDARD_OUTPUT_SENSITIVITY};
    for (const ExifTag tag : kTags) {
        const uint32_t iso = exif.number(EXIF_IFD_EXIF, tag).value_or(0);
        if (iso > 0 && iso <= INT32_MAX && !(tag == EXIF_TAG_ISO_SPEED_RATINGS && iso == kBeyondShort)) {
            image.iso = static_cast<int>(iso);
            return;
        }
    }
}

void read_camera(const ExifBlock& exif, ImageMetadata& image) {
    read_date(exif, image);
    read_iso(exif, image);
    const std::string_view model = exif.text(EXIF_IFD_0, EXIF_TAG_MODEL);
    if (!model.empty()) {
        image.model = model;
    }
    const uint32_t orientation = exif.number(EXIF_IFD_0, EXIF_TAG_ORIENTATION).value_or(0);
    if (orientation >= 1 && orientation <= 8) {
        image.orientation = static_cast<int>(orientation);
    }
    if (const auto exposure = exif.fraction(EXIF_IFD_EXIF, EXIF_TAG_EXPOSURE_TIME)) {
        image.exposure_time = exposure_text(exposure->numerator, exposure->denominator);
    }
    if (const auto f_number = exif.fraction(EXIF_IFD_EXIF, EXIF_TAG_FNUMBER)) {
        image.f_number = value_of(*f_number);
    }
}

/// Degrees from degrees, minutes and seconds; the last two may be missing.
std::optional<double> degrees(const ExifBlock& exif, ExifTag tag, ExifTag reference_tag, char negative) {
    const auto whole = exif.fraction(EXIF_IFD_GPS, tag, 0);
    if (!whole) {
        return std::nullopt;
    }
    double sum = value_of(*whole);
    if (const auto minutes = exif.fraction(EXIF_IFD_GPS, tag, 1)) {
        sum += value_of(*minutes) / 60;
    }
    if (const auto seconds = exif.fraction(EXIF_IFD_GPS, tag, 2)) {
        sum += value_of(*seconds) / 3600;
    }
    const std::string_view reference = exif.text(EXIF_IFD_GPS, reference_tag);
    return !reference.empty() && reference[0] == negative ? -sum : sum;
}

void read_position(const ExifBlock& exif, MediaRecord& record) {
    const auto latitude = degrees(exif, kGpsLatitude, kGpsLatitudeRef, 'S');
    const auto longitude = degrees(exif, kGpsLongitude, kGpsLongitudeRef, 'W');
    if (!latitude || !longitude || !is_position(*latitude, *longitude)) {
        return;
    }
    record.latitude = latitude;
    record.longitude = longitude;
    record.location_tag = location_text(*latitude, *longitude);
    if (const auto altitude = exif.fraction(EXIF_IFD_GPS, kGpsAltitude)) {
        const bool below_sea = exif.byte(EXIF_IFD_GPS, kGpsAltitudeRef).value_or(0) == 1;
        record.altitude = below_sea ? -value_of(*altitude) : value_of(*altitude);
    }
}

/// Makes the block in memory: the mark that libexif looks for, and a TIFF header that it takes.
bool load_block(ByteSource& source, ByteRange block, std::vector<uint8_t>& bytes) {
    const size_t wanted =
        static_cast<size_t>(std::min<uint64_t>(block.length, kLargestBlock - kExifMark.size()));
    bytes.resize(kExifMark.size() + wanted);
    std::memcpy(bytes.data(), kExifMark.data(), kExifMark.size());
    const size_t got = source.read(block.offset, bytes.data() + kExifMark.size(), wanted);
    bytes.resize(kExifMark.size() + got);
    if (got < kTiffHeader) {
        return false;
    }
    // Some makers of raw files write a number of their own where TIFF has 42.
    uint8_t* header = bytes.data() + kExifMark.size();
    const bool little = header[0] == 'I';
    header[2] = little ? 42 : 0;
    header[3] = little ? 0 : 42;
    return begins_with(header, "II") || begins_with(header, "MM");
}

}  // namespace

bool read_exif(ByteSource& source, ByteRange block, std::vector<uint8_t>& scratch, MediaRecord& record) {
    if (!load_block(source, block, scratch)) {
        return false;
    }
    const ExifDataPtr data(exif_data_new());
    if (!data) {
        return false;
    }
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_load_data(data.get(), scratch.data(), static_cast<unsigned int>(scratch.size()));
    const ExifBlock exif(data.get());
    read_camera(exif, record.image);
    read_position(exif, record);
    return true;
}

}  // namespace media_content
