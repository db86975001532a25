#include "engine/src/client_request.h"

#include <json/json.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/src/json_text.h"

namespace engine {

namespace {

constexpr size_t kLongestRequest = 1024 * 1024;
constexpr int kDeepest = 16;

// Content types, and the media that plug-ins know. Any other type asks for all.
constexpr std::pair<const char*, const char*> kContentTypes[] = {
    {"CONTENT-IMAGE", "image"},    {"CONTENT-360IMAGE", "image"}, {"CONTENT-VIDEO", "video"},
    {"CONTENT-360VIDEO", "video"}, {"CONTENT-MUSIC", "audio"},
};

Json::Value parse(const std::string& text) {
    return text.size() <= kLongestRequest ? parse_json_object(text, kDeepest) : Json::Value();
}

std::string text_of(const Json::Value& object, const char* key) {
    std::string text = json_text_member(object, key);
    return text == "QRA_NULL" ? std::string() : text;
}

std::string media_of(const std::string& content_type) {
    const auto found = std::find_if(std::begin(kContentTypes), std::end(kContentTypes),
                                    [&](const auto& known) { return content_type == known.first; });
    return found == std::end(kContentTypes) ? std::string() : found->second;
}

}  // namespace

std::optional<ListRequest> parse_list_request(const std::string& text) {
    const Json::Value object = parse(text);
    if (object.isNull()) {
        return std::nullopt;
    }
    ListRequest request;
    request.query.container = text_of(object, "qra_source_user_data");
    request.query.content_type = media_of(text_of(object, "qra_contenttype"));
    request.query.category = text_of(object, "qra_category");
    request.query.filter = text_of(object, "qra_filter");
    const Json::Value& owner = object["qra_agent_handle"];
    request.list_owner = owner.isUInt() ? owner.asUInt() : 0;
    const Json::Value& section = object["qra_sectionindex"];
    if (!section.isNull() && (!section.isInt() || section.asInt() < 0)) {
        return std::nullopt;
    }
    request.section = section.isNull() ? 0 : section.asInt();
    return request;
}

std::optional<DetailRequest> parse_detail_request(const std::string& text) {
    const Json::Value object = parse(text);
    if (object.isNull()) {
        return std::nullopt;
    }
    DetailRequest request;
    request.request_id = text_of(object, "qra_detail_request_times");
    request.item_id = text_of(object, "qra_source_user_data");
    const Json::Value& index = object["qra_item_index"];
    if (index.isInt() && index.asInt() >= 0) {
        request.index = static_cast<size_t>(index.asInt());
    }
    return request;
}

std::optional<ActRequest> parse_act_request(const std::string& command, const std::string& text) {
    const Json::Value object = parse(text);
    if (object.isNull()) {
        return std::nullopt;
    }
    ActRequest request;
    request.command = command.empty() ? text_of(object, "qra_command") : command;
    request.request_id = text_of(object, "qra_act_request_times");
    request.item_id = item_id_of(text_of(object, "qra_item_content"));
    const Json::Value& like = object["qra_like"];
    request.like = like.isBool() && like.asBool();
    request.comment = text_of(object, "qra_comment");
    return request;
}

std::string item_id_of(const std::string& item_text) {
    const Json::Value item = parse(item_text);
    return item.isNull() ? std::string() : json_text_member(item, "ID_QRA");
}

}  // namespace engine
