#include <gio/gio.h>
#include <json/value.h>
#include <json/writer.h>
#include <qra/qra_content_agent.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "apps/qra/answer_queue.h"
#include "apps/qra/browsing.h"
#include "apps/qra/chosen_items.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/dlna_service.h"
#include "apps/qra/dlna_transfer.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/item_value.h"
#include "apps/qra/job_output.h"
#include "apps/qra/json_text.h"
#include "apps/qra/output.h"
#include "apps/qra/request_error.h"
#include "apps/qra/server_questions.h"
#include "apps/qra/terminal_text.h"

namespace {

constexpr std::chrono::seconds kLongestAnswer{20};
constexpr std::chrono::milliseconds kBetweenLooks{50};
/// For servers: they answer within a second, and their descriptions are fetched then.
constexpr std::chrono::seconds kLongestLook{5};

[[noreturn]] void fail(const std::string& message) {
    throw CommandError(ExitStatus::RequestFailed, message);
}

void show_server(const CommandLine& line, const ServerLine& server) {
    print(line.json ? server_json(server) : server_text(server, line.devices.watch));
    flush_output();
}

/// A name that a file of this machine can have, whatever the server calls it.
std::string file_name(std::string name) {
    for (char& c : name) {
        if (c == '/' || static_cast<unsigned char>(c) < ' ') {
            c = '_';
        }
    }
    return name.empty() || name == "." || name == ".." ? "_" + name : name;
}

/// Files that are moved one after the other, with what is told of them.
class TransferJob {
public:
    TransferJob(bool json, const std::string& done_word, const std::vector<JobItem>& items)
        : output_(json, done_word) {
        progress_.files = items.size();
        for (const JobItem& item : items) {
            progress_.bytes += item.size;
        }
        output_.started(progress_);
    }

    /// Has `move` move a file; it gives an nbl_error_e.
    template <class Move>
    void run(const JobItem& item, const Move& move) {
        progress_.name = item.name;
        const std::uint64_t before = progress_.bytes_done;
        const int error = move([&](std::uint64_t bytes) { show(before + bytes); });
        if (error != NBL_ERROR_NONE) {
            progress_.bytes_done = before;
            fail_item(item, transfer_failure(error));
            return;
        }
        ++progress_.files_done;
        progress_.bytes_done = before + item.size;
        output_.file_done(item, progress_);
    }

    void fail_item(const JobItem& item, const std::string& reason) {
        ++failed_;
        output_.failed(item, reason);
    }

    /// @throws CommandError unless all is done
    void finish() {
        const bool interrupted = interrupt::requested();
        output_.ended(interrupted ? "stopped" : failed_ > 0 ? "failed" : "finished", progress_);
        if (interrupted) {
            fail("interrupted");
        }
        if (failed_ > 0) {
            fail(std::to_string(failed_) + (failed_ == 1 ? " file" : " files") + " failed");
        }
    }

private:
    void show(std::uint64_t bytes) {
        progress_.bytes_done = bytes;
        rate_.add(RateMeter::Time::clock::now(), bytes);
        progress_.bytes_per_second = rate_.bytes_per_second();
        output_.progress(progress_);
    }

    JobOutput output_;
    JobProgress progress_;
    RateMeter rate_;
    std::size_t failed_ = 0;
};

/// A file of a server, and where it goes.
struct Fetch {
    JobItem item;
    std::string uri;
    std::string mimetype;
};

std::vector<Fetch> chosen_fetches(ListRequest& request, const CommandLine& line) {
    std::vector<Fetch> fetches;
    for (JobItem& item : chosen_items(request, line.list, line.job.choices)) {
        request.move_to(item.tile);
        Fetch fetch{std::move(item), read_text(request.handle(), "URL"),
                    read_text(request.handle(), "MIME_TYPE")};
        if (fetch.uri.empty()) {
            continue;
        }
        fetch.item.path = (std::filesystem::path(line.job.target) / file_name(fetch.item.name)).string();
        fetches.push_back(std::move(fetch));
    }
    if (fetches.empty()) {
        fail("nothing that was chosen can be fetched");
    }
    return fetches;
}

std::vector<JobItem> items_of(const std::vector<Fetch>& fetches) {
    std::vector<JobItem> items;
    for (const Fetch& fetch : fetches) {
        items.push_back(fetch.item);
    }
    return items;
}

/// The content type of a file, by its name.
std::string mimetype_of(const std::string& name) {
    const std::unique_ptr<char, decltype(&g_free)> type(
        g_content_type_guess(name.c_str(), nullptr, 0, nullptr), &g_free);
    const std::unique_ptr<char, decltype(&g_free)> mime(g_content_type_get_mime_type(type.get()), &g_free);
    return mime != nullptr ? mime.get() : "application/octet-stream";
}

struct ItemFree {
    void operator()(nbl_item_s* item) const { nbl_item_free(item); }
};
using ItemOwner = std::unique_ptr<nbl_item_s, ItemFree>;

/// What is sent of a path: its file, or what comes through the FIFO there; null if it is neither.
ItemOwner upload_item(const std::string& path, const std::string& name) {
    struct stat status {};
    nbl_item_t item = nullptr;
    if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        nbl_item_get_local_content(path.c_str(), mimetype_of(path).c_str(), &item);
    } else if (S_ISFIFO(status.st_mode)) {
        nbl_item_get_live_content(name.c_str(), mimetype_of(name).c_str(), path.c_str(), &item);
    }
    return ItemOwner(item);
}

