#include "tests/fakes/recording_maker.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "svc_pvr.h"

namespace {

constexpr std::size_t kPacket = 188;
constexpr char kSyncByte = 0x47;

/// A transport stream of empty packets.
bool write_stream(const std::string& path, std::uint64_t bytes) {
    std::string packets(kPacket * 512, '\0');
    for (std::size_t at = 0; at < packets.size(); at += kPacket) {
        packets[at] = kSyncByte;
    }
    std::ofstream file(path, std::ios::binary);
    for (std::uint64_t rest = bytes; file && rest > 0;) {
        const std::uint64_t count = std::min<std::uint64_t>(rest, packets.size());
        file.write(packets.data(), static_cast<std::streamsize>(count));
        rest -= count;
    }
    return static_cast<bool>(file.flush());
}

bool write_companions(const std::string& path, const SampleRecording& recording) {
    const std::string stem = path.substr(0, path.rfind('.'));
    return std::all_of(
        recording.companions.begin(), recording.companions.end(), [&stem](const std::string& extension) {
            return static_cast<bool>(std::ofstream(stem + extension) << "companion" << std::flush);
        });
}

bool write_info(const std::string& path, const SampleRecording& recording) {
    std::string channel_name = recording.channel_name;
    std::string channel_num = recording.channel_num;
    pvr_file_info_s info{};
    strncpy(info.title, recording.title.c_str(), sizeof(info.title) - 1);
    info.channel_name = channel_name.data();
    info.channel_num = channel_num.data();
    info.duration = recording.duration;
    info.start_time = recording.start_time;
    info.finished = recording.finished;
    info.content_lock = recording.locked;
    return svc_pvr_set_pvr_file_info_ex(path.c_str(), &info) == SVC_PVR_ERROR_NONE;
}

}  // namespace

bool make_recording(const std::string& path, const SampleRecording& recording) {
    return write_stream(path, recording.bytes) && write_companions(path, recording) &&
           write_info(path, recording);
}
