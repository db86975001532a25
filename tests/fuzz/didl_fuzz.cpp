// A page of a media server: whatever it is, what comes out of it are items with a title and a type, in UTF-8,
// of bounded size, and every value of theirs can be read.
#include <glib.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/nubelink/host/didl_reader.h"
#include "platform/nubelink/host/item_values.h"
#include "platform/nubelink/host/soap_call.h"
#include "platform/nubelink/host/text.h"

using namespace nbl;

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

bool is_utf8(std::string_view text) {
    return g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE;
}

void look_at(const nbl_item_s& item) {
    require(item.bytes().size() <= ItemBuilder::kLargestRecord + 16);
    for (const std::string_view name : {"@id", "dc:title", "upnp:class", "res", "kvr:dcmInfo", "own"}) {
        require(is_utf8(item.text(name)));
    }
    require(!item.find("@id") || item.find("dc:title"));
    require(is_utf8(extension_of(item)) && is_utf8(artist_of(item)) && is_utf8(mime_type_of(item)));
    width_of(item);
    height_of(item);
    seek_mode_of(item);
    file_size_of(item);
    duration_of(item);
    server_bookmark_of(item);
    const int children = child_count_of(item).value_or(0);
    require(children >= 0);
    const ItemPtr other = with_child_count(item, 7);
    require(other->text("@childCount") == "7");
}

void read_page(std::string document) {
    mend_xml(document);
    require(is_utf8(document));
    std::vector<ItemPtr> items;
    read_didl(document, nullptr, items);
    for (const ItemPtr& item : items) {
        look_at(*item);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    read_page(bytes);
    HttpAnswer http;
    http.status = 200;
    http.body = bytes;
    read_page(std::string(read_soap_answer(http).find("Result")));
    return 0;
}
