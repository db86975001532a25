#include "libqra-agent/playlist/m3u.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"

namespace {

constexpr char kNameTag[] = "#EXT-X-NAME";
constexpr char kCountTag[] = "#EXT-X-COUNT";
constexpr int kFractionDigits = 4;

/// "name=value" pairs joined by ",". A pair without a name counts too.
std::string JoinAttributes(const M3U::Attributes& attributes) {
    std::string text;
    for (const auto& [name, value] : attributes) {
        if (!text.empty())
            text += ',';
        text += name + '=' + value;
    }
    return text;
}

void AppendVariant(const M3U::Attributes& variant, std::string& text) {
    M3U::Attributes attributes = variant;
    const auto uri = attributes.extract("uri");
    text += "#EXT-X-STREAM-INF:" + JoinAttributes(attributes) + '\n';
    if (!uri.empty())
        text += uri.mapped();
    text += '\n';
}

/// The 22 fields of the record, in the order in which the reader numbers them, and the line behind it. Texts
/// go in by their length: the year can be any byte.
void AppendSegment(const Segment& segment, const std::string& duration, std::string& text) {
    const auto field = [&text](const std::string& value) { text.append(1, '|').append(value); };
    text += "#EXTINF:" + duration;
    field(segment.title);
    field(segment.artist);
    field(segment.album);
    field(segment.genre);
    field(segment.year);
    field(std::to_string(segment.fileSize));
    field(segment.fileFormat);
    field(segment.thumbnailUri);
    field(std::to_string(segment.bitrate));
    field(std::to_string(segment.sampleRate));
    field(segment.fileId);
    field(segment.path);
    field(std::to_string(segment.addedtime));
    field(segment.fileName);
    field(segment.mimeType);
    field(segment.locationTag);
    field(std::to_string(segment.modTime));
    field(std::to_string(segment.playCount));
    field(std::to_string(segment.bitResolution));
    field(std::to_string(segment.mediaType));
    field(segment.drm ? "1" : "0");
    // The reader takes the line behind the record whatever it says, so that it has to be there.
    text += '\n' + segment.uri + '\n';
}

template <class Predicate>
bool EraseFirst(std::list<Segment>& segments, Predicate predicate) {
    const auto it = std::find_if(segments.begin(), segments.end(), predicate);
    if (it == segments.end())
        return false;
    segments.erase(it);
    return true;
}

}  // namespace

std::string M3U::GetName() const {
    std::string name;
    if (GetSimpleParam(kNameTag, name) != 0)
        QRA_LOG_TRACE(QRA_TAG_COMMON, "Not Find M3U Name!");
    return name;
}

int M3U::GetCount() const {
    std::string count;
    if (GetSimpleParam(kCountTag, count) != 0 || count.empty()) {
        QRA_LOG_TRACE(QRA_TAG_COMMON, "Not Find M3U count!");
        return 0;
    }
    return CQRAUtil::str2int(count);
}

void M3U::SetCount(int nCount) {
    params[kCountTag] = std::to_string(nCount);
}

int M3U::GetSimpleParam(const std::string& name, std::string& value) const {
    const auto it = params.find(name);
    if (it == params.end())
        return -1;
    value = it->second;
    return 0;
}

std::list<Segment>::iterator M3U::m_At(int index) {
    if (index < 0 || static_cast<size_t>(index) >= segments.size())
        return segments.end();
    return std::next(segments.begin(), index);
}

int M3U::GetSegmentByIdx(int index, Segment& out) const {
    const auto it = const_cast<M3U*>(this)->m_At(index);
    if (it == segments.end())
        return -1;
    out = *it;
    return 0;
}

int M3U::DeleteSegmentByIdx(int index) {
    const auto it = m_At(index);
    if (it == segments.end())
        return -1;
    segments.erase(it);
    return 0;
}

bool M3U::DeleteSegmentByMediaId(const std::string& id) {
    return EraseFirst(segments, [&id](const Segment& segment) { return segment.fileId == id; });
}

void M3U::DeleteSegmentByUri(const std::string& uri) {
    EraseFirst(segments, [&uri](const Segment& segment) { return segment.uri == uri; });
}

int M3U::DeleteSegments(std::vector<int> indices) {
    if (indices.empty())
        return 0;
    std::sort(indices.begin(), indices.end());
    auto it = m_At(indices.front());
    if (it == segments.end())
        return -1;
    it = segments.erase(it);
    for (size_t i = 1; i < indices.size(); ++i) {
        const long long steps = static_cast<long long>(indices[i]) - indices[i - 1] - 1;
        if (steps < 0 || steps >= std::distance(it, segments.end()))
            return -1;
        it = segments.erase(std::next(it, steps));
    }
    return 0;
}

std::string M3U::Dump() const {
    std::string text = "#EXTM3U\n";
    for (const auto& [tag, value] : params)
        text += tag + ':' + value + '\n';
    if (bKey)
        text += "#EXT-X-KEY:" + JoinAttributes(key) + '\n';
    if (bVariant) {
        for (const Attributes& variant : variants)
            AppendVariant(variant, text);
    }
    for (const Segment& segment : segments)
        AppendSegment(segment, _float_to_string(static_cast<float>(segment.duration)), text);
    if (bEndList)
        text += "#EXT-X-ENDLIST\n";
    return text;
}

std::string M3U::_float_to_string(float value) const {
    const float whole = std::trunc(value);
    float fraction = value - whole;
    std::string text;
    if (whole != 0) {
        char digits[64];
        snprintf(digits, sizeof digits, "%.0f", static_cast<double>(whole));
        text = digits;
    }
    text += '.';
    for (int i = 0; i < kFractionDigits && fraction != 0; ++i) {
        fraction *= 10;
        const int digit = static_cast<int>(fraction);
        text += static_cast<char>('0' + digit);
        fraction -= static_cast<float>(digit);
    }
    return text;
}
