#include "platform/media-content/host/metadata/video_reader.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
}

#include <algorithm>
#include <charconv>
#include <climits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/media-content/host/metadata/av_input.h"
#include "platform/media-content/host/metadata/isobmff.h"
#include "platform/media-content/host/metadata/number_text.h"
#include "platform/media-content/host/metadata/xmp_reader.h"

namespace media_content {
namespace {

constexpr std::string_view kSphericalBoxId =
    "\xFF\xCC\x82\x63\xF8\x55\x4A\x93\x88\x14\x58\x7A\x02\x52\x1F\xDD";

std::string tag(const AvInput& input, const char* name) {
    const AVDictionaryEntry* entry = av_dict_get(input.context()->metadata, name, nullptr, 0);
    return entry ? std::string(trimmed(entry->value)) : std::string();
}

/// Bits in a second of the whole file.
int64_t average_rate(uint64_t bytes, int64_t duration_ms) {
    if (duration_ms <= 0) {
        return 0;
    }
    return static_cast<int64_t>(static_cast<double>(bytes) * 8000.0 / static_cast<double>(duration_ms));
}

bool lacks_facts(const AvInput& input) {
    const AVStream* video = input.video();
    return input.duration_ms() == 0 || !video || video->codecpar->width <= 0;
}

/// Takes one signed number off the front of a position such as "+37.5665+126.9780+030.5/".
std::optional<double> take_signed(std::string_view& text) {
    if (text.empty() || (text[0] != '+' && text[0] != '-')) {
        return std::nullopt;
    }
    double value = 0;
    const auto result =
        std::from_chars(text.data() + 1, text.data() + text.size(), value, std::chars_format::fixed);
    if (result.ec != std::errc()) {
        return std::nullopt;
    }
    const bool negative = text[0] == '-';
    text.remove_prefix(static_cast<size_t>(result.ptr - text.data()));
    return negative ? -value : value;
}

void read_place(const AvInput& input, MediaRecord& record) {
    std::string found = tag(input, "com.apple.quicktime.location.ISO6709");
    if (found.empty()) {
        found = tag(input, "location");
    }
    std::string_view text = found;
    const auto latitude = take_signed(text);
    const auto longitude = take_signed(text);
    if (!latitude || !longitude || !is_position(*latitude, *longitude)) {
        return;
    }
    record.latitude = latitude;
    record.longitude = longitude;
    record.altitude = take_signed(text);
    record.location_tag = location_text(*latitude, *longitude);
}

void read_spherical_boxes(ByteSource& source, MediaRecord& record) {
    const auto movie = find_box(source, {0, source.size()}, box_type("moov"));
    if (!movie) {
        return;
    }
    std::vector<uint8_t> xml;
    BoxWalker tracks(source, movie->payload);
    for (Box track; tracks.next(track);) {
        BoxWalker boxes(source, track.type == box_type("trak") ? track.payload : ByteRange());
        for (Box box; boxes.next(box);) {
            if (has_box_id(source, box, kSphericalBoxId) &&
                source.read_block(box.payload, kLargestXmp, xml)) {
                const std::string_view text(reinterpret_cast<const char*>(xml.data()), xml.size());
                read_spherical_video_xml(text.substr(kSphericalBoxId.size()), record);
            }
        }
    }
}

/// The projection that the container's own boxes or elements name; libavformat reads both kinds.
bool has_projection(const AVStream& stream) {
    size_t size = 0;
    return av_stream_get_side_data(&stream, AV_PKT_DATA_SPHERICAL, &size) != nullptr && size > 0;
}

void read_spherical(ByteSource& source, const AvInput& input, MediaRecord& record) {
    if (std::string_view(input.context()->iformat->name).substr(0, 3) == "mov") {
        read_spherical_boxes(source, record);
    }
    const AVStream* video = input.video();
    if (!record.is_360 && video && has_projection(*video)) {
        record.is_360 = true;
        record.stitch_type = StitchType::kStitched;
    }
}

int clamped(int64_t value) {
    return static_cast<int>(std::clamp<int64_t>(value, 0, INT_MAX));
}

}  // namespace

bool read_video(ByteSource& source, MediaRecord& record) {
    AvInput input(source);
    if (!input.open()) {
        return false;
    }
    if (lacks_facts(input)) {
        input.probe_streams();
    }
    if (const AVStream* video = input.video()) {
        record.video.width = clamped(video->codecpar->width);
        record.video.height = clamped(video->codecpar->height);
    }
    record.video.duration_ms = input.duration_ms();
    record.video.bit_rate = average_rate(source.size(), record.video.duration_ms);
    record.title = tag(input, "title");
    record.author = tag(input, "artist");
    read_place(input, record);
    read_spherical(source, input, record);
    return true;
}

bool read_untagged_sound(ByteSource& source, MediaRecord& record) {
    AvInput input(source);
    if (!input.open()) {
        return false;
    }
    if (input.duration_ms() == 0 || !input.audio() || input.audio()->codecpar->sample_rate <= 0) {
        input.probe_streams();
    }
    record.audio.duration_ms = input.duration_ms();
    record.audio.bit_rate = clamped(average_rate(source.size(), record.audio.duration_ms));
    if (const AVStream* audio = input.audio()) {
        record.audio.sample_rate = clamped(audio->codecpar->sample_rate);
        record.audio.channels = clamped(audio->codecpar->ch_layout.nb_channels);
        record.audio.bits_per_sample = clamped(audio->codecpar->bits_per_raw_sample);
    }
    record.title = tag(input, "title");
    record.audio.artist = tag(input, "artist");
    record.audio.album = tag(input, "album");
    record.audio.genre = tag(input, "genre");
    record.audio.track_number = tag(input, "track");
    return true;
}

bool read_uhd(ByteSource& source, MediaRecord& record) {
    AvInput input(source);
    if (!input.open()) {
        return false;
    }
    record.uhd.content_title = tag(input, "title");
    record.uhd.release_date = tag(input, "date");
    return true;
}

}  // namespace media_content
