#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tests/fakes/recording_maker.h"

int main(int argc, char** argv) {
    SampleRecording recording;
    std::string path;
    CLI::App app("Make a recording with the files that a recorder leaves beside it.", "make-recording");
    app.add_option("PATH", path, "The recording, such as news.srf")->required();
    app.add_option("--title", recording.title, "Title of the program")->capture_default_str();
    app.add_option("--channel-name", recording.channel_name)->capture_default_str();
    app.add_option("--channel-num", recording.channel_num)->capture_default_str();
    app.add_option("--duration", recording.duration, "Milliseconds")->capture_default_str();
    app.add_option("--start-time", recording.start_time, "Seconds since 1970")->capture_default_str();
    app.add_option("--bytes", recording.bytes, "Size of the stream")->capture_default_str();
    app.add_option("--companion", recording.companions,
                   "An extension of a further file beside it, such as .ss");
    app.add_flag_callback(
        "--in-progress", [&recording] { recording.finished = false; }, "It is still being recorded");
    app.add_flag("--locked", recording.locked, "Its viewer has to give a code first");
    CLI11_PARSE(app, argc, argv);
    if (!make_recording(path, recording)) {
        std::fprintf(stderr, "make-recording: %s: %s\n", path.c_str(), std::strerror(errno));
        return 2;
    }
    return 0;
}
