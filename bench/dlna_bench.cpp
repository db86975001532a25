// A folder of 10,000 items of a media server, and what an item costs. dlna_bench [READYMEDIA_PICTURE]
//
// Prints its ratios itself: each run of ours stands beside one of each floor. To be run in a network of its
// own: tests/dlna/own-network dlna_bench. With a small picture, ReadyMedia is asked too, for a directory of
// 10,000 copies of it. A folder has three floors, all of a plain client that fetches page after page: one
// that looks at nothing in its pages of 200, one that reads titles and types in them, and one with pages of
// 400 that looks at nothing, since the service asks for two pages at once far inside a folder. The floor of
// an item is libxml2's reader going through the same text.
//
// All four take their turn in each round, in every second one the other way about; a round before the first
// warms the server up and does not count.
//
// How soon a server is in the list is measured from the start of its process, and how soon a request on one
// that is gone fails, both for one that was killed and one that says nothing any more.
//
// Of a folder it prints the time on the clock, and in brackets the processor time of the client and of the
// server, which say what a busy machine hides: a server that works all the time cannot be waited for less,
// and the ratio is then what the server takes beside that and the plain client's own time.

#include <libxml/xmlreader.h>
#include <malloc.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench/dlna_plain_client.h"
#include "bench/measure.h"
#include "platform/nubelink/host/didl_reader.h"
#include "platform/nubelink/host/soap_call.h"
#include "platform/nubelink/host/text.h"
#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"
#include "tests/fakes/temp_dir.h"

namespace {

using bench::give_up;
using bench::median;
using bench::seconds_on;

constexpr int kItems = 10'000;
constexpr int kPage = PlainClient::kPage;
constexpr int kInFlight = 5;
constexpr int kRuns = 9;

double seconds_of(const std::function<void()>& work, clockid_t clock) {
    const double start = seconds_on(clock);
    work();
    return seconds_on(clock) - start;
}

/// Processor time that a process has taken so far.
double processor_seconds(int pid) {
    clockid_t clock = 0;
    return clock_getcpuclockid(pid, &clock) == 0 ? seconds_on(clock) : 0;
}

/// Runs both in turn and prints the medians and the ratio.
void compare(const char* name, const std::function<double()>& ours, const std::function<double()>& floor) {
    std::vector<double> our_times;
    std::vector<double> floor_times;
    for (int i = 0; i < kRuns; ++i) {
        floor_times.push_back(floor());
        our_times.push_back(ours());
    }
    const double our_time = median(our_times);
    const double floor_time = median(floor_times);
    std::printf("%-28s %9.2f ms  floor %9.2f ms  ratio %.2f\n", name, our_time * 1e3, floor_time * 1e3,
                our_time / floor_time);
}

/// Reads the folder as the agent does: five pages under way, each item's title and type looked at.
class FolderRead {
public:
    FolderRead(nbl_provider_t provider, const std::string& folder) : provider_(provider) {
        nbl_item_create_provider_item(folder.c_str(), &folder_);
    }
    ~FolderRead() { nbl_item_free(folder_); }
    FolderRead(const FolderRead&) = delete;
    FolderRead& operator=(const FolderRead&) = delete;

    void run() {
        signal_.change([&] {
            for (int i = 0; i < kInFlight; ++i) {
                ask();
            }
        });
        if (!signal_.wait([&] { return open_ == 0; }) || items_ != kItems) {
            give_up("not all items came");
        }
    }

private:
    void ask() {
        int token = 0;
        if (next_ < kItems &&
            nbl_provider_browse(provider_, folder_, next_, kPage, on_page, this, &token) == NBL_ERROR_NONE) {
            next_ += kPage;
            ++open_;
        }
    }
    static void on_page(nbl_device_t, nbl_response* response, int, void* data) {
        auto* self = static_cast<FolderRead*>(data);
        for (int i = 0; i < response->length; ++i) {
            char* title = nullptr;
            int type = 0;
            nbl_item_get_title(response->items[i], &title);
            nbl_item_get_type(response->items[i], &type);
            std::free(title);
        }
        self->signal_.change([&] {
            self->items_ += response->length;
            --self->open_;
            self->ask();
        });
    }

