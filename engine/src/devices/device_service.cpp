#include "engine/src/devices/device_service.h"

#include <qra/qra_types.h>

#include <algorithm>
#include <utility>

namespace engine {

namespace {

void drop(std::list<ClientHold>& bound, const std::string& client) {
    bound.remove_if([&](const ClientHold& hold) { return hold.client() == client; });
}

void answer_list(MethodCall& call, const Devices& devices) {
    call.answer(g_variant_new("(us)", static_cast<uint32_t>(QRA_ERROR_NONE), devices_text(devices).c_str()));
}

}  // namespace

DeviceService::DeviceService(const EngineParts& parts)
    : bus_(parts.bus), clients_(parts.clients), signals_(parts.signals) {
    parts.methods.serve("get_usb_storages", this, &DeviceService::get_usb_storages);
    parts.methods.serve("get_bd_storages", this, &DeviceService::get_bd_storages);
    parts.methods.serve("bind_usb_event", [this](MethodCall call) { bind(std::move(call), usb_bound_); });
    parts.methods.serve("bind_bd_event", [this](MethodCall call) { bind(std::move(call), bd_bound_); });
    clients_.subscribe([this](const std::string& client) {
        drop(usb_bound_, client);
        drop(bd_bound_, client);
    });
}

void DeviceService::get_usb_storages(MethodCall call) {
    uint32_t kind = 0;
    g_variant_get(call.arguments(), "(u)", &kind);
    if (kind > static_cast<uint32_t>(DeviceKind::kCamera)) {
        call.answer(
            g_variant_new("(us)", static_cast<uint32_t>(QRA_ERROR_INVALID_PARAM), devices_text({}).c_str()));
        return;
    }
    when_ready(std::move(call), [this, kind](MethodCall ready) {
        answer_list(ready, watch_->usb_devices(static_cast<DeviceKind>(kind)));
    });
}

void DeviceService::get_bd_storages(MethodCall call) {
    when_ready(std::move(call), [this](MethodCall ready) { answer_list(ready, watch_->optical_drives()); });
}

void DeviceService::bind(MethodCall call, Bound& bound) {
    uint32_t wanted = 0;
    g_variant_get(call.arguments(), "(u)", &wanted);
    drop(bound, call.client());
    if (wanted != 1) {
        const uint32_t result = wanted == 0 ? QRA_ERROR_NONE : QRA_ERROR_INVALID_PARAM;
        call.answer(g_variant_new("(u)", result));
        return;
    }
    bound.push_back(clients_.hold(call.client()));
    // After the answer the client hears of everything.
    when_ready(std::move(call), [](MethodCall ready) {
        ready.answer(g_variant_new("(u)", static_cast<uint32_t>(QRA_ERROR_NONE)));
    });
}

DeviceWatch& DeviceService::watch() {
    if (!watch_) {
        watch_ = std::make_unique<DeviceWatch>(
            bus_, DeviceWatch::Listeners{[this](DeviceEvent event, const Device& device) {
                                             tell(usb_bound_, "qra_usb_notification", event, device);
                                         },
                                         [this](DeviceEvent event, const Device& device) {
                                             tell(bd_bound_, "qra_bd_notification", event, device);
                                         }});
    }
    return *watch_;
}

void DeviceService::when_ready(MethodCall call, std::function<void(MethodCall)> ready) {
    const auto kept = std::make_shared<MethodCall>(std::move(call));
    watch().when_ready([kept, ready = std::move(ready)] { ready(std::move(*kept)); });
}

void DeviceService::tell(const Bound& bound, const char* signal, DeviceEvent event,
                         const Device& device) const {
    const std::string text = notification_text(event, device);
    for (const ClientHold& hold : bound) {
        signals_.send_to(hold.client(), signal, g_variant_new("(s)", text.c_str()));
    }
}

}  // namespace engine
