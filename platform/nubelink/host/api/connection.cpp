// The service and its devices.
#include <cstdlib>

#include "nubelink.h"
#include "platform/nubelink/host/service.h"

using nbl::DevicePtr;
using nbl::Service;

namespace {

/// There is one finder, and nothing in it: its handle is the service's.
bool is_service(const void* handle) {
    return handle == &Service::instance();
}

bool is_wrong(nbl_devicefinder_t finder, int device_class) {
    return !is_service(finder) || device_class != NBL_DEVICE_CLASS_MEDIA_SERVER;
}

/// What nbl_devicefinder_get_device_list() gave a thread last.
struct GivenList {
    std::vector<DevicePtr> owners;
    std::vector<nbl_device_t> handles;
};
thread_local GivenList given_list;

}  // namespace

int nbl_serviceconnector_connect(nbl_serviceconnector_cb callback, void* user_data) {
    return callback == nullptr ? NBL_ERROR_INVALID_PARAMETER
                               : Service::instance().connect(callback, user_data);
}

int nbl_serviceconnector_disconnect(nbl_serviceconnector_cb callback, void* user_data) {
    return Service::instance().disconnect(callback, user_data);
}

int nbl_serviceprovider_get_service_state(nbl_serviceprovider_t provider, int* state) {
    if (!is_service(provider) || state == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *state = Service::instance().connected() ? NBL_SERVICE_STATE_ENABLED : NBL_SERVICE_STATE_DISABLED;
    return NBL_ERROR_NONE;
}

int nbl_serviceprovider_get_devicefinder(nbl_serviceprovider_t provider, nbl_devicefinder_t* finder) {
    if (!is_service(provider) || finder == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    if (!Service::instance().connected()) {
        return NBL_ERROR_NOT_CONNECTED;
    }
    *finder = provider;
    return NBL_ERROR_NONE;
}

int nbl_devicefinder_set_event_callback(nbl_devicefinder_t finder, int device_class,
                                        nbl_devicefinder_event_cb callback, void* user_data) {
    if (is_wrong(finder, device_class)) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    return Service::instance().set_event_callback(callback, user_data);
}

int nbl_devicefinder_refresh(nbl_devicefinder_t finder) {
    return is_service(finder) ? Service::instance().refresh() : NBL_ERROR_INVALID_PARAMETER;
}

int nbl_devicefinder_get_device_list(nbl_devicefinder_t finder, int device_class, nbl_device_t** devices,
                                     int* count) {
    if (is_wrong(finder, device_class) || devices == nullptr || count == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    if (!Service::instance().connected()) {
        return NBL_ERROR_NOT_CONNECTED;
    }
    given_list.owners = Service::instance().device_list();
    given_list.handles.clear();
    for (const DevicePtr& device : given_list.owners) {
        given_list.handles.push_back(device.get());
    }
    given_list.handles.push_back(nullptr);  // So that there is an array for none, too.
    *devices = given_list.handles.data();
    *count = static_cast<int>(given_list.owners.size());
    return NBL_ERROR_NONE;
}

int nbl_devicefinder_get_device(nbl_devicefinder_t finder, int device_class, const char* device_id,
                                nbl_provider_t* provider) {
    if (is_wrong(finder, device_class) || device_id == nullptr || provider == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    if (!Service::instance().connected()) {
        return NBL_ERROR_NOT_CONNECTED;
    }
    nbl_provider_t found = Service::instance().provider(device_id);
    if (found == nullptr) {
        return NBL_ERROR_DEVICE_GONE;
    }
    *provider = found;
    return NBL_ERROR_NONE;
}

int nbl_device_get_id(nbl_device_t device, const char** id) {
    if (device == nullptr || id == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *id = device->id.c_str();
    return NBL_ERROR_NONE;
}

int nbl_device_get_ip_address(nbl_device_t device, const char** address) {
    if (device == nullptr || address == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *address = device->addresses.front().c_str();
    return NBL_ERROR_NONE;
}

int nbl_device_get_ip_address_list(nbl_device_t device, const char* const** addresses, int* count) {
    if (device == nullptr || addresses == nullptr || count == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *addresses = device->address_list.data();
    *count = static_cast<int>(device->address_list.size());
    return NBL_ERROR_NONE;
}

int nbl_device_get_name(nbl_device_t device, const char** name) {
    if (device == nullptr || name == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *name = device->description.name.c_str();
    return NBL_ERROR_NONE;
}

int nbl_device_get_manufacturer_name(nbl_device_t device, const char** name) {
    if (device == nullptr || name == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *name = device->description.maker.c_str();
    return NBL_ERROR_NONE;
}
