// What a WebDAV folder of 10,000 pictures costs through the plug-in, beside a plain client that fetches the
// same answer from the same server of this machine and looks at nothing of it. Also how soon the first
// section of 200 is there.

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "engine/plugins/webdav/webdav_plugin.h"
#include "tests/fakes/webdav_servers.h"

namespace {

using bench::Clock;
using bench::give_up;
using bench::median;
using bench::seconds_since;

constexpr int kFiles = 10'000;
constexpr int kRounds = 9;
constexpr size_t kSection = 200;

double least(std::vector<double> values) {
    return *std::min_element(values.begin(), values.end());
}

/// Times one list, and keeps nothing of it.
class Stopwatch : public engine::ListAnswer {
public:
    void begin(size_t folders, size_t media) override { announced_ = folders + media; }
    void add_folder(std::string text) override { add_medium(std::move(text)); }
    void add_medium(std::string) override {
        if (++items_ == kSection) {
            first_section = seconds_since(start_);
        }
    }
    void end() override { total = seconds_since(start_); }
    void fail(std::string reason) override { give_up(reason); }

    bool is_over() const { return total > 0; }
    bool is_complete() const { return items_ == kFiles && announced_ == kFiles; }

    double first_section = 0;
    double total = 0;

private:
    const Clock::time_point start_ = Clock::now();
    size_t announced_ = 0;
    size_t items_ = 0;
};

/// The same question as the plug-in's, over a bare socket; the number of bytes that came.
size_t fetch_plainly(int port) {
    const std::string body =
        R"(<?xml version="1.0" encoding="utf-8"?><D:propfind xmlns:D="DAV:" xmlns:o="http://owncloud.org/ns" )"
        R"(xmlns:n="http://nextcloud.org/ns"><D:prop><D:resourcetype/><D:getcontenttype/><D:displayname/>)"
        R"(<D:getcontentlength/><D:getlastmodified/><o:fileid/><n:has-preview/></D:prop></D:propfind>)";
    const std::string question =
        "PROPFIND / HTTP/1.1\r\nHost: localhost\r\nDepth: 1\r\nConnection: close\r\nContent-Type: "
        "application/xml\r\n"
        "Content-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        write(fd, question.data(), question.size()) != static_cast<ssize_t>(question.size())) {
        give_up("the server does not listen");
    }
    static char piece[64 * 1024];
    size_t bytes = 0;
    for (ssize_t got = 0; (got = read(fd, piece, sizeof piece)) > 0;) {
        bytes += static_cast<size_t>(got);
    }
    close(fd);
    return bytes;
}

}  // namespace

int main() {
    const ApacheServer server;
    for (int i = 0; i < kFiles; ++i) {
        server.write("IMG_" + std::to_string(i) + ".jpg", "");
    }
    const int port = std::atoi(server.url().c_str() + server.url().rfind(':') + 1);
    const auto plugin = engine::make_webdav_plugin();
    std::string reason;
    const auto session = plugin->open({"bench", "webdav", server.url(), "", ""}, reason);

    std::vector<double> floors;
    std::vector<double> totals;
    std::vector<double> firsts;
    std::vector<double> processor;
    size_t bytes = 0;
    // One after the other, so that both meet the same load of the machine; the first round warms up.
    for (int round = 0; round <= kRounds; ++round) {
        const Clock::time_point start = Clock::now();
        bytes = fetch_plainly(port);
        const double floor = seconds_since(start);
        const double before = bench::processor_seconds();
        Stopwatch watch;
        const engine::RequestPtr request = session->list({}, watch);
        while (!watch.is_over()) {
            g_main_context_iteration(nullptr, TRUE);
        }
        if (!watch.is_complete()) {
            give_up("the list is not complete");
        }
        if (round > 0) {
            floors.push_back(floor);
            totals.push_back(watch.total);
            firsts.push_back(watch.first_section);
            processor.push_back(bench::processor_seconds() - before);
        }
    }
    std::printf("%d entries, %.1f MB, processor time of a list %.0f ms\n", kFiles,
                static_cast<double>(bytes) / 1e6, 1e3 * median(processor));
    for (const auto& [name, choose] : {std::pair("median", &median), {"least", &least}}) {
        std::printf("%-6s  plain client %.0f ms  list %.0f ms (%.2fx)  first section %.0f ms\n", name,
                    1e3 * choose(floors), 1e3 * choose(totals), choose(totals) / choose(floors),
                    1e3 * choose(firsts));
    }
    return 0;
}
