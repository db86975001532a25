#ifndef QRA_NUBELINK_DEVICE_TABLE_H
#define QRA_NUBELINK_DEVICE_TABLE_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/nubelink/host/device.h"

namespace nbl {

/**
 * The devices that are there, in the order in which they came. The worker changes it, any thread reads; one
 * mutex covers all of it and is held across no call.
 */
class DeviceTable {
public:
    DevicePtr find(std::string_view device_id) const;
    std::vector<DevicePtr> list() const;
    /// Waits until the first search is over, or until `most` has passed.
    void wait_for_first_search(std::chrono::milliseconds most) const;

    /// Adds the device, or puts it in the place of the one with its id. True if it was added.
    bool put(DevicePtr device);
    /// Null if there is none.
    DevicePtr remove(std::string_view device_id);
    /// A search begins, or the first search is over.
    void set_searched(bool searched);
    void clear();

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    bool searched_ = false;           // by mutex_
    std::vector<DevicePtr> devices_;  // by mutex_
};

}  // namespace nbl

#endif
