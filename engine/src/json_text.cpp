#include "engine/src/json_text.h"

#include <json/json.h>

#include <exception>
#include <memory>

namespace engine {

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
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

std::string json_text_member(const Json::Value& object, const char* key) {
    const Json::Value& value = object[key];
    const std::string text = value.isString() ? value.asString() : std::string();
    return text.find('\0') == std::string::npos ? text : std::string();
}

}  // namespace engine
