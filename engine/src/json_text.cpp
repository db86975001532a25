#include "engine/src/json_text.h"

#include <json/json.h>

#include <exception>
#include <memory>
#include <sstream>

namespace engine {

namespace {

/// Costly to make, and keeps nothing of what it wrote.
Json::StreamWriter& writer() {
    thread_local const std::unique_ptr<Json::StreamWriter> made = [] {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
    }();
    return *made;
}

}  // namespace

Json::Value parse_json_object(const std::string& text, int depth) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["stackLimit"] = depth;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string ignored;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, &ignored) && value.isObject()) {
            return value;
        }
    } catch (const std::exception&) {
        // Too deep to be an honest one: the same as any other text that is none.
    }
    return {};
}

std::string to_json_text(const Json::Value& value) {
    std::ostringstream text;
    writer().write(value, &text);
    return text.str();
}

std::string json_text_member(const Json::Value& object, const char* key) {
    const Json::Value& value = object[key];
    const std::string text = value.isString() ? value.asString() : std::string();
    return text.find('\0') == std::string::npos ? text : std::string();
}

}  // namespace engine
