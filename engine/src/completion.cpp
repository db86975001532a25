#include "engine/src/completion.h"

#include <json/json.h>

#include "engine/src/json_text.h"

namespace engine {

namespace {

Json::Value answer(uint32_t id, Event event) {
    Json::Value value(Json::objectValue);
    value["qra_event_type"] = static_cast<int>(event);
    value["qra_handle_id"] = id;
    return value;
}

/// What a client that sees only the detail's or the act's own text reads of a failure.
std::string failure_text(const std::string& reason) {
    Json::Value value(Json::objectValue);
    value["ERROR_TEXT"] = reason;
    return to_json_text(value);
}

}  // namespace

std::string list_ready(uint32_t id, int32_t section, const std::string& object_name) {
    Json::Value value = answer(id, Event::kListReady);
    value["qra_sectionindex"] = section;
    value["qra_result_list_block_name"] = object_name;
    return to_json_text(value);
}

std::string list_empty(uint32_t id, int32_t section) {
    Json::Value value = answer(id, Event::kListEmpty);
    value["qra_sectionindex"] = section;
    return to_json_text(value);
}

std::string list_failed(uint32_t id, int32_t section, const std::string& reason) {
    Json::Value value = answer(id, Event::kListFailed);
    value["qra_sectionindex"] = section;
    value["qra_error_text"] = reason;
    return to_json_text(value);
}

std::string detail_answer(uint32_t id, Event event, const std::string& request_id, const std::string& text) {
    Json::Value value = answer(id, event);
    value["qra_detail_request_times"] = request_id;
    const bool has_failed = event == Event::kDetailFailed;
    value["qra_result_detail_json"] = has_failed ? failure_text(text) : text;
    if (has_failed) {
        value["qra_error_text"] = text;
    }
    return to_json_text(value);
}

std::string act_answer(uint32_t id, Event event, const std::string& request_id, const std::string& text) {
    Json::Value value = answer(id, event);
    value["qra_act_request_times"] = request_id;
    const bool has_failed = event == Event::kActFailed;
    value["act_command_and_return_data"] = has_failed ? failure_text(text) : text;
    value["qra_file_transfer_signal"] = event == Event::kActUpdate ? 1 : 0;
    if (has_failed) {
        value["qra_error_text"] = text;
    }
    return to_json_text(value);
}

std::string plain_answer(uint32_t id, Event event) {
    return to_json_text(answer(id, event));
}

}  // namespace engine