JobItem upload_job_item(const std::string& path, const std::string& name) {
    JobItem item;
    item.name = name;
    item.path = path;
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        item.size = static_cast<std::uint64_t>(status.st_size);
    }
    return item;
}

bool on_bookmark(void* answers, int seconds) {
    static_cast<AnswerQueue<int>*>(answers)->give(seconds);
    return true;
}

/// The library gives 0 for a server that does not answer too.
int read_bookmark(Browsing& browsing) {
    // The library gives the callback up when the list ends, and a list ends before this function's caller.
    static AnswerQueue<int>& answers = *new AnswerQueue<int>;
    const qra_agent_handler_h handle = browsing.request().handle();
    check("bookmark", qra_get_book_mark_v2(handle, on_bookmark, &answers));
    const int seconds = answers.next_within(kLongestAnswer);
    const std::string failure =
        seconds == 0 ? item_failure(browsing.path(), read_text(handle, "ID_QRA")) : std::string();
    if (!failure.empty()) {
        fail("the position cannot be read: " + failure);
    }
    return seconds;
}

/// The library does not tell when a position is kept: this looks until the server has it.
void set_bookmark(Browsing& browsing, int seconds) {
    check("bookmark", qra_set_item_value_int_v2(browsing.request().handle(), "PLAYED_POSITION", seconds));
    const auto end = std::chrono::steady_clock::now() + kLongestAnswer;
    while (read_bookmark(browsing) != seconds) {
        if (std::chrono::steady_clock::now() > end) {
            fail("the server answers, but does not keep the position");
        }
        std::this_thread::sleep_for(kBetweenLooks);
    }
}

/// Servers that are found after the first search. Whoever does not say how long to wait waits for the first
/// one.
void show_late_servers(const CommandLine& line, DlnaService& service, std::set<std::string> shown,
                       std::chrono::steady_clock::time_point end) {
    while (line.dlna.wait || shown.empty()) {
        std::optional<ServerLine> server = service.next_before(end);
        if (!server) {
            return;
        }
        if (server->event == kAttached && shown.insert(server->id).second) {
            server->event = "present";
            show_server(line, *server);
        }
    }
}

}  // namespace

void run_dlna_servers(const CommandLine& line) {
    const auto start = std::chrono::steady_clock::now();
    DlnaService service;
    std::set<std::string> shown;
    for (const ServerLine& server : service.servers()) {
        show_server(line, server);
        shown.insert(server.id);
    }
    if (!line.devices.watch) {
        const auto wait = line.dlna.wait ? std::chrono::seconds(*line.dlna.wait) : kLongestLook;
        show_late_servers(line, service, std::move(shown), start + wait);
        return;
    }
    while (const std::optional<ServerLine> server = service.next()) {
        // A server that was found just now is both in the list and announced.
        const bool is_news =
            server->event == kAttached ? shown.insert(server->id).second : shown.erase(server->id) > 0;
        if (is_news) {
            show_server(line, *server);
        }
    }
}

void run_dlna_get(const CommandLine& line) {
    if (!std::filesystem::is_directory(line.job.target)) {
        fail(printable_text(line.job.target) + " is no folder");
    }
    Browsing browsing(line);
    const std::vector<Fetch> fetches = chosen_fetches(browsing.request(), line);
    TransferJob job(line.json, "fetched", items_of(fetches));
    for (const Fetch& fetch : fetches) {
        if (interrupt::requested()) {
            break;
        }
        if (!line.dlna.overwrite &&
            std::filesystem::exists(std::filesystem::symlink_status(fetch.item.path))) {
            job.fail_item(fetch.item, "is in the folder already (--overwrite replaces it)");
            continue;
        }
        job.run(fetch.item, [&fetch](const DlnaTransfer::Progress& progress) {
            DlnaTransfer transfer;
            return transfer.download(fetch.uri, fetch.mimetype, fetch.item.path, progress);
        });
    }
    job.finish();
}

void run_dlna_put(const CommandLine& line) {
    std::vector<JobItem> items;
    for (const std::string& path : line.dlna.files) {
        const std::string own = std::filesystem::path(path).filename().string();
        items.push_back(upload_job_item(path, line.dlna.name.empty() ? own : line.dlna.name));
    }
    DlnaService service;
    const std::string server = service.find(line.path);
    TransferJob job(line.json, "sent", items);
    for (const JobItem& item : items) {
        if (interrupt::requested()) {
            break;
        }
        const ItemOwner content = upload_item(item.path, item.name);
        if (content == nullptr) {
            job.fail_item(item, "is no file that can be read");
            continue;
        }
        job.run(item, [&](const DlnaTransfer::Progress& progress) {
            DlnaTransfer transfer;
            return transfer.upload(server, content.get(), progress);
        });
    }
    job.finish();
}

void run_dlna_bookmark(const CommandLine& line) {
    Browsing browsing(line);
    ListRequest& request = browsing.request();
    if (line.index < 0 || line.index >= request.tile_count()) {
        fail("there is no tile " + std::to_string(line.index) + ": the list has " +
             std::to_string(request.tile_count()));
    }
    request.move_to(line.index);
    if (line.dlna.seconds) {
        set_bookmark(browsing, *line.dlna.seconds);
    }
    const int seconds = line.dlna.seconds ? *line.dlna.seconds : read_bookmark(browsing);
    if (!line.json) {
        print(std::to_string(seconds) + "\n");
        return;
    }
    Json::Value object(Json::objectValue);
    object["id"] = read_text(request.handle(), "ID_QRA");
    object["seconds"] = seconds;
    print_json(object);
}
