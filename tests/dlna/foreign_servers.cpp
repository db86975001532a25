#include "tests/dlna/foreign_servers.h"

#include <signal.h>
#include <sys/prctl.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

void die_with_parent(void*) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

bool has_line(const std::string& log, const std::string& text) {
    std::ifstream lines(log);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.find(text) != std::string::npos) {
            return true;
        }
    }
    return false;
}

/// Waits until a program has written a line with `text` into its log.
void wait_for_line(const std::string& log, const std::string& text) {
    const gint64 deadline = g_get_monotonic_time() + 60 * G_USEC_PER_SEC;
    while (!has_line(log, text)) {
        if (g_get_monotonic_time() > deadline) {
            std::fprintf(stderr, "%s does not say: %s\n", log.c_str(), text.c_str());
            std::abort();
        }
        g_usleep(10000);
    }
}

}  // namespace

ForeignServer::~ForeignServer() {
    if (process_ != nullptr) {
        g_subprocess_send_signal(process_, SIGTERM);
        g_subprocess_wait(process_, nullptr, nullptr);
        g_object_unref(process_);
    }
}

void ForeignServer::serve_fixtures() {
    const std::pair<const char*, std::vector<const char*>> kFiles[] = {
        {"pictures", {"photo.jpg", "burst.jpg", "drawing.png"}},
        {"music", {"song.mp3", "song.flac", "song.ogg"}},
        {"video", {}},
    };
    for (const auto& [folder, names] : kFiles) {
        std::filesystem::create_directory(path(folder));
        for (const char* name : names) {
            std::filesystem::copy(std::string(QRA_FIXTURES) + "/" + folder + "/" + name,
                                  path(folder) + "/" + name);
        }
    }
}

void ForeignServer::run(const std::vector<std::string>& command) {
    std::vector<const char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(argument.c_str());
    }
    arguments.push_back(nullptr);
    GSubprocessLauncher* launcher = g_subprocess_launcher_new(
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE | G_SUBPROCESS_FLAGS_STDERR_SILENCE));
    g_subprocess_launcher_set_child_setup(launcher, die_with_parent, nullptr, nullptr);
    for (const char* variable :
         {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
        g_subprocess_launcher_setenv(launcher, variable, own_.path().c_str(), TRUE);
    }
    GError* error = nullptr;
    process_ = g_subprocess_launcher_spawnv(launcher, arguments.data(), &error);
    g_object_unref(launcher);
    if (process_ == nullptr) {
        std::fprintf(stderr, "%s does not start: %s\n", command[0].c_str(), error->message);
        std::abort();
    }
}

ReadyMedia::ReadyMedia() {
    serve_fixtures();
    const std::string id(kId);
    const std::string conf = own_.write(
        "conf", "port=8200\nnetwork_interface=lo\nfriendly_name=ReadyMedia\nmedia_dir=" + path() +
                    "\ndb_dir=" + own_.path("db") + "\nlog_dir=" + own_.path("log") +
                    "\ninotify=yes\nnotify_interval=2\nuuid=" + id.substr(id.find(':') + 1) + "\n");
    std::filesystem::create_directory(own_.path("db"));
    std::filesystem::create_directory(own_.path("log"));
    run({"minidlnad", "-S", "-f", conf, "-P", own_.path("pid")});
    // While it looks at its files, a question may fail, and may make it lose a file for good.
    wait_for_line(own_.path("log") + "/minidlna.log", "Finished parsing playlists");
}

Rygel::Rygel() {
    serve_fixtures();
    own_.write("rygel.conf",
               "[general]\nipv6=false\nenable-transcoding=false\n"
               "media-engine=librygel-media-engine-gst.so\ninterface=lo\nport=0\nallow-upload=true\n"
               "allow-deletion=true\npicture-upload-folder=" +
                   path("pictures") + "\nmusic-upload-folder=" + path("music") + "\nvideo-upload-folder=" +
                   path("video") + "\n\n[MediaExport]\nenabled=true\ntitle=Rygel\nuris=" + path() +
                   "\nmonitor-changes=true\nmonitor-grace-timeout=1\n");
    run({"rygel"});
}
