#ifndef QRA_ENGINE_FOLDER_REQUEST_H
#define QRA_ENGINE_FOLDER_REQUEST_H

#include <optional>
#include <string>

namespace engine {

/// The argument of "check_folder_path".
struct FolderRequest {
    enum class Operation { kAdd = 0, kFind = 1 };

    Operation operation;
    std::string path;        ///< the folder's directory, absolute
    std::string storage_id;  ///< not empty
    std::string folder_id;   ///< what to add; empty for kFind
};

/**
 * Reads the JSON text of a request. Nothing, and the reason in `error`, for a text that is no such request,
 * or that is longer than any honest one.
 */
std::optional<FolderRequest> parse_folder_request(const std::string& text, std::string& error);

}  // namespace engine

#endif
