#ifndef QRA_TESTS_FAKES_RECORDING_MAKER_H
#define QRA_TESTS_FAKES_RECORDING_MAKER_H

#include <cstdint>
#include <string>
#include <vector>

/// What a test wants a recording to be.
struct SampleRecording {
    std::string title = "News";
    std::string channel_name = "Channel One";
    std::string channel_num = "1-1";
    int duration = 60000;  ///< milliseconds
    int start_time = 1620288000;
    std::uint64_t bytes = 188;  ///< of the stream
    bool finished = true;
    bool locked = false;
    std::vector<std::string> companions;  ///< extensions beside ".inf", such as ".ss"
};

/// Makes a recording with its info file and its companions, as a recorder leaves them; false with errno set
/// if the system refuses a file.
bool make_recording(const std::string& path, const SampleRecording& recording);

#endif
