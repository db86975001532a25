#include "libqra-agent/playlist/m3u_parser.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <istream>
#include <iterator>
#include <utility>

#include "common/util/qra_util.h"

namespace {

/// Where a record keeps its fields.
enum EField {
    FIELD_DURATION,
    FIELD_TITLE,
    FIELD_ARTIST,
    FIELD_ALBUM,
    FIELD_GENRE,
    FIELD_YEAR,
    FIELD_FILE_SIZE,
    FIELD_FILE_FORMAT,
    FIELD_THUMBNAIL_URI,
    FIELD_BITRATE,
    FIELD_SAMPLE_RATE,
    FIELD_FILE_ID,
    FIELD_PATH,
    FIELD_ADDEDTIME,
    FIELD_FILE_NAME,
    FIELD_MIME_TYPE,
    FIELD_LOCATION_TAG,
    FIELD_MOD_TIME,
    FIELD_PLAY_COUNT,
    FIELD_BIT_RESOLUTION,
    FIELD_MEDIA_TYPE,
    FIELD_DRM,
    FIELD_COUNT
};

bool StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Without what is blank at either end, which a locale has no say in: titles end in bytes of any encoding.
std::string_view Trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// What precedes the first ":".
std::string_view TagOf(std::string_view line) {
    return line.substr(0, line.find(':'));
}

/// What follows the first ":", without any further one.
std::string ValueOf(std::string_view line) {
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos)
        return {};
    std::string value(line.substr(colon + 1));
    value.erase(std::remove(value.begin(), value.end(), ':'), value.end());
    return value;
}

long ToLong(const std::string& text) {
    return strtol(text.c_str(), nullptr, 10);
}

int32_t ToInt(const std::string& text) {
    return static_cast<int32_t>(ToLong(text));
}

/// A whole number of what the text says, in the precision of a float. What is no number counts as zero, what
/// is too large as the largest; a negative number wraps around.
uint64_t ToDuration(const std::string& text) {
    constexpr float kTwoTo63 = 9223372036854775808.0F;
    const auto value = static_cast<float>(g_ascii_strtod(text.c_str(), nullptr));
    if (std::isnan(value))
        return 0;
    if (value >= 2 * kTwoTo63)
        return UINT64_MAX;
    if (value >= kTwoTo63)
        return static_cast<uint64_t>(value);
    return static_cast<uint64_t>(static_cast<int64_t>(std::max(value, -kTwoTo63)));
}

}  // namespace

void M3UParser::parse(std::istream& in, M3U* out) {
    static_assert(FIELD_COUNT == kFields);
    out->bVariant = false;
    out->bEndList = false;
    m_Attributes.clear();
    m_bChunkNext = false;
    m_bVariantNext = false;
    std::string line;
    while (std::getline(in, line))
        _parse_line(Trim(line), out);
}

void M3UParser::_parse_line(std::string_view line, M3U* out) {
    struct Tag {
        std::string_view prefix;
        void (M3UParser::*parse)(std::string_view, M3U*);
        bool M3U::*flag;  ///< becomes true; null for none
    };
    using P = M3UParser;
    // The first that matches counts.
    static constexpr Tag kTags[] = {
        {"#EXT-X-TARGETDURATION", &P::_parse_simple_parameter, &M3U::bTargetDuration},
        {"#EXT-X-MEDIA-SEQUENCE", &P::_parse_simple_parameter, &M3U::bMediaSequence},
        {"#EXT-X-VERSION", &P::_parse_simple_parameter, &M3U::bVersion},
        {"#EXT-X-NAME", &P::_parse_simple_parameter, nullptr},
        {"#EXT-X-COUNT", &P::_parse_simple_parameter, nullptr},
        {"#EXT-X-ALLOW-CACHE", &P::_parse_simple_parameter, &M3U::bAllowCache},
        {"#EXT-X-KEY", &P::_parse_key, &M3U::bKey},
        {"#EXTINF", &P::_parse_extinf, nullptr},
        {"#EXT-X-STREAM-INF", &P::_parse_stream_inf, &M3U::bVariant},
        {"#EXT-X-ENDLIST", nullptr, &M3U::bEndList},
    };
    // The line behind a record or a stream belongs to it, whatever it says.
    if (std::exchange(m_bChunkNext, false))
        return _parse_ts_chunk(line, out);
    if (std::exchange(m_bVariantNext, false))
        return _parse_variant_playlist(line, out);
    const auto tag = std::find_if(std::begin(kTags), std::end(kTags), [line](const Tag& candidate) {
        return StartsWith(line, candidate.prefix);
    });
    if (tag == std::end(kTags))
        return;
    if (tag->parse != nullptr)
        (this->*tag->parse)(line, out);
    if (tag->flag != nullptr)
        out->*tag->flag = true;
}

void M3UParser::_parse_simple_parameter(std::string_view line, M3U* out) {
    const std::string key(TagOf(line));
    const std::string value = ValueOf(line);
    out->params[key] = value;
    if (key == "#EXT-X-BYTERANGE") {
        _parse_byterange(value, out->byteRangeLength, out->byteRangeOffset);
        out->bByteRange = true;
    } else if (key == "#EXT-X-TARGETDURATION") {
        out->targetDuration = _string_to_int(value);
        out->bTargetDuration = true;
    } else if (key == "#EXT-X-MEDIA-SEQUENCE") {
        out->mediaSequence = _string_to_int(value);
        out->bMediaSequence = true;
    } else if (key == "#EXT-X-PROGRAM-DATE-TIME") {
        out->programDateTime = value;
        out->bProgramDateTime = true;
    } else if (key == "#EXT-X-ALLOW-CACHE") {
        out->allowCache = value;
        out->bAllowCache = true;
    } else if (key == "#EXT-X-PLAYLIST-TYPE") {
        out->playlistType = value;
        out->bPlaylistType = true;
    } else if (key == "#EXT-X-VERSION") {
        out->version = _string_to_int(value);
        out->bVersion = true;
    } else if (key == "#EXT-X-COUNT") {
        out->SetCount(CQRAUtil::str2int(value));
    }
}

