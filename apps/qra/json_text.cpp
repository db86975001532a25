#include "apps/qra/json_text.h"

#include <json/json.h>

#include <exception>
#include <memory>

#include "apps/qra/output.h"

std::string json_text(const Json::Value& value, JsonCharacters characters) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = characters == JsonCharacters::Utf8;
    return Json::writeString(builder, value);
}

void print_json(const Json::Value& value, JsonCharacters characters) {
    print(json_text(value, characters) + "\n");
}

Json::Value read_json_object(const std::string& text) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr) && value.isObject()) {
            return value;
        }
    } catch (const std::exception&) {
        // It goes deeper than the reader does.
    }
    return {};
}
