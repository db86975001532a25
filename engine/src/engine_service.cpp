#include "engine/src/engine_service.h"

#include <utility>

#include "engine/src/engine_log.h"
#include "engine/src/object_path.h"
#include "engine_interface.h"
#include "platform/support/glib_ptr.h"

namespace engine {

namespace {

void start_server(MethodCall call) {
    call.answer(g_variant_new("(s)", "QRA_SERVER_START_SUCCESS"));
}

}  // namespace

EngineService::EngineService(GDBusConnection* bus, EngineSetup setup, std::function<void()> used)
    : bus_(bus),
      used_(std::move(used)),
      setup_(std::move(setup)),
      clients_(bus),
      signals_(bus),
      parts_{bus, methods_, clients_, signals_, setup_},
      connections_(parts_),
      folders_(parts_),
      devices_(parts_),
      scans_(parts_),
      lists_(parts_, connections_),
      items_(parts_, connections_, lists_) {
    methods_.serve("start_server", &start_server);
}

EngineService::~EngineService() {
    if (registration_ != 0) {
        g_dbus_connection_unregister_object(bus_, registration_);
    }
}

bool EngineService::offer() {
    static const GDBusInterfaceVTable kTable = {&EngineService::on_call, nullptr, nullptr, {}};
    glib::ErrorOut error;
    registration_ = g_dbus_connection_register_object(
        bus_, kObjectPath, const_cast<GDBusInterfaceInfo*>(&com_morva_qra_engine_interface), &kTable, this,
        nullptr, error);
    if (registration_ == 0) {
        ENGINE_WARNING("cannot offer %s: %s", kObjectPath, error.message());
    }
    return registration_ != 0;
}

void EngineService::on_call(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                            GDBusMethodInvocation* call, void* self) {
    auto* service = static_cast<EngineService*>(self);
    service->used_();
    service->methods_.dispatch(MethodCall(call));
}

}  // namespace engine
