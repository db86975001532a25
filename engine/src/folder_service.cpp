#include "engine/src/folder_service.h"

#include <cstdlib>
#include <memory>
#include <string>

#include "engine/src/folder_request.h"
#include "media_content_admin.h"
#include "platform/support/release.h"

namespace engine {

namespace {

constexpr size_t kMostFolders = 1024;

std::string database_path() {
    char* path = nullptr;
    media_content_admin_database_path(&path);
    const std::unique_ptr<char, support::Release<std::free>> owned(path);
    return path != nullptr ? path : "";
}

}  // namespace

FolderService::FolderService(const EngineParts& parts)
    : clients_(parts.clients), folders_(kMostFolders, database_path()) {
    parts.methods.serve("check_folder_path", this, &FolderService::check_folder_path);
}

void FolderService::check_folder_path(MethodCall call) {
    const char* text = nullptr;
    g_variant_get(call.arguments(), "(&s)", &text);
    std::string error;
    const auto request = parse_folder_request(text, error);
    if (!request) {
        call.refuse(G_DBUS_ERROR_INVALID_ARGS, "check_folder_path: " + error);
        return;
    }
    std::string folder_id;
    if (const auto user = clients_.user_of(call.client())) {
        const FolderKey key = {*user, request->path, request->storage_id};
        if (request->operation == FolderRequest::Operation::kFind) {
            folder_id = folders_.find(key);
        } else if (folders_.add(key, request->folder_id)) {
            folder_id = request->folder_id;
        }
    }
    call.answer(g_variant_new("(s)", folder_id.c_str()));
}

}  // namespace engine
