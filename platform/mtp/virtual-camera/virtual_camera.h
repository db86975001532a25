#ifndef QRA_PLATFORM_MTP_VIRTUAL_CAMERA_H
#define QRA_PLATFORM_MTP_VIRTUAL_CAMERA_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Transactions of this process with a camera since it was plugged in: of one operation, by its number in
/// PTP, or of all (0). 0 without such a camera.
__attribute__((visibility("default"))) uint64_t virtual_camera_transactions(int bus, int device,
                                                                            int operation);

/// Bytes that a camera sent to this process since it was plugged in. 0 without such a camera.
__attribute__((visibility("default"))) uint64_t virtual_camera_bytes(int bus, int device);

#ifdef __cplusplus
}
#endif

#endif
