#include "engine/plugins/support/item_text.h"

#include <glib.h>
#include <qra/qra_types.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string_view>

#include "engine/src/glib_ptr.h"

namespace engine {

namespace {

using CharPtr = std::unique_ptr<char, Release<g_free>>;

/// Clients read times as numbers of 32 bits.
uint64_t narrow_time(int64_t seconds) {
    return static_cast<uint64_t>(std::clamp<int64_t>(seconds, 0, std::numeric_limits<int>::max()));
}

/// Writes what is given into an object, member by member.
class ObjectWriter {
public:
    ObjectWriter() : writer_(text_) { writer_.StartObject(); }

    void add(std::string_view name, const std::string& value) {
        add_name(name);
        if (g_utf8_validate_len(value.data(), value.size(), nullptr)) {
            add_text(value);
        } else {
            // A long text may have been cut within a character; the writer would leave it without an end.
            add_text(CharPtr(g_utf8_make_valid(value.data(), static_cast<gssize>(value.size()))).get());
        }
    }
    void add(std::string_view name, uint64_t value) {
        add_name(name);
        writer_.Uint64(value);
    }

    std::string line() {
        writer_.EndObject();
        return std::string(text_.GetString(), text_.GetSize()) + '\n';
    }

private:
    void add_text(std::string_view text) {
        writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }
    void add_name(std::string_view name) {
        writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    }

    rapidjson::StringBuffer text_;
    rapidjson::Writer<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::ASCII<>> writer_;
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
