#include "apps/qra/foreign_playlist.h"

#include <glib.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace {

struct GFree {
    void operator()(char* text) const { g_free(text); }
};
using GText = std::unique_ptr<char, GFree>;

bool starts_with(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::string converted(std::string_view bytes, const char* from) {
    gsize length = 0;
    const GText text(g_convert_with_fallback(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8", from,
                                             "?", nullptr, &length, nullptr));
    return text != nullptr ? std::string(text.get(), length) : std::string();
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        if (end > begin) {
            lines.push_back(text.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return lines;
}

/// Paths are bytes of a file system, titles are text: the bytes stay, where they are no UTF-16.
std::vector<ForeignEntry> read_m3u(const std::string& bytes) {
    const bool utf16 = starts_with(bytes, "\xFF\xFE") || starts_with(bytes, "\xFE\xFF");
    std::string plain = utf16 ? text_as_utf8(bytes) : bytes;
    if (starts_with(plain, "\xEF\xBB\xBF")) {
        plain.erase(0, 3);
    }
    std::vector<ForeignEntry> entries;
    std::string title;
    for (const std::string& line : lines_of(plain)) {
        if (starts_with(line, "#EXTINF:")) {
            const size_t comma = line.find(',');
            title = comma != std::string::npos ? text_as_utf8(line.substr(comma + 1)) : "";
        } else if (line.front() != '#') {
            entries.push_back({line, title});
            title.clear();
        }
    }
    return entries;
}

std::vector<ForeignEntry> read_pls(const std::string& bytes) {
    struct Unref {
        void operator()(GKeyFile* file) const { g_key_file_unref(file); }
    };
    const std::string text = text_as_utf8(bytes);
    const std::unique_ptr<GKeyFile, Unref> file(g_key_file_new());
    if (!g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr)) {
        throw std::invalid_argument("this is no PLS that can be read");
    }
    // The entries count from 1; NumberOfEntries is not to be trusted.
    std::vector<ForeignEntry> entries;
    const auto value = [&](const char* key, size_t number) {
        const std::string name = key + std::to_string(number);
        const GText found(g_key_file_get_value(file.get(), "playlist", name.c_str(), nullptr));
        return found != nullptr ? std::string(found.get()) : std::string();
    };
    for (size_t number = 1;; ++number) {
        const std::string location = value("File", number);
        if (location.empty()) {
            return entries;
        }
        entries.push_back({location, value("Title", number)});
    }
}

bool is_element(const xmlNode* node, const char* name) {
    return node->type == XML_ELEMENT_NODE &&
           std::string_view(reinterpret_cast<const char*>(node->name)) == name;
}

std::string content_of(xmlNode* node) {
    struct XmlFree {
        void operator()(xmlChar* text) const { xmlFree(text); }
    };
    const std::unique_ptr<xmlChar, XmlFree> text(xmlNodeGetContent(node));
    const std::string content = text != nullptr ? reinterpret_cast<const char*>(text.get()) : "";
    const size_t begin = content.find_first_not_of(" \t\r\n");
    return begin == std::string::npos
               ? ""
               : content.substr(begin, content.find_last_not_of(" \t\r\n") - begin + 1);
}

ForeignEntry read_track(xmlNode* track) {
    ForeignEntry entry;
    for (xmlNode* node = track->children; node != nullptr; node = node->next) {
        if (is_element(node, "location") && entry.location.empty()) {
            entry.location = content_of(node);
        } else if (is_element(node, "title")) {
            entry.title = content_of(node);
        }
    }
    return entry;
}

std::vector<ForeignEntry> read_xspf(const std::string& bytes) {
    struct FreeDocument {
        void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    };
    // Neither the network nor entities of the document's own: a playlist needs none.
    const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    const std::unique_ptr<xmlDoc, FreeDocument> document(
        bytes.size() <= INT_MAX
            ? xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr, options)
            : nullptr);
    xmlNode* root = document != nullptr ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr || !is_element(root, "playlist")) {
        throw std::invalid_argument("this is no XSPF that can be read");
    }
    std::vector<ForeignEntry> entries;
    for (xmlNode* list = root->children; list != nullptr; list = list->next) {
        if (!is_element(list, "trackList")) {
            continue;
        }
        for (xmlNode* track = list->children; track != nullptr; track = track->next) {
            ForeignEntry entry = is_element(track, "track") ? read_track(track) : ForeignEntry();
            if (!entry.location.empty()) {
                entries.push_back(std::move(entry));
            }
        }
    }
    return entries;
}

/// The path of a URI of this machine; nothing for another one. `is_uri` tells whether it is one at all.
std::string path_of_uri(const std::string& location, bool& is_uri) {
    const GText scheme(g_uri_parse_scheme(location.c_str()));
    // A scheme of one letter is the drive of a path of other systems.
    is_uri = scheme != nullptr && std::string_view(scheme.get()).size() > 1;
    if (!is_uri) {
        return {};
    }
    const GText path(g_filename_from_uri(location.c_str(), nullptr, nullptr));
    return path != nullptr ? path.get() : "";
}

}  // namespace

std::string text_as_utf8(const std::string& bytes) {
    if (starts_with(bytes, "\xEF\xBB\xBF")) {
        return text_as_utf8(bytes.substr(3));
    }
    if (starts_with(bytes, "\xFF\xFE")) {
        return converted(std::string_view(bytes).substr(2), "UTF-16LE");
    }
    if (starts_with(bytes, "\xFE\xFF")) {
        return converted(std::string_view(bytes).substr(2), "UTF-16BE");
    }
    const bool is_utf8 = g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr) != FALSE;
    return is_utf8 ? bytes : converted(bytes, "ISO-8859-1");
}

std::vector<ForeignEntry> read_foreign_playlist(const std::string& bytes) {
    const std::string text = text_as_utf8(bytes);
    if (text.find('\0') != std::string::npos) {
        throw std::invalid_argument("this is no playlist: it holds NUL bytes");
    }
    const size_t begin = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    const std::string_view start = std::string_view(text).substr(begin);
    if (starts_with(start, "[")) {
        return read_pls(bytes);
    }
    return starts_with(start, "<") ? read_xspf(bytes) : read_m3u(bytes);
}

std::string file_of_location(const std::string& location, const std::string& directory) {
    bool is_uri = false;
    std::string path = path_of_uri(location, is_uri);
    if (!is_uri) {
        path = location;
    }
    if (path.empty()) {
        return {};
    }
    const std::filesystem::path base = directory;
    std::error_code error;
    const std::filesystem::path as_it_is = (base / path).lexically_normal();
    // A URI's path may be escaped where it is relative, and a path may be text of another encoding.
    const GText unescaped(g_uri_unescape_string(path.c_str(), nullptr));
    for (const std::string& other : {text_as_utf8(path), std::string(unescaped ? unescaped.get() : "")}) {
        if (std::filesystem::exists(as_it_is, error)) {
            break;
        }
        const std::filesystem::path candidate = (base / other).lexically_normal();
        if (!other.empty() && std::filesystem::exists(candidate, error)) {
            return candidate;
        }
    }
    return as_it_is;
}

std::string write_m3u8(const std::vector<ExportEntry>& entries) {
    std::string text = "#EXTM3U\n";
    for (const ExportEntry& entry : entries) {
        std::string title = text_as_utf8(entry.title);
        std::replace_if(
            title.begin(), title.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
        text += "#EXTINF:" + std::to_string(entry.seconds) + "," + title + "\n";
        text += (starts_with(entry.path, "#") ? "./" : "") + entry.path + "\n";
    }
    return text;
}
