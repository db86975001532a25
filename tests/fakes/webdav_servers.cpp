#include "tests/fakes/webdav_servers.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

constexpr int kTries = 5;
constexpr gint64 kSecondsToStart = 60;
constexpr unsigned kMicrosecondsBetweenLooks = 5000;
constexpr char kModules[] = "/usr/lib/apache2/modules";

[[noreturn]] void give_up(const std::string& what) {
    std::fprintf(stderr, "test server: %s\n", what.c_str());
    std::abort();
}

/// A socket of this machine's own network, closed at the end.
class LocalSocket {
public:
    explicit LocalSocket(int port) : fd_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address_.sin_family = AF_INET;
        address_.sin_port = htons(static_cast<uint16_t>(port));
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    }
    ~LocalSocket() { close(fd_); }
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;

    bool connects() { return connect(fd_, address(), sizeof address_) == 0; }
    int bound_port() {
        socklen_t size = sizeof address_;
        const bool bound = bind(fd_, address(), size) == 0 && getsockname(fd_, address(), &size) == 0;
        return bound ? ntohs(address_.sin_port) : 0;
    }

private:
    sockaddr* address() { return reinterpret_cast<sockaddr*>(&address_); }

    int fd_;
    sockaddr_in address_{};
};

void die_with_parent(void*) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

/// A server that root starts gives its rights up, and still has to reach what it serves.
void open_to_all(const std::string& directory) {
    std::filesystem::permissions(directory, std::filesystem::perms(0755));
}

}  // namespace

WebDavServer::WebDavServer() {
    open_to_all(served_.path());
    open_to_all(own_.path());
}

WebDavServer::~WebDavServer() {
    if (process_) {
        g_subprocess_send_signal(process_, SIGTERM);
        g_subprocess_wait(process_, nullptr, nullptr);
        g_object_unref(process_);
    }
}

void WebDavServer::write(const std::string& name, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
    served_.write(name, content);
}

int WebDavServer::free_port() {
    return LocalSocket(0).bound_port();
}

bool WebDavServer::run(const std::vector<std::string>& command, int port) {
    std::vector<const char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(argument.c_str());
    }
    arguments.push_back(nullptr);
    GSubprocessLauncher* launcher = g_subprocess_launcher_new(
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE | G_SUBPROCESS_FLAGS_STDERR_SILENCE));
    g_subprocess_launcher_set_child_setup(launcher, die_with_parent, nullptr, nullptr);
    GError* error = nullptr;
    process_ = g_subprocess_launcher_spawnv(launcher, arguments.data(), &error);
    g_object_unref(launcher);
    if (!process_) {
        give_up(error->message);
    }
    const gint64 deadline = g_get_monotonic_time() + kSecondsToStart * G_USEC_PER_SEC;
    while (!LocalSocket(port).connects()) {
        const bool ended = g_subprocess_get_identifier(process_) == nullptr;
        if (ended || g_get_monotonic_time() > deadline) {
            g_subprocess_force_exit(process_);
            g_subprocess_wait(process_, nullptr, nullptr);
            g_clear_object(&process_);
            return false;
        }
        g_usleep(kMicrosecondsBetweenLooks);
    }
    url_ = "http://127.0.0.1:" + std::to_string(port) + "/";
    return true;
}

ApacheServer::ApacheServer(const std::string& user, const std::string& password) {
    // {SHA} is all that the password file needs here, and the checksum that GLib has.
    if (!user.empty()) {
        GChecksum* sum = g_checksum_new(G_CHECKSUM_SHA1);
        g_checksum_update(sum, reinterpret_cast<const guchar*>(password.data()),
                          static_cast<gssize>(password.size()));
        guint8 digest[20];
        gsize size = sizeof digest;
        g_checksum_get_digest(sum, digest, &size);
        g_checksum_free(sum);
        char* text = g_base64_encode(digest, size);
        own_.write("users", user + ":{SHA}" + text + "\n");
        g_free(text);
    }
    own_.write("mime.types",
               "image/jpeg jpg\nimage/png png\nvideo/mp4 mp4\naudio/mpeg mp3\ntext/plain txt\n");
    for (int i = 0; i < kTries; ++i) {
        const int port = free_port();
        std::string text = "ServerRoot " + own_.path() + "\nDefaultRuntimeDir " + own_.path() + "\nPidFile " +
                           own_.path("pid") + "\nMutex file:" + own_.path() + "\nErrorLog " +
                           own_.path("log") +
                           "\nServerName localhost\nListen 127.0.0.1:" + std::to_string(port) +
                           "\nUser #65534\nGroup #65534\nStartServers 1\n";
        for (const char* module : {"mpm_event", "authn_core", "authn_file", "auth_basic", "authz_core",
                                   "authz_user", "dav", "dav_fs", "mime"}) {
            text += std::string("LoadModule ") + module + "_module " + kModules + "/mod_" + module + ".so\n";
        }
        text += "TypesConfig " + own_.path("mime.types") + "\nDavLockDB " + own_.path("lock") +
                "\nDocumentRoot " + path() + "\n<Directory " + path() + ">\nDav On\n";
        text += user.empty() ? "Require all granted\n"
                             : "AuthType Basic\nAuthName test\nAuthUserFile " + own_.path("users") +
                                   "\nRequire valid-user\n";
        text += "</Directory>\n";
        if (run({"apache2", "-f", own_.write("conf", text), "-DFOREGROUND"}, port)) {
            return;
        }
    }
    give_up("apache2 does not start: " + own_.read("log"));
}

RcloneServer::RcloneServer() {
    for (int i = 0; i < kTries; ++i) {
        const int port = free_port();
        if (run({"rclone", "serve", "webdav", path(), "--addr", "127.0.0.1:" + std::to_string(port),
                 "--dir-cache-time", "1h", "--config", own_.path("rclone.conf")},
                port)) {
            return;
        }
    }
    give_up("rclone does not start");
}