void M3UParser::_parse_byterange(std::string_view text, int32_t& length, int32_t& offset) {
    const size_t at = text.find('@');
    length = _string_to_int(text.substr(0, at));
    std::string rest(at == std::string_view::npos ? std::string_view() : text.substr(at + 1));
    rest.erase(std::remove(rest.begin(), rest.end(), '@'), rest.end());
    offset = _string_to_int(rest);
}

void M3UParser::_parse_key(std::string_view line, M3U* out) {
    _parse_attributes(ValueOf(line), out->key);
}

void M3UParser::_parse_stream_inf(std::string_view line, M3U*) {
    _parse_attributes(ValueOf(line), m_Attributes);
    m_bVariantNext = true;
}

void M3UParser::_parse_variant_playlist(std::string_view line, M3U* out) {
    m_Attributes["uri"] = line;
    out->variants.push_back(std::move(m_Attributes));
    m_Attributes.clear();
}

// Quotes protect nothing: a comma inside them ends the attribute.
void M3UParser::_parse_attributes(std::string_view text, M3U::Attributes& attributes) {
    std::string name;
    std::string value;
    bool in_value = false;
    for (const char c : text) {
        if (c == '=' && !in_value) {
            in_value = true;
        } else if (c == ',' && in_value) {
            _remove_quotes(value);
            attributes[name] = value;
            name.clear();
            value.clear();
            in_value = false;
        } else {
            (in_value ? value : name) += c;
        }
    }
    _remove_quotes(value);
    attributes[name] = value;
}

// A field that no "|" closes does not exist, but for the last one of a complete record, which takes the rest.
void M3UParser::_parse_extinf(std::string_view line, M3U*) {
    const std::string value = ValueOf(line);
    for (std::string& field : m_Fields)
        field.clear();
    size_t begin = 0;
    for (size_t i = 0; i + 1 < kFields; ++i) {
        const size_t end = value.find('|', begin);
        if (end == std::string::npos)
            break;
        m_Fields[i].assign(value, begin, end - begin);
        begin = end + 1;
        if (i + 2 == kFields)
            m_Fields[FIELD_DRM].assign(value, begin, std::string::npos);
    }
    m_bChunkNext = true;
}

void M3UParser::_parse_ts_chunk(std::string_view line, M3U* out) {
    Segment& segment = out->segments.emplace_back();
    const auto text = [this](EField field) { return std::move(m_Fields[field]); };
    segment.duration = ToDuration(m_Fields[FIELD_DURATION]);
    segment.title = text(FIELD_TITLE);
    segment.artist = text(FIELD_ARTIST);
    segment.album = text(FIELD_ALBUM);
    segment.genre = text(FIELD_GENRE);
    // The format keeps no more of the year than this byte, and the next save writes it.
    segment.year.assign(1, static_cast<char>(ToLong(m_Fields[FIELD_YEAR]) & 0xFF));
    segment.fileSize = strtoll(m_Fields[FIELD_FILE_SIZE].c_str(), nullptr, 10);
    segment.fileFormat = text(FIELD_FILE_FORMAT);
    segment.thumbnailUri = text(FIELD_THUMBNAIL_URI);
    segment.bitrate = ToInt(m_Fields[FIELD_BITRATE]);
    segment.sampleRate = ToInt(m_Fields[FIELD_SAMPLE_RATE]);
    segment.fileId = text(FIELD_FILE_ID);
    segment.path = text(FIELD_PATH);
    segment.addedtime = ToInt(m_Fields[FIELD_ADDEDTIME]);
    segment.fileName = text(FIELD_FILE_NAME);
    segment.mimeType = text(FIELD_MIME_TYPE);
    segment.locationTag = text(FIELD_LOCATION_TAG);
    segment.modTime = ToInt(m_Fields[FIELD_MOD_TIME]);
    segment.playCount = ToInt(m_Fields[FIELD_PLAY_COUNT]);
    segment.bitResolution = ToInt(m_Fields[FIELD_BIT_RESOLUTION]);
    segment.mediaType = ToInt(m_Fields[FIELD_MEDIA_TYPE]);
    segment.drm = ToInt(m_Fields[FIELD_DRM]) != 0;
    segment.uri = line;
}

// Whatever is no digit contributes its own distance from "0"; the sum wraps around.
int32_t M3UParser::_string_to_int(std::string_view text) {
    uint32_t sum = 0;
    uint32_t weight = 1;
    for (auto it = text.rbegin(); it != text.rend(); ++it) {
        sum += (static_cast<unsigned char>(*it) - uint32_t{'0'}) * weight;
        weight *= 10;
    }
    return static_cast<int32_t>(sum);
}

void M3UParser::_remove_quotes(std::string& text) {
    if (text.empty() || text.front() != text.back() || (text.front() != '\'' && text.front() != '"'))
        return;
    text = text.size() > 1 ? text.substr(1, text.size() - 2) : "";
}
