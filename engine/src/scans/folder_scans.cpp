#include "engine/src/scans/folder_scans.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/src/engine_log.h"
#include "media_content.h"
#include "platform/files/descriptor.h"

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

/// Any thread may put; the owner's thread takes.
class FolderScans::Mailbox {
public:
    struct Mail {
        uint64_t serial;
        int error;
    };

    Mailbox() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    /// Readable when there is something to take.
    int descriptor() const { return wake_.get(); }

    void put(Mail mail) {
        const std::lock_guard<std::mutex> lock(mutex_);
        mails_.push_back(mail);
        eventfd_write(wake_.get(), 1);
    }

    std::vector<Mail> take() {
        const std::lock_guard<std::mutex> lock(mutex_);
        eventfd_t ignored = 0;
        eventfd_read(wake_.get(), &ignored);
        return std::exchange(mails_, {});
    }

private:
    const files::Descriptor wake_;
    std::mutex mutex_;  ///< covers `mails_`
    std::vector<Mail> mails_;
};

struct FolderScans::Report {
    std::shared_ptr<Mailbox> mailbox;
    uint64_t serial;
};

FolderScans::FolderScans(Done done)
    : done_(std::move(done)),
      mailbox_(std::make_shared<Mailbox>()),
      mail_source_(g_unix_fd_add(mailbox_->descriptor(), G_IO_IN, &FolderScans::on_mail, this)) {}

FolderScans::~FolderScans() {
    g_source_remove(mail_source_);
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
    auto report = std::make_unique<Report>(Report{mailbox_, scan.serial});
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
    const std::unique_ptr<Report> report(static_cast<Report*>(data));
    report->mailbox->put({report->serial, error});
}

int FolderScans::on_mail(int, GIOCondition, void* data) {
    auto* self = static_cast<FolderScans*>(data);
    for (const Mailbox::Mail& mail : self->mailbox_->take()) {
        self->end(mail.serial, mail.error);
    }
    return G_SOURCE_CONTINUE;
}

}  // namespace engine
