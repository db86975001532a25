#include "engine/plugins/feed/feed_items.h"

#include <glib.h>

#include <algorithm>
#include <memory>

#include "engine/plugins/support/media_kind.h"
#include "platform/support/glib_ptr.h"

namespace engine {

namespace {

constexpr auto kUriFlags =
    static_cast<GUriFlags>(G_URI_FLAGS_ENCODED | G_URI_FLAGS_PARSE_RELAXED | G_URI_FLAGS_HAS_PASSWORD);

/// The address, absolute and without credentials; empty if it leads to no web server.
std::string web_address(const std::string& address, const std::string& feed_url) {
    const glib::UriPtr base(g_uri_parse(feed_url.c_str(), kUriFlags, nullptr));
    const glib::UriPtr uri(address.empty() || !base
                               ? nullptr
                               : g_uri_parse_relative(base.get(), address.c_str(), kUriFlags, nullptr));
    const std::string_view scheme = uri ? g_uri_get_scheme(uri.get()) : "";
    return scheme == "http" || scheme == "https"
               ? glib::TextPtr(g_uri_to_string_partial(uri.get(), G_URI_HIDE_USERINFO)).get()
               : "";
}

/// "episode 1.mp3" of "https://host/a/episode%201.mp3?token=1"; as it stands if that is no text.
std::string file_name_of(const std::string& url) {
    const std::string path = url.substr(0, url.find_first_of("?#"));
    const std::string name = path.substr(path.rfind('/') + 1);
    const glib::TextPtr plain(g_uri_unescape_string(name.c_str(), nullptr));
    return plain && g_utf8_validate(plain.get(), -1, nullptr) ? plain.get() : name;
}

Item feed_item(const FeedEntry& entry, const FeedEnclosure& enclosure, const std::string& url) {
    MediaKind kind = media_kind_of(enclosure.type, file_name_of(url));
    Item item;
    item.media_type = kind.media_type;
    item.mime_type = std::move(kind.mime_type);
    item.title = entry.title.empty() ? file_name_of(url) : entry.title;
    item.display_name = item.title;
    item.url = url;
    item.size = enclosure.size;
    item.modified = entry.published > 0 ? entry.published : entry.updated;
    item.duration_ms = entry.duration_ms;
    for (const auto& [name, text] : {std::pair<const char*, const std::string&>("AUTHOR", entry.author),
                                     {"SUMMARY", entry.summary},
                                     {"LINK", entry.link}}) {
        if (!text.empty()) {
            item.details.emplace_back(name, text);
        }
    }
    return item;
}

}  // namespace

std::vector<Item> feed_items(const FeedReader& feed, const std::string& url) {
    std::vector<Item> items;
    for (const FeedEntry& entry : feed.entries()) {
        int number = 0;
        for (const FeedEnclosure& enclosure : entry.enclosures) {
            const std::string address = web_address(enclosure.url, url);
            Item item = feed_item(entry, enclosure, address);
            if (address.empty() || item.media_type == 0) {
                continue;
            }
            // The entry's own id stays the same when its file moves.
            ++number;
            item.id = entry.id.empty() ? address
                      : number == 1    ? entry.id
                                       : entry.id + "#" + std::to_string(number);
            item.thumbnail = web_address(entry.image.empty() ? feed.image() : entry.image, url);
            items.push_back(std::move(item));
        }
    }
    return items;
}

}  // namespace engine