    nbl_provider_t provider_;
    nbl_item_t folder_ = nullptr;
    Signal signal_;
    int next_ = 0;
    int open_ = 0;
    int items_ = 0;
};

/// The service as this program's client.
class Client {
public:
    Client() {
        nbl_serviceconnector_connect(
            [](nbl_serviceprovider_t provider, int, void* self) {
                static_cast<Client*>(self)->signal_.change(
                    [&] { static_cast<Client*>(self)->service_ = provider; });
            },
            this);
        if (!signal_.wait([this] { return service_ != nullptr; }) ||
            nbl_serviceprovider_get_devicefinder(service_, &finder_) != NBL_ERROR_NONE) {
            give_up("no service");
        }
        nbl_devicefinder_set_event_callback(
            finder_, NBL_DEVICE_CLASS_MEDIA_SERVER,
            [](nbl_device_event* event, int, int, void* self) {
                static_cast<Client*>(self)->signal_.change([&] {
                    static_cast<Client*>(self)->arrivals_ += event->event == NBL_DEVICE_EVENT_ADDED ? 1 : 0;
                });
            },
            this);
    }
    int arrivals() {
        return signal_.read([this] { return arrivals_; });
    }
    void wait_for_arrival(int count) {
        if (!signal_.wait([this, count] { return arrivals_ >= count; })) {
            give_up("a server does not come");
        }
    }
    nbl_provider_t first_server() {
        for (int i = 0; i < 100; ++i) {
            nbl_device_t* devices = nullptr;
            int count = 0;
            nbl_devicefinder_get_device_list(finder_, NBL_DEVICE_CLASS_MEDIA_SERVER, &devices, &count);
            const char* id = nullptr;
            nbl_provider_t provider = nullptr;
            if (count > 0 && nbl_device_get_id(devices[0], &id) == NBL_ERROR_NONE &&
                nbl_devicefinder_get_device(finder_, NBL_DEVICE_CLASS_MEDIA_SERVER, id, &provider) ==
                    NBL_ERROR_NONE) {
                return provider;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        give_up("no server");
    }
    void wait_until_gone() {
        int count = 1;
        while (count > 0) {
            nbl_device_t* devices = nullptr;
            nbl_devicefinder_get_device_list(finder_, NBL_DEVICE_CLASS_MEDIA_SERVER, &devices, &count);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

private:
    Signal signal_;
    nbl_serviceprovider_t service_ = nullptr;
    nbl_devicefinder_t finder_ = nullptr;
    int arrivals_ = 0;
};

/// Reads the folder on a server that is gone by then.
double seconds_to_failure(nbl_provider_t provider) {
    return seconds_of(
        [provider] {
            nbl_item_t item = nullptr;
            nbl_item_create_provider_item("folder", &item);
            Reply reply;
            nbl_provider_browse(provider, item, 0, kPage, &Reply::on_items, &reply, &reply.token);
            nbl_item_free(item);
            if (reply.wait() == NBL_ERROR_NONE) {
                give_up("a server that is gone answers");
            }
        },
        CLOCK_MONOTONIC);
}

void measure_presence(Client& client) {
    std::vector<double> arrival;
    std::vector<double> killed;
    for (int i = 0; i < kRuns; ++i) {
        const int before = client.arrivals();
        std::optional<MediaServer> server;
        arrival.push_back(seconds_of(
            [&] {
                server.emplace();
                client.wait_for_arrival(before + 1);
            },
            CLOCK_MONOTONIC));
        nbl_provider_t provider = client.first_server();
        server->kill();
        killed.push_back(seconds_to_failure(provider));
        client.wait_until_gone();
    }
    std::printf("%-28s %9.2f ms after the start of its process\n", "in the list", median(arrival) * 1e3);
    std::printf("%-28s %9.2f ms\n", "failed on a killed server", median(killed) * 1e3);
    MediaServer server;
    nbl_provider_t provider = client.first_server();
    kill(server.pid(), SIGSTOP);
    std::printf("%-28s %9.2f ms\n", "failed on a silent server", seconds_to_failure(provider) * 1e3);
    server.kill();
    client.wait_until_gone();
}

/// A folder of a server, for one comparison.
struct Folder {
    nbl_provider_t provider;
    std::string url;  ///< of the server's control
    std::string id;
    int server_pid;
};

/// What reading a folder took, several times.
class Costs {
public:
    void measure(const Folder& folder, const std::function<void()>& work) {
        const double server = processor_seconds(folder.server_pid);
        const bench::Cost cost = bench::cost_of(work);
        elapsed_.push_back(cost.wall);
        client_.push_back(cost.processor);
        server_.push_back(processor_seconds(folder.server_pid) - server);
    }
    double elapsed() const { return median(elapsed_); }
    void print(const char* name) const {
        std::printf("  %-10s %9.2f ms (%7.2f + %7.2f)", name, elapsed() * 1e3, median(client_) * 1e3,
                    median(server_) * 1e3);
    }

private:
    std::vector<double> elapsed_;
    std::vector<double> client_;
    std::vector<double> server_;
};

void run_plain_client(const Folder& folder, int page, bool reads) {
    const PlainClient client(folder.url, folder.id);
    for (int start = 0; start < kItems; start += page) {
        const std::string answer = client.fetch(start, page);
        if (reads && PlainClient::read(answer) != page) {
            give_up("the plain client does not see all items");
        }
    }
}

/// One of those that are compared on a folder.
struct Runner {
    const char* name;
    std::function<void()> run;
    Costs costs = {};
};

/// Runs all in turn and prints their medians and the ratios.
void compare_folder(const char* name, const Folder& folder) {
    Runner ours = {"ours", [&] { FolderRead(folder.provider, folder.id).run(); }};
    Runner floors[] = {{"fetched", [&] { run_plain_client(folder, kPage, false); }},
                       {"read", [&] { run_plain_client(folder, kPage, true); }},
                       {"by 400", [&] { run_plain_client(folder, 2 * kPage, false); }}};
    std::vector<Runner*> turns = {&floors[0], &ours, &floors[1], &floors[2]};
    for (const Runner* runner : turns) {
        runner->run();
    }
    for (int i = 0; i < kRuns; ++i) {
        for (Runner* runner : turns) {
            runner->costs.measure(folder, runner->run);
        }
        std::reverse(turns.begin(), turns.end());
    }
    std::printf("%s\n", name);
    ours.costs.print(ours.name);
    std::printf("\n");
    for (const Runner& floor : floors) {
        floor.costs.print(floor.name);
        std::printf("  ratio %.2f\n", ours.costs.elapsed() / floor.costs.elapsed());
    }
}

/// The DIDL documents of the folder, as the server writes them.
std::vector<std::string> fetch_documents(const Folder& folder) {
    const PlainClient client(folder.url, folder.id);
    std::vector<std::string> documents;
    for (int start = 0; start < kItems; start += kPage) {
        nbl::HttpAnswer http;
        http.status = 200;
        http.body = client.fetch(start, kPage);
        documents.emplace_back(nbl::read_soap_answer(std::move(http)).find("Result"));
    }
    return documents;
}

double bare_parse(const std::vector<std::string>& documents) {
    return seconds_of(
        [&] {
            for (const std::string& document : documents) {
                xmlTextReaderPtr reader = xmlReaderForMemory(
                    document.data(), static_cast<int>(document.size()), nullptr, nullptr, 0);
                while (xmlTextReaderRead(reader) == 1) {
                }
                xmlFreeTextReader(reader);
            }
        },
        CLOCK_THREAD_CPUTIME_ID);
}

double record_parse(const std::vector<std::string>& documents, std::vector<nbl::ItemPtr>& items) {
    return seconds_of(
        [&] {
            for (const std::string& document : documents) {
                std::string text = document;
                nbl::mend_xml(text);
                nbl::read_didl(text, nullptr, items);
            }
        },
        CLOCK_THREAD_CPUTIME_ID);
}

void compare_records(const char* name, const std::vector<std::string>& documents) {
    compare(
        name,
        [&] {
            std::vector<nbl::ItemPtr> items;
            return record_parse(documents, items);
        },
        [&] { return bare_parse(documents); });
    std::vector<nbl::ItemPtr> items;
    items.reserve(kItems);
    malloc_trim(0);
    const size_t before = mallinfo2().uordblks;
    record_parse(documents, items);
    const size_t held = mallinfo2().uordblks - before;
    std::printf("%-28s %9.0f bytes for each of %zu items held\n", name,
                static_cast<double>(held) / static_cast<double>(items.size()), items.size());
}

/// ReadyMedia on a directory, until its end.
class ReadyMedia {
public:
    explicit ReadyMedia(const std::string& picture) {
        std::filesystem::create_directory(directory_.path("media"));
        for (int i = 0; i < kItems; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "media/picture-%05d.jpg", i);
            std::filesystem::copy_file(picture, directory_.path(name));
        }
        std::ofstream(directory_.path("conf"))
            << "port=8200\nnetwork_interface=lo\nfriendly_name=ReadyMedia\nmedia_dir="
            << directory_.path("media") << "\ndb_dir=" << directory_.path("db")
            << "\nlog_dir=" << directory_.path("log") << "\ninotify=no\nnotify_interval=5\n";
        pid_ = fork();
        if (pid_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM);
            execlp("minidlnad", "minidlnad", "-S", "-f", directory_.path("conf").c_str(), "-P",
                   directory_.path("pid").c_str(), nullptr);
            _exit(127);
        }
    }
    ~ReadyMedia() {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
    ReadyMedia(const ReadyMedia&) = delete;
    ReadyMedia& operator=(const ReadyMedia&) = delete;

    int pid() const { return pid_; }

private:
    const TempDir directory_;
    int pid_ = -1;
};

void wait_for_scan(nbl_provider_t provider, const std::string& folder) {
    constexpr int kSeconds = 300;
    for (int i = 0; i < kSeconds; ++i) {
        Reply reply;
        nbl_provider_browse_item(provider, folder.c_str(), &Reply::on_items, &reply, &reply.token);
        if (reply.wait() == NBL_ERROR_NONE && !reply.items.empty() &&
            reply.items[0].number(nbl_item_get_child_count) == kItems) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    give_up("ReadyMedia does not come to the end of its scan");
}

}  // namespace

int main(int argc, char** argv) {
    if (!have_own_network()) {
        give_up("start it with tests/dlna/own-network");
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    Client client;
    measure_presence(client);
    {
        MediaServer server;
        server.generate("folder", "music", kItems);
        const Folder folder = {client.first_server(), server.url("/ContentDirectory/control"), "folder",
                               server.pid()};
        compare_records("records, test server", fetch_documents(folder));
        compare_folder("test server", folder);
        server.set("Browse.delay", "20");
        compare_folder("test server, 20 ms delay", folder);
        server.clear();
        server.tell({"goodbye"});
        client.wait_until_gone();
    }
    if (argc > 1) {
        const ReadyMedia server(argv[1]);
        const Folder folder = {client.first_server(), "http://127.0.0.1:8200/ctl/ContentDir", "64",
                               server.pid()};
        wait_for_scan(folder.provider, folder.id);
        compare_folder("ReadyMedia", folder);
        compare_records("records, ReadyMedia", fetch_documents(folder));
    }
    return 0;
}
