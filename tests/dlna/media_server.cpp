#include "tests/dlna/media_server.h"

#include <fcntl.h>
#include <glib.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kPatience = 60000;  // milliseconds

std::string quoted(const std::string& word) {
    char* text = g_shell_quote(word.c_str());
    std::string result = text;
    g_free(text);
    return result;
}

}  // namespace

void MediaServer::give_up(const std::string& what) {
    int status = 0;
    const bool has_ended = pid_ > 0 && waitpid(pid_, &status, WNOHANG) == pid_;
    const std::string end = has_ended ? "; it has ended, wait status " + std::to_string(status) : "";
    std::fprintf(stderr, "media server: asked %s, %s%s\n", asked_.c_str(), what.c_str(), end.c_str());
    std::abort();
}

bool have_own_network() {
    return std::getenv("QRA_OWN_NETWORK") != nullptr;
}

MediaServer::MediaServer(const std::vector<std::string>& options) {
    if (!have_own_network()) {
        give_up("the test is not in a network of its own");
    }
    std::vector<char*> arguments = {const_cast<char*>(QRA_MEDIA_SERVER)};
    for (const std::string& option : options) {
        arguments.push_back(const_cast<char*>(option.c_str()));
        if (option.rfind("--address=", 0) == 0) {
            address_ = option.substr(10);
        }
    }
    arguments.push_back(nullptr);
    GError* error = nullptr;
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_CLOEXEC_PIPES);
    if (!g_spawn_async_with_pipes(nullptr, arguments.data(), nullptr, flags, nullptr, nullptr, &pid_, &to_,
                                  &from_, nullptr, &error)) {
        give_up(error->message);
    }
    const std::string answer = read_line();
    port_ = std::atoi(answer.substr(answer.find(' ') + 1).c_str());
}

MediaServer::~MediaServer() {
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
    close(to_);
    close(from_);
}

void MediaServer::kill() {
    ::kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

std::string MediaServer::read_line() {
    std::size_t end = 0;
    while ((end = unread_.find('\n')) == std::string::npos) {
        pollfd ready = {from_, POLLIN, 0};
        char piece[4096];
        if (poll(&ready, 1, kPatience) <= 0) {
            give_up("says nothing");
        }
        const ssize_t size = read(from_, piece, sizeof piece);
        if (size <= 0) {
            give_up("hangs up");
        }
        unread_.append(piece, static_cast<std::size_t>(size));
    }
    std::string line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    return line;
}

std::string MediaServer::tell(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : " ") + quoted(word);
    }
    asked_ = line;
    line += "\n";
    if (write(to_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        give_up("does not listen");
    }
    const std::string answer = read_line();
    if (answer.rfind("ok", 0) != 0) {
        give_up("says " + answer);
    }
    return answer.size() > 3 ? answer.substr(3) : "";
}

void MediaServer::set(const std::string& fault, const std::string& value, int times, int spared) {
    tell({"set", fault, value, std::to_string(times), std::to_string(spared)});
}

long MediaServer::count(const std::string& name) {
    return std::atol(tell({"count", name}).c_str());
}

void MediaServer::await(const std::string& name, long count) {
    tell({"await", name, std::to_string(count)});
}

void MediaServer::generate(const std::string& id, const std::string& kind, int count) {
    tell({"generate", id, kind, std::to_string(count)});
}

std::string MediaServer::url(const std::string& path) const {
    return "http://" + address_ + ":" + std::to_string(port_) + path;
}
