// A feed: whatever it is, and however it is cut into pieces, the same items come out of it, and all of their
// addresses are on the web and hold no credentials.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "engine/plugins/feed/feed_items.h"
#include "engine/plugins/feed/feed_reader.h"

using namespace engine;

namespace {

bool is_web_address(const std::string& url) {
    const std::string host = url.substr(0, url.find('/', url.find("//") + 2));
    return url.rfind("http", 0) == 0 && host.find('@') == std::string::npos;
}

/// What came of the feed, as one text.
std::string read_in_pieces(const char* bytes, size_t size, size_t piece) {
    FeedReader reader;
    bool good = true;
    for (size_t at = 0; good && at < size; at += piece) {
        good = reader.read(bytes + at, std::min(piece, size - at));
    }
    good = good && reader.finish();
    std::string items;
    for (const Item& item : good ? feed_items(reader, "http://127.0.0.1/a/feed.xml") : std::vector<Item>()) {
        if (!is_web_address(item.url) || item.id.empty() || item.media_type == 0) {
            std::abort();
        }
        items += item_text(item);
    }
    return items;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto* bytes = reinterpret_cast<const char*>(data);
    if (size > 0 && read_in_pieces(bytes, size, size) != read_in_pieces(bytes, size, 7)) {
        std::abort();
    }
    return 0;
}
