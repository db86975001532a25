#ifndef QRA_ENGINE_JSON_TEXT_H
#define QRA_ENGINE_JSON_TEXT_H

#include <json/forwards.h>

#include <string>

namespace engine {

/// The JSON object of a text that a client or a service sent; null for any other text, for one that goes
/// deeper than `depth`, and for one that says anything twice.
Json::Value parse_json_object(const std::string& text, int depth);

/// One line of JSON in ASCII, without a line end. What is not UTF-8 becomes U+FFFD.
std::string to_json_text(const Json::Value& value);

/// A text of the object; empty if there is none, if it is another type or holds a NUL.
std::string json_text_member(const Json::Value& object, const char* key);

}  // namespace engine

#endif
