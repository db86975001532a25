#ifndef QRA_PLATFORM_MTP_HOST_OBJECT_INFO_H
#define QRA_PLATFORM_MTP_HOST_OBJECT_INFO_H

#include <cstdint>
#include <string>

#include "mtp.h"
#include "platform/mtp/host/transport.h"

struct LIBMTP_file_struct;

namespace mtp {

/// What is known of an object. As the contract has it, but small: a card may hold very many.
struct ObjectInfo {
    bool there = false;  ///< false for one that has vanished
    int file_type = 0;
    int width = 0;
    int height = 0;
    int modified_time = 0;
    uint32_t storage = 0;
    uint64_t size = 0;
    std::string name;  ///< short enough for the contract
};

/// From what libmtp and the device tell.
ObjectInfo object_info(const LIBMTP_file_struct& file, const Transport::Pixels& pixels);

/// In the form of the contract. `told` is all 0 before.
void tell(const ObjectInfo& info, mtp_object_info& told);

}  // namespace mtp

#endif
