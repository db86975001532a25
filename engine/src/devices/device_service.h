#ifndef QRA_ENGINE_DEVICE_SERVICE_H
#define QRA_ENGINE_DEVICE_SERVICE_H

#include <list>
#include <memory>

#include "engine/src/devices/device_watch.h"
#include "engine/src/engine_parts.h"

namespace engine {

/**
 * Serves the lists of USB and Blu-ray devices, and tells the clients that bound themselves to their events
 * when a device comes or goes. Devices are watched from the first question on.
 */
class DeviceService {
public:
    explicit DeviceService(const EngineParts& parts);

private:
    /// Clients that are told of events.
    using Bound = std::list<ClientHold>;

    void get_usb_storages(MethodCall call);
    void get_bd_storages(MethodCall call);
    void bind(MethodCall call, Bound& bound);

    DeviceWatch& watch();
    /// Calls back with the call once the devices are known.
    void when_ready(MethodCall call, std::function<void(MethodCall)> ready);
    void tell(const Bound& bound, const char* signal, DeviceEvent event, const Device& device) const;

    GDBusConnection* bus_;
    ClientTable& clients_;
    const SignalSender& signals_;
    Bound usb_bound_;
    Bound bd_bound_;
    std::unique_ptr<DeviceWatch> watch_;
};

}  // namespace engine

#endif
