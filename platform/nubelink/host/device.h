#ifndef QRA_NUBELINK_DEVICE_H
#define QRA_NUBELINK_DEVICE_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "nubelink.h"
#include "platform/nubelink/host/soap_call.h"

namespace nbl {

/// What a device says of itself in its description.
struct DeviceDescription {
    std::string name;
    std::string maker;
    ServiceAddress content_directory;  ///< empty without one
};

/**
 * Reads the description that a server gives at its location.
 *
 * A root device may hold others: the one of the id `device_id` is looked for. Texts are cut at 1,024 bytes.
 *
 * @param document  as it came
 * @param location  where it came from; addresses in it are relative to that
 * @return whether the device is in it and has a content directory that can be spoken to
 */
bool read_device_description(std::string document, const std::string& location, const std::string& device_id,
                             DeviceDescription& description);

}  // namespace nbl

/// A device as it was when it was last announced: immutable, shared by all who hold it.
struct nbl_device_s {
    nbl_device_s(std::string device_id, nbl::DeviceDescription description,
                 std::vector<std::string> addresses);

    const std::string id;
    const nbl::DeviceDescription description;
    const std::vector<std::string> addresses;     ///< numeric; the one that is used first
    const std::vector<const char*> address_list;  ///< the same, for C
};

namespace nbl {

using DevicePtr = std::shared_ptr<nbl_device_s>;

}  // namespace nbl

#endif
