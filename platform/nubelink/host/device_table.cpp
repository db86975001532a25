#include "platform/nubelink/host/device_table.h"

#include <algorithm>

namespace nbl {

namespace {

template <typename Devices>
auto find_in(Devices& devices, std::string_view device_id) {
    return std::find_if(devices.begin(), devices.end(),
                        [&](const DevicePtr& device) { return device->id == device_id; });
}

}  // namespace

DevicePtr DeviceTable::find(std::string_view device_id) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = find_in(devices_, device_id);
    return found == devices_.end() ? nullptr : *found;
}

std::vector<DevicePtr> DeviceTable::list() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return devices_;
}

void DeviceTable::wait_for_first_search(std::chrono::milliseconds most) const {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, most, [this] { return searched_; });
}

bool DeviceTable::put(DevicePtr device) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = find_in(devices_, device->id);
    if (found != devices_.end()) {
        *found = std::move(device);
        return false;
    }
    devices_.push_back(std::move(device));
    return true;
}

DevicePtr DeviceTable::remove(std::string_view device_id) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = find_in(devices_, device_id);
    if (found == devices_.end()) {
        return nullptr;
    }
    DevicePtr removed = std::move(*found);
    devices_.erase(found);
    return removed;
}

void DeviceTable::set_searched(bool searched) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        searched_ = searched;
    }
    changed_.notify_all();
}

void DeviceTable::clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    devices_.clear();
}

}  // namespace nbl
