#include "engine/src/engine_service.h"

#include <cstring>
#include <utility>

#include "engine/src/bus_call.h"
#include "engine/src/engine_log.h"
#include "engine/src/folder_request.h"
#include "engine/src/glib_ptr.h"
#include "engine_interface.h"

namespace engine {

namespace {

constexpr char kObjectPath[] = "/com/morva/qra/engine";
constexpr size_t kMostFolders = 1024;

}  // namespace

struct EngineService::Method {
    const char* name;
    Handler handler;
};

const EngineService::Method EngineService::kMethods[] = {
    {"start_server", &EngineService::start_server},
    {"check_folder_path", &EngineService::check_folder_path},
};

EngineService::EngineService(std::function<void()> used) : used_(std::move(used)), folders_(kMostFolders) {}

EngineService::~EngineService() {
    if (registration_ != 0) {
        g_dbus_connection_unregister_object(connection_, registration_);
        g_object_unref(connection_);
    }
}

bool EngineService::offer(GDBusConnection* connection) {
    static const GDBusInterfaceVTable kTable = {&EngineService::on_call, nullptr, nullptr, {}};
    ErrorOut error;
    registration_ = g_dbus_connection_register_object(
        connection, kObjectPath, const_cast<GDBusInterfaceInfo*>(&com_morva_qra_engine_interface), &kTable,
        this, nullptr, error);
    if (registration_ == 0) {
        ENGINE_WARNING("cannot offer %s: %s", kObjectPath, error.message());
        return false;
    }
    connection_ = G_DBUS_CONNECTION(g_object_ref(connection));
    return true;
}

void EngineService::on_call(GDBusConnection*, const char*, const char*, const char*, const char* method,
                            GVariant* arguments, GDBusMethodInvocation* call, void* self) {
    auto* service = static_cast<EngineService*>(self);
    service->used_();
    for (const Method& known : kMethods) {
        if (std::strcmp(known.name, method) == 0) {
            (service->*known.handler)(call, arguments);
            return;
        }
    }
    g_dbus_method_invocation_return_error(call, G_DBUS_ERROR, G_DBUS_ERROR_NOT_SUPPORTED,
                                          "The content engine does not support %s", method);
}

void EngineService::start_server(GDBusMethodInvocation* call, GVariant*) {
    g_dbus_method_invocation_return_value(call, g_variant_new("(s)", "QRA_SERVER_START_SUCCESS"));
}

void EngineService::check_folder_path(GDBusMethodInvocation* call, GVariant* arguments) {
    const char* text = nullptr;
    g_variant_get(arguments, "(&s)", &text);
    std::string error;
    const auto request = parse_folder_request(text, error);
    if (!request) {
        g_dbus_method_invocation_return_error(call, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                              "check_folder_path: %s", error.c_str());
        return;
    }
    std::string folder_id;
    if (const auto user = user_of(g_dbus_method_invocation_get_sender(call))) {
        const FolderKey key = {*user, request->path, request->storage_id};
        if (request->operation == FolderRequest::Operation::kFind) {
            folder_id = folders_.find(key);
        } else if (folders_.add(key, request->folder_id)) {
            folder_id = request->folder_id;
        }
    }
    g_dbus_method_invocation_return_value(call, g_variant_new("(s)", folder_id.c_str()));
}

std::optional<uid_t> EngineService::user_of(const std::string& sender) {
    if (sender == last_sender_) {
        return last_user_;
    }
    ErrorOut error;
    const auto user =
        ask_bus(connection_, "GetConnectionUnixUser", g_variant_new("(s)", sender.c_str()), error);
    if (!user) {
        ENGINE_INFO("cannot tell the user of %s: %s", sender.c_str(), error.message());
        return std::nullopt;
    }
    last_user_ = *user;
    last_sender_ = sender;
    return last_user_;
}

}  // namespace engine
