#ifndef QRA_PLATFORM_MTP_VIRTUAL_CAMERA_DATASET_H
#define QRA_PLATFORM_MTP_VIRTUAL_CAMERA_DATASET_H

#include <cstdint>
#include <string>
#include <vector>

namespace virtual_camera {

/// Bytes in the order of PTP on USB.
class Dataset {
public:
    Dataset& u8(uint8_t value);
    Dataset& u16(uint16_t value);
    Dataset& u32(uint32_t value);
    Dataset& u64(uint64_t value);
    /// At most 254 units of UTF-16; what is no UTF-8 becomes question marks.
    Dataset& text(const std::string& utf8);
    /// "YYYYMMDDThhmmss" in local time; no text for 0.
    Dataset& date(int64_t seconds);
    Dataset& u16_array(const std::vector<uint16_t>& values);
    Dataset& u32_array(const std::vector<uint32_t>& values);

    std::vector<uint8_t>& bytes() { return bytes_; }

private:
    std::vector<uint8_t> bytes_;
};

}  // namespace virtual_camera

#endif
