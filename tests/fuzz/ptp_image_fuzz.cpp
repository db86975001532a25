// What a camera's picture tells of being a 360-degree one: maker note and XMP packet of any bytes.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "libqra-agent/source/ptp/qra_ptp_image_360.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Opened to read; the stream does not write to the bytes.
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        fmemopen(const_cast<uint8_t*>(data), size, "r"), &std::fclose);
    if (file == nullptr) {
        return 0;
    }
    bool is_360 = false;
    int stitch_type = 0;
    qra_ptp_read_image_makernote(file.get(), &is_360, &stitch_type);
    std::rewind(file.get());
    qra_ptp_has_panorama_packet(file.get());
    return 0;
}
