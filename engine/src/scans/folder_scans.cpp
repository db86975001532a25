#include "engine/src/scans/folder_scans.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include "engine/src/engine_log.h"
#include "engine/src/glib_ptr.h"
#include "media_content.h"

namespace engine {

namespace {

// A page of tiles asks for all its folders at once, and each scan has threads of its own.
constexpr long kMostSingleFolders = 4;

bool is_directory(const std::string& path) {
    std::error_code error;
    return std::filesystem::path(path).is_absolute() && std::filesystem::is_directory(path, error);
}

/// The media database cancels by the text that a scan was started with, whatever its depth. A slash at the
/// end keeps the scan of one folder apart from the one of all below it.
std::string text_of(const ScanPlace& place) {
    std::string text = place.path;
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return place.recursive ? text : text + '/';
}

}  // namespace

bool operator==(const ScanPlace& left, const ScanPlace& right) {
    return std::tie(left.path, left.recursive) == std::tie(right.path, right.recursive);
}

struct FolderScans::Mailbox {
    explicit Mailbox(FolderScans* scans) : owner(scans), context(g_main_context_ref_thread_default()) {}
    ~Mailbox() { g_main_context_unref(context); }
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    FolderScans* owner;  ///< null after its end; for the owner's thread alone
    GMainContext* context;
};

struct FolderScans::Report {
    std::shared_ptr<Mailbox> mailbox;
    uint64_t serial;
    int error;
};

FolderScans::FolderScans(Done done) : done_(std::move(done)), mailbox_(std::make_shared<Mailbox>(this)) {}

FolderScans::~FolderScans() {
    mailbox_->owner = nullptr;
    for (const Scan& scan : scans_) {
        if (scan.running) {
            media_content_cancel_scan_folder(text_of(scan.place).c_str());
        }
    }
}

bool FolderScans::ask(const ScanPlace& place) {
    const auto known = find(place);
    if (known != scans_.end()) {
        ++known->asked;
        return true;
    }
    if (!is_directory(place.path) || !media_.ensure()) {
        ENGINE_INFO("cannot scan [%s]", place.path.c_str());
        return false;
    }
    Scan scan{++last_serial_, place, 1, false};
    if (has_room(place) && !begin(scan)) {
        return false;
    }
    scans_.push_back(std::move(scan));
    return true;
}

void FolderScans::leave(const ScanPlace& place) {
    const auto scan = find(place);
    if (scan == scans_.end() || --scan->asked > 0) {
        return;
    }
    if (scan->running) {
        media_content_cancel_scan_folder(text_of(place).c_str());
    }
    scans_.erase(scan);
    begin_waiting();
}

FolderScans::Scans::iterator FolderScans::find(const ScanPlace& place) {
    return std::find_if(scans_.begin(), scans_.end(), [&](const Scan& scan) { return scan.place == place; });
}

bool FolderScans::begin(Scan& scan) {
    auto report = std::make_unique<Report>(Report{mailbox_, scan.serial, 0});
    const int error = media_content_scan_folder_v2(text_of(scan.place).c_str(), scan.place.recursive,
                                                   &FolderScans::on_report, report.get());
    if (error != MEDIA_CONTENT_ERROR_NONE) {
        ENGINE_INFO("cannot scan [%s]: error %d", scan.place.path.c_str(), error);
        return false;
    }
    report.release();  // on_report's now: exactly one final report comes
    scan.running = true;
    return true;
}

void FolderScans::begin_waiting() {
    Scans failed;
    for (auto scan = scans_.begin(); scan != scans_.end();) {
        const auto next = std::next(scan);
        if (!scan->running && has_room(scan->place) && !begin(*scan)) {
            failed.splice(failed.end(), scans_, scan);
        }
        scan = next;
    }
    for (const Scan& scan : failed) {
        done_(scan.place, MEDIA_CONTENT_ERROR_NOT_FOUND);
    }
}

bool FolderScans::has_room(const ScanPlace& place) const {
    const auto counts = [](const Scan& scan) { return scan.running && !scan.place.recursive; };
    return place.recursive || std::count_if(scans_.begin(), scans_.end(), counts) < kMostSingleFolders;
}

void FolderScans::end(uint64_t serial, int error) {
    const auto scan =
        std::find_if(scans_.begin(), scans_.end(), [&](const Scan& known) { return known.serial == serial; });
    if (scan == scans_.end()) {
        return;  // nobody wants it any more
    }
    const ScanPlace place = scan->place;
    scans_.erase(scan);
    begin_waiting();
    done_(place, error);
}

void FolderScans::on_report(int error, int phase, void* data) {
    if (error == MEDIA_CONTENT_ERROR_NONE && phase != MEDIA_SCAN_PHASE_FINISHED) {
        return;
    }
    auto* report = static_cast<Report*>(data);
    report->error = error;
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, &FolderScans::on_end, report,
                          [](void* done) { delete static_cast<Report*>(done); });
    g_source_attach(source, report->mailbox->context);
    g_source_unref(source);
}

int FolderScans::on_end(void* data) {
    const auto* report = static_cast<Report*>(data);
    if (report->mailbox->owner != nullptr) {
        report->mailbox->owner->end(report->serial, report->error);
    }
    return G_SOURCE_REMOVE;
}

}  // namespace engine
