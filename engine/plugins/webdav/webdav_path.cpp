#include "engine/plugins/webdav/webdav_path.h"

#include <glib.h>

#include <algorithm>
#include <memory>

#include "platform/support/glib_ptr.h"

namespace engine {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr auto kUriFlags = static_cast<GUriFlags>(G_URI_FLAGS_ENCODED | G_URI_FLAGS_PARSE_RELAXED);

void append_escaped(std::string& text, unsigned char byte) {
    text += '%';
    text += kHexDigits[byte >> 4U];
    text += kHexDigits[byte & 15U];
}

/// The bytes that percent-encoded text stands for; a percent sign without two digits stands for itself.
std::string decoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? g_ascii_xdigit_value(text[i + 1]) : -1;
        const int low = high >= 0 ? g_ascii_xdigit_value(text[i + 2]) : -1;
        if (low >= 0) {
            bytes += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

/// A name that names something within its folder.
bool is_name(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('\0') == std::string_view::npos;
}

template <typename Take>
bool each_segment(std::string_view path, const Take& take) {
    while (!path.empty()) {
        const size_t slash = std::min(path.find('/'), path.size());
        if (slash > 0 && !take(path.substr(0, slash))) {
            return false;
        }
        path.remove_prefix(std::min(slash + 1, path.size()));
    }
    return true;
}

/// The names along an encoded path; nothing if one of them leads elsewhere.
std::optional<std::vector<std::string>> names_along(std::string_view path) {
    std::vector<std::string> names;
    const bool good = each_segment(path, [&names](std::string_view segment) {
        names.push_back(decoded(segment));
        return is_name(names.back());
    });
    return good ? std::optional(std::move(names)) : std::nullopt;
}

bool has_scheme(std::string_view href) {
    const size_t end = href.find_first_of(":/?#");
    return end != std::string_view::npos && href[end] == ':';
}

/// "http://host:8080" of a URL.
std::string_view origin_of(std::string_view url) {
    const size_t host = url.find("://");
    return host == std::string_view::npos ? url : url.substr(0, url.find_first_of("/?#", host + 3));
}

std::string_view path_of(std::string_view url) {
    url.remove_prefix(origin_of(url).size());
    return url.substr(0, url.find_first_of("?#"));
}

/// Host and scheme know no capitals, and a port may be told or not.
std::string normal_url(const std::string& url) {
    GUri* uri =
        g_uri_parse(url.c_str(), static_cast<GUriFlags>(kUriFlags | G_URI_FLAGS_SCHEME_NORMALIZE), nullptr);
    if (uri == nullptr) {
        return {};
    }
    const glib::TextPtr host(g_ascii_strdown(g_uri_get_host(uri) ? g_uri_get_host(uri) : "", -1));
    const int port = g_uri_get_port(uri);
    const std::string scheme = g_uri_get_scheme(uri);
    const bool usual = port <= 0 || port == (scheme == "https" ? 443 : 80);
    const bool bracketed = std::string_view(host.get()).find(':') != std::string_view::npos;
    std::string text = scheme + "://" + (bracketed ? "[" : "") + host.get() + (bracketed ? "]" : "") +
                       (usual ? "" : ":" + std::to_string(port)) + g_uri_get_path(uri);
    g_uri_unref(uri);
    return text;
}

/// Whether the byte stands for itself in an id.
bool is_plain(char byte) {
    return byte >= ' ' && byte < '\x7f' && byte != '%' && byte != '/';
}

}  // namespace

std::string id_of_name(std::string_view name) {
    std::string id;
    while (!name.empty()) {
        const auto* const special = std::find_if_not(name.begin(), name.end(), is_plain);
        id.append(name.begin(), special);
        name.remove_prefix(static_cast<size_t>(special - name.begin()));
        if (name.empty()) {
            break;
        }
        const gunichar character = g_utf8_get_char_validated(name.data(), static_cast<gssize>(name.size()));
        const bool whole = character != static_cast<gunichar>(-1) && character != static_cast<gunichar>(-2);
        const size_t size = whole ? static_cast<size_t>(g_utf8_skip[static_cast<unsigned char>(name[0])]) : 1;
        if (!whole || character == '%' || character == '/' || g_unichar_iscntrl(character)) {
            std::for_each(name.begin(), name.begin() + static_cast<ptrdiff_t>(size),
                          [&id](char byte) { append_escaped(id, static_cast<unsigned char>(byte)); });
        } else {
            id.append(name.substr(0, size));
        }
        name.remove_prefix(size);
    }
    return id;
}

namespace {

/// A name as a part of a URL's path.
std::string encoded_name(std::string_view name) {
    std::string text;
    text.reserve(name.size());
    for (const char character : name) {
        if (g_ascii_isalnum(character) ||
            std::string_view("-._~!$'()*+,;=@").find(character) != std::string_view::npos) {
            text += character;
        } else {
            append_escaped(text, static_cast<unsigned char>(character));
        }
    }
    return text;
}

}  // namespace

std::optional<WebDavId> parse_id(std::string_view id) {
    const auto names = names_along(id);
    if (!names) {
        return std::nullopt;
    }
    WebDavId parsed;
    for (const std::string& name : *names) {
        const char* slash = parsed.id.empty() ? "" : "/";
        parsed.folder_id = parsed.id;
        parsed.id += slash + id_of_name(name);
        parsed.path += slash + encoded_name(name);
        parsed.name = name;
    }
    return parsed;
}

WebDavFolder::WebDavFolder(const std::string& url) : url_(normal_url(url)) {
    if (url_.empty() || url_.back() != '/') {
        url_ += '/';
    }
    if (auto names = names_along(path_of(url_))) {
        names_ = std::move(*names);
        path_ = path_of(url_);
    }
}

std::optional<std::vector<std::string>> WebDavFolder::names_of(std::string_view href) const {
    if (!href.empty() && href[0] == '/' && href.substr(0, 2) != "//") {
        return names_along(href.substr(0, href.find_first_of("?#")));
    }
    if (!has_scheme(href)) {
        const glib::TextPtr resolved(
            g_uri_resolve_relative(url_.c_str(), std::string(href).c_str(), kUriFlags, nullptr));
        const std::string url = resolved ? normal_url(resolved.get()) : "";
        return origin_of(url) == origin_of(url_) ? names_along(path_of(url)) : std::nullopt;
    }
    const std::string url = normal_url(std::string(href));
    return !url.empty() && origin_of(url) == origin_of(url_) ? names_along(path_of(url)) : std::nullopt;
}

std::string_view WebDavFolder::segment_below(std::string_view href) const {
    if (path_.empty() || href.substr(0, path_.size()) != path_ || href.substr(0, 2) == "//") {
        return {};
    }
    href.remove_prefix(path_.size());
    const std::string_view segment = href.substr(0, href.find_first_of("/?#"));
    const std::string_view rest = href.substr(segment.size());
    return rest.empty() || rest == "/" ? segment : std::string_view();
}

std::optional<std::string> WebDavFolder::child(std::string_view href) const {
    const std::string_view segment = segment_below(href);
    if (!segment.empty()) {
        std::string name = decoded(segment);
        return is_name(name) ? std::optional(std::move(name)) : std::nullopt;
    }
    auto names = names_of(href);
    const bool inside = names && names->size() == names_.size() + 1 &&
                        std::equal(names_.begin(), names_.end(), names->begin());
    return inside ? std::optional(std::move(names->back())) : std::nullopt;
}

bool WebDavFolder::is_itself(std::string_view href) const {
    const auto names = names_of(href);
    return names && *names == names_;
}

std::string WebDavFolder::url(bool folder) const {
    return folder ? url_ : url_.substr(0, url_.size() - 1);
}

std::string WebDavFolder::url_of(const std::string& name, bool folder) const {
    return url_ + encoded_name(name) + (folder ? "/" : "");
}

}  // namespace engine
