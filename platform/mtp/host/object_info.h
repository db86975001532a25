#ifndef QRA_PLATFORM_MTP_HOST_OBJECT_INFO_H
#define QRA_PLATFORM_MTP_HOST_OBJECT_INFO_H

#include "mtp.h"
#include "platform/mtp/host/transport.h"

struct LIBMTP_file_struct;

namespace mtp {

/// What the contract tells of an object, from what libmtp and the device do.
mtp_object_info object_info(const LIBMTP_file_struct& file, const Transport::Pixels& pixels);

}  // namespace mtp

#endif
