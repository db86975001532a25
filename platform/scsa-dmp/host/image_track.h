#ifndef QRA_SCSA_DMP_IMAGE_TRACK_H
#define QRA_SCSA_DMP_IMAGE_TRACK_H

#include "platform/scsa-dmp/host/item_tables.h"

namespace scsa_host {

/// Where the samples of the track of a number lie, by the payload of the "moov" box; empty if there is no
/// such track, or its tables do not agree.
Extents track_samples(ByteSource& source, ByteRange movie, uint32_t number);

}  // namespace scsa_host

#endif
