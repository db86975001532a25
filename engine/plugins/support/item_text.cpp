#include "engine/plugins/support/item_text.h"

#include <glib.h>
#include <qra/qra_types.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/support/glib_ptr.h"

namespace engine {

namespace {

/// Clients read times as numbers of 32 bits.
uint64_t narrow_time(int64_t seconds) {
    return static_cast<uint64_t>(std::clamp<int64_t>(seconds, 0, std::numeric_limits<int>::max()));
}

/// Whether each byte stands for itself in a text of JSON.
bool is_plain(std::string_view text) {
    bool plain = true;
    for (const char byte : text) {
        // Without a branch, which makes it one step for many bytes.
        plain &= (byte >= ' ') & (byte != '\x7f') & (byte != '"') & (byte != '\\');
    }
    return plain;
}

/// Where the JSON library writes to.
struct TextEnd {
    using Ch = char;
    void Put(char byte) { text += byte; }
    void Flush() {}

    std::string& text;
};

void PutUnsafe(TextEnd& end, char byte) {
    end.Put(byte);
}

/// Writes what is given into an object, member by member.
class ObjectWriter {
public:
    ObjectWriter() {
        line_.reserve(kUsualLine);
        line_ += '{';
    }

    void add(std::string_view name, std::string_view value) {
        add_name(name);
        add_text(value);
    }
    void add(std::string_view name, uint64_t value) {
        add_name(name);
        line_ += std::to_string(value);
    }

    std::string line() {
        line_ += "}\n";
        return std::move(line_);
    }

private:
    static constexpr size_t kUsualLine = 512;

    void add_name(std::string_view name) {
        if (line_.size() > 1) {
            line_ += ',';
        }
        add_text(name);
        line_ += ':';
    }

    void add_text(std::string_view text) {
        if (is_plain(text)) {
            line_ += '"';
            line_ += text;
            line_ += '"';
            return;
        }
        if (g_utf8_validate_len(text.data(), text.size(), nullptr)) {
            add_quoted(text);
        } else {
            // A long text may have been cut within a character; the writer would leave it without an end.
            add_quoted(glib::TextPtr(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()))).get());
        }
    }

    void add_quoted(std::string_view text) {
        TextEnd end{line_};
        rapidjson::Writer<TextEnd, rapidjson::UTF8<>, rapidjson::ASCII<>> writer(end);
        writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }

    std::string line_;
};

}  // namespace

std::string item_text(const Item& item) {
    const bool folder = item.media_type == QRA_MEDIA_TYPE_FOLDER;
    ObjectWriter object;
    if (item.added > 0) {
        object.add("ADDED_TIME", static_cast<uint64_t>(item.added));
    }
    object.add("DISPLAY_NAME", item.display_name);
    if (!folder && item.media_type != QRA_MEDIA_TYPE_IMAGE) {
        object.add("DURATION", item.duration_ms);
    }
    object.add("ID_QRA", item.id);
    object.add("MEDIA_TYPE", static_cast<uint64_t>(item.media_type));
    if (!folder) {
        object.add("MIME_TYPE", item.mime_type);
    }
    object.add("MODIFIED_TIME", narrow_time(item.modified));
    if (!folder) {
        object.add("SIZE", item.size);
    }
    object.add("THUMBNAIL_PATH", item.thumbnail);
    object.add("TITLE", item.title);
    object.add("URL", item.url);
    for (const auto& [name, value] : item.details) {
        object.add(name, value);
    }
    return object.line();
}

}  // namespace engine
