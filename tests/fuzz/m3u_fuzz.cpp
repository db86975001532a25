// Any bytes are a playlist file, and what is written of it can be read and written again, as often as one
// likes.
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "libqra-agent/playlist/m3u.h"
#include "libqra-agent/playlist/m3u_parser.h"

namespace {

M3U parse(const std::string& text) {
    std::istringstream stream(text);
    M3U m3u;
    M3UParser().parse(stream, &m3u);
    // Each entry needs a tag and a line behind it, and each parameter a tag.
    if (m3u.segments.size() * 9 > text.size() + 1 || m3u.params.size() * 11 > text.size()) {
        std::abort();
    }
    return m3u;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const M3U first = parse(std::string(reinterpret_cast<const char*>(data), size));
    const M3U second = parse(first.Dump());
    // What is written keeps its tags, whatever the years' bytes do to the records.
    for (const auto& param : first.params) {
        std::string value;
        if (second.GetSimpleParam(param.first, value) != 0) {
            std::abort();
        }
    }
    parse(second.Dump());
    return 0;
}
