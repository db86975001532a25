#ifndef QRA_PLATFORM_MTP_VIRTUAL_CAMERA_PTP_CODES_H
#define QRA_PLATFORM_MTP_VIRTUAL_CAMERA_PTP_CODES_H

#include <cstdint>

/// The numbers of PTP (ISO 15740) and MTP that a camera needs.
namespace virtual_camera {

namespace op {
constexpr uint16_t kGetDeviceInfo = 0x1001;
constexpr uint16_t kOpenSession = 0x1002;
constexpr uint16_t kCloseSession = 0x1003;
constexpr uint16_t kGetStorageIds = 0x1004;
constexpr uint16_t kGetStorageInfo = 0x1005;
constexpr uint16_t kGetObjectHandles = 0x1007;
constexpr uint16_t kGetObjectInfo = 0x1008;
constexpr uint16_t kGetObject = 0x1009;
constexpr uint16_t kGetThumb = 0x100A;
constexpr uint16_t kGetPartialObject = 0x101B;
constexpr uint16_t kGetPartialObject64 = 0x95C1;
constexpr uint16_t kGetObjectPropsSupported = 0x9801;
constexpr uint16_t kGetObjectPropDesc = 0x9802;
constexpr uint16_t kGetObjectPropValue = 0x9803;
constexpr uint16_t kGetObjectPropList = 0x9805;
}  // namespace op

namespace response {
constexpr uint16_t kOk = 0x2001;
constexpr uint16_t kSessionNotOpen = 0x2003;
constexpr uint16_t kOperationNotSupported = 0x2005;
constexpr uint16_t kInvalidStorage = 0x2008;
constexpr uint16_t kInvalidObject = 0x2009;
constexpr uint16_t kNoThumbnail = 0x2010;
constexpr uint16_t kInvalidParent = 0x201A;
constexpr uint16_t kInvalidParameter = 0x201D;
constexpr uint16_t kSessionAlreadyOpen = 0x201E;
}  // namespace response

namespace format {
constexpr uint16_t kUndefined = 0x3000;
constexpr uint16_t kFolder = 0x3001;
constexpr uint16_t kJpeg = 0x3801;
constexpr uint16_t kPng = 0x380B;
}  // namespace format

namespace property {
constexpr uint16_t kStorageId = 0xDC01;
constexpr uint16_t kFormat = 0xDC02;
constexpr uint16_t kSize = 0xDC04;
constexpr uint16_t kFileName = 0xDC07;
constexpr uint16_t kParent = 0xDC0B;
}  // namespace property

namespace container {
constexpr uint16_t kCommand = 1;
constexpr uint16_t kData = 2;
constexpr uint16_t kResponse = 3;
constexpr uint32_t kHeadSize = 12;
}  // namespace container

constexpr uint32_t kRootParent = 0xFFFFFFFF;
constexpr uint32_t kAllStorages = 0xFFFFFFFF;

}  // namespace virtual_camera

#endif
