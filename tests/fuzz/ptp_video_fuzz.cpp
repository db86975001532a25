// What a camera's film tells of being a 360-degree one: boxes of any bytes, in a film that may be cut.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "libqra-agent/source/ptp/qra_ptp_video_360.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Of each box at most two parts of the head, an id and a payload are asked for.
    constexpr int kMostPieces = 4 * kPTPMostBoxes;
    int pieces = 0;
    const auto read_piece = [&](unsigned long long offset, unsigned length, std::string& piece) {
        if (++pieces > kMostPieces) {
            std::abort();
        }
        if (offset > size || size - offset < length) {
            return false;
        }
        piece.assign(reinterpret_cast<const char*>(data) + offset, length);
        return true;
    };
    bool is_360 = false;
    int stitch_type = 0;
    for (const unsigned long long told_size : {static_cast<unsigned long long>(size), ~0ULL}) {
        pieces = 0;
        qra_ptp_read_video_makernote(read_piece, told_size, &is_360, &stitch_type);
        pieces = 0;
        qra_ptp_read_video_description(read_piece, told_size, &is_360, &stitch_type);
    }
    return 0;
}
