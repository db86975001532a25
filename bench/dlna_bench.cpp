// A folder of 10,000 items of a media server, and what an item costs. dlna_bench [READYMEDIA_PICTURE]
//
// Prints its ratios itself: each run of ours stands beside one of the floor. To be run in a network of its
// own: tests/dlna/own-network dlna_bench. With a small picture, ReadyMedia is asked too, for a directory of
// 10,000 links to it. The floor of a folder is a plain client that fetches the same pages of 200, one after
// the other, on a kept connection, and looks at nothing in them; the floor of an item is libxml2's reader
// going through the same text.

#include <libsoup/soup.h>
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
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/nubelink/host/didl_reader.h"
#include "platform/nubelink/host/glib_ptr.h"
#include "platform/nubelink/host/soap_call.h"
#include "platform/nubelink/host/text.h"
#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"
#include "tests/fakes/temp_dir.h"

namespace {

constexpr int kItems = 10'000;
constexpr int kPage = 200;
constexpr int kInFlight = 5;
constexpr int kRuns = 5;
constexpr char kService[] = "urn:schemas-upnp-org:service:ContentDirectory:1";

[[noreturn]] void give_up(const char* what) {
    std::fprintf(stderr, "dlna_bench: %s\n", what);
    std::exit(1);
}

double seconds_of(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double cpu_seconds_of(const std::function<void()>& work) {
    const auto now = [] {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

/// Runs both in turn and prints the medians and the ratio.
void compare(const char* name, const std::function<double()>& ours, const std::function<double()>& floor) {
    std::vector<double> our_times;
    std::vector<double> floor_times;
    for (int i = 0; i < kRuns; ++i) {
        floor_times.push_back(floor());
        our_times.push_back(ours());
    }
    const auto median = [](std::vector<double> times) {
        std::nth_element(times.begin(), times.begin() + kRuns / 2, times.end());
        return times[kRuns / 2];
    };
    const double our_time = median(our_times);
    const double floor_time = median(floor_times);
    std::printf("%-28s %9.2f ms  floor %9.2f ms  ratio %.2f\n", name, our_time * 1e3, floor_time * 1e3,
                our_time / floor_time);
}

std::string page_question(const std::string& folder, int start) {
    nbl::SoapQuestion question;
    question.action = "Browse";
    question.arguments = {{"ObjectID", folder},
                          {"BrowseFlag", "BrowseDirectChildren"},
                          {"Filter", "*"},
                          {"StartingIndex", std::to_string(start)},
                          {"RequestedCount", std::to_string(kPage)},
                          {"SortCriteria", ""}};
    return nbl::soap_question_body(kService, question);
}

/// The plain client. Returns the bytes of the page.
std::string fetch_page(SoupSession* session, const std::string& url, const std::string& folder, int start) {
    const nbl::ObjectPtr<SoupMessage> message(soup_message_new("POST", url.c_str()));
    const std::string body = page_question(folder, start);
    const nbl::BytesPtr bytes(g_bytes_new(body.data(), body.size()));
    soup_message_set_request_body_from_bytes(message.get(), "text/xml; charset=\"utf-8\"", bytes.get());
    soup_message_headers_append(soup_message_get_request_headers(message.get()), "SOAPAction",
                                (std::string("\"") + kService + "#Browse\"").c_str());
    const nbl::BytesPtr answer(soup_session_send_and_read(session, message.get(), nullptr, nullptr));
    if (answer == nullptr || soup_message_get_status(message.get()) != 200) {
        give_up("the server does not answer the plain client");
    }
    size_t size = 0;
    const void* data = g_bytes_get_data(answer.get(), &size);
    return {static_cast<const char*>(data), size};
}

double plain_client(const std::string& url, const std::string& folder) {
    const nbl::ObjectPtr<SoupSession> session(soup_session_new());
    return seconds_of([&] {
        for (int start = 0; start < kItems; start += kPage) {
            fetch_page(session.get(), url, folder, start);
        }
    });
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

    double run() {
        return seconds_of([&] {
            signal_.change([&] {
                for (int i = 0; i < kInFlight; ++i) {
                    ask();
                }
            });
            if (!signal_.wait([&] { return open_ == 0; }) || items_ != kItems) {
                give_up("not all items came");
            }
        });
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
};

void compare_folder(const char* name, nbl_provider_t provider, const std::string& url,
                    const std::string& folder) {
    compare(
        name, [&] { return FolderRead(provider, folder).run(); }, [&] { return plain_client(url, folder); });
}

/// The DIDL documents of the folder, as the server writes them.
std::vector<std::string> fetch_documents(const std::string& url, const std::string& folder) {
    const nbl::ObjectPtr<SoupSession> session(soup_session_new());
    std::vector<std::string> documents;
    for (int start = 0; start < kItems; start += kPage) {
        nbl::HttpAnswer http;
        http.status = 200;
        http.body = fetch_page(session.get(), url, folder, start);
        documents.emplace_back(nbl::read_soap_answer(std::move(http)).find("Result"));
    }
    return documents;
}

double bare_parse(const std::vector<std::string>& documents) {
    return cpu_seconds_of([&] {
        for (const std::string& document : documents) {
            xmlTextReaderPtr reader =
                xmlReaderForMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr, 0);
            while (xmlTextReaderRead(reader) == 1) {
            }
            xmlFreeTextReader(reader);
        }
    });
}

double record_parse(const std::vector<std::string>& documents, std::vector<nbl::ItemPtr>& items) {
    return cpu_seconds_of([&] {
        for (const std::string& document : documents) {
            std::string text = document;
            nbl::mend_xml(text);
            nbl::read_didl(text, nullptr, items);
        }
    });
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
    {
        MediaServer server;
        server.generate("folder", "music", kItems);
        nbl_provider_t provider = client.first_server();
        const std::string url = server.url("/ContentDirectory/control");
        compare_records("records, test server", fetch_documents(url, "folder"));
        compare_folder("test server", provider, url, "folder");
        server.set("Browse.delay", "20");
        compare_folder("test server, 20 ms delay", provider, url, "folder");
        server.clear();
        server.tell({"goodbye"});
        client.wait_until_gone();
    }
    if (argc > 1) {
        const ReadyMedia server(argv[1]);
        nbl_provider_t provider = client.first_server();
        wait_for_scan(provider, "64");
        const std::string url = "http://127.0.0.1:8200/ctl/ContentDir";
        compare_folder("ReadyMedia", provider, url, "64");
        compare_records("records, ReadyMedia", fetch_documents(url, "64"));
    }
    return 0;
}
