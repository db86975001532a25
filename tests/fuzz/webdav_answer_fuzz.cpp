// The answer of a WebDAV server: whatever it is, and however it is cut into pieces, the same resources come
// out of it, and each that a list shows lies within the folder that was asked.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "engine/plugins/webdav/multistatus_reader.h"
#include "engine/plugins/webdav/webdav_item.h"
#include "engine/plugins/webdav/webdav_path.h"

using namespace engine;

namespace {

constexpr char kTop[] = "http://127.0.0.1:8080/dav/";

/// What came of the answer, as one text.
std::string read_in_pieces(const char* bytes, size_t size, size_t piece) {
    const WebDavFolder folder(kTop);
    std::string items;
    MultistatusReader reader(
        [&](WebDavEntry& entry) {
            const auto name = folder.child(entry.href);
            if (!name) {
                return;
            }
            const std::string url = folder.url_of(*name, entry.folder);
            items += item_text(webdav_detail(entry, {*name, "folder", url}));
            const auto id = parse_id(id_of_name(*name));
            if (url.find(kTop) != 0 || !id || id->name != *name || folder.child(url) != name) {
                std::abort();
            }
        },
        true);
    bool good = true;
    for (size_t at = 0; good && at < size; at += piece) {
        good = reader.read(bytes + at, std::min(piece, size - at));
    }
    good = good && reader.finish();
    if (good != reader.reason().empty()) {
        std::abort();
    }
    return good ? items : "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto* bytes = reinterpret_cast<const char*>(data);
    if (size > 0 && read_in_pieces(bytes, size, size) != read_in_pieces(bytes, size, 7)) {
        std::abort();
    }
    return 0;
}
