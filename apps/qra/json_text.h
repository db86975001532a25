#ifndef QRA_APPS_QRA_JSON_TEXT_H
#define QRA_APPS_QRA_JSON_TEXT_H

#include <json/forwards.h>

#include <string>

/// How characters beyond ASCII are written. Programs read either; people read the second.
enum class JsonCharacters { Escaped, Utf8 };

/// The value on one line, without an end of line.
std::string json_text(const Json::Value& value, JsonCharacters characters = JsonCharacters::Escaped);

/// Writes the value to stdout as a line. @throws CommandError if that fails
void print_json(const Json::Value& value, JsonCharacters characters = JsonCharacters::Escaped);

/// The JSON object that a text is; null for any other text.
Json::Value read_json_object(const std::string& text);

#endif
