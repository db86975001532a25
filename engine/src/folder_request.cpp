#include "engine/src/folder_request.h"

#include <json/json.h>

#include <climits>

#include "engine/src/json_text.h"

namespace engine {

namespace {

constexpr size_t kLongestId = 256;
constexpr int kDeepest = 8;
// Each byte of the path may be written as an escape of six characters.
constexpr size_t kLongestRequest = 6 * (PATH_MAX + 2 * kLongestId);

bool is_clean_text(const Json::Value& value) {
    return value.isString() && value.asString().find('\0') == std::string::npos;
}

bool read_operation(const Json::Value& value, FolderRequest& request) {
    if (!value.isInt() || value.asInt() < 0 || value.asInt() > 1) {
        return false;
    }
    request.operation = static_cast<FolderRequest::Operation>(value.asInt());
    return true;
}

bool read_key(const Json::Value& value, FolderRequest& request) {
    if (!is_clean_text(value)) {
        return false;
    }
    const std::string key = value.asString();
    const size_t slash = key.rfind('/');
    if (slash == std::string::npos || slash == 0 || key[0] != '/') {
        return false;
    }
    request.path = key.substr(0, slash);
    request.storage_id = key.substr(slash + 1);
    return request.path.size() < PATH_MAX && !request.storage_id.empty() &&
           request.storage_id.size() <= kLongestId;
}

bool read_folder_id(const Json::Value& value, FolderRequest& request) {
    if (request.operation == FolderRequest::Operation::kFind) {
        return true;
    }
    if (!is_clean_text(value)) {
        return false;
    }
    request.folder_id = value.asString();
    return !request.folder_id.empty() && request.folder_id.size() <= kLongestId;
}

}  // namespace

std::optional<FolderRequest> parse_folder_request(const std::string& text, std::string& error) {
    FolderRequest request = {};
    const Json::Value object =
        text.size() <= kLongestRequest ? parse_json_object(text, kDeepest) : Json::Value();
    if (object.isNull()) {
        error = "the request is no JSON object";
    } else if (!read_operation(object["OPERATION_TYPE"], request)) {
        error = "OPERATION_TYPE is neither 0 nor 1";
    } else if (!read_key(object["FOLDER_PATH"], request)) {
        error = "FOLDER_PATH is not an absolute path, a slash and a storage id";
    } else if (!read_folder_id(object["FOLDER_ID"], request)) {
        error = "FOLDER_ID is not the id of a folder";
    } else {
        return request;
    }
    return std::nullopt;
}

}  // namespace engine
