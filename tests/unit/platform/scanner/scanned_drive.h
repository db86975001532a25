#ifndef QRA_TESTS_SCANNER_SCANNED_DRIVE_H
#define QRA_TESTS_SCANNER_SCANNED_DRIVE_H

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

#include "media_content.h"
#include "media_content_admin.h"
#include "platform/media-content/host/database/media_writer.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {

/// Collects the reports of an asynchronous scan; the final one can be waited for.
class ScanAnswer {
public:
    static void on_report(int error, int phase, void* self) {
        auto* answer = static_cast<ScanAnswer*>(self);
        std::unique_lock<std::mutex> lock(answer->mutex_);
        answer->phases_.push_back(phase);
        if (error != 0 || phase == MEDIA_SCAN_PHASE_FINISHED) {
            answer->error_ = error;
            ++answer->finals_;
        }
        answer->changed_.notify_all();
        answer->changed_.wait_for(lock, std::chrono::seconds(100),
                                  [&] { return !answer->held_ || phase != MEDIA_SCAN_PHASE_PROGRESS; });
    }

    /// Lets the scan wait in its reports of progress from now on, or go on.
    void hold(bool held) {
        const std::lock_guard<std::mutex> lock(mutex_);
        held_ = held;
        changed_.notify_all();
    }

    /// Waits for the final report. @return its error, -1 if it does not come
    int wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        const bool came = changed_.wait_for(lock, std::chrono::seconds(100), [this] { return finals_ > 0; });
        return came ? error_ : -1;
    }

    /// Waits for a report of this phase.
    bool wait_for_phase(int phase) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(100), [&] {
            return std::find(phases_.begin(), phases_.end(), phase) != phases_.end();
        });
    }

    int finals() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return finals_;
    }

    /// How many reports of this phase have come.
    int64_t reports(int phase) const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::count(phases_.begin(), phases_.end(), phase);
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<int> phases_;
    bool held_ = false;
    int finals_ = 0;
    int error_ = 0;
};

/// A connected database with one drive, and help to fill it with files and to look at the rows.
class ScannedDrive : public TemporaryDatabase {
protected:
    /// Where the drive's files are.
    std::string files() const { return root() + "/stick"; }

    /// Puts a copy of a sample file on the drive. @param place such as "a/b.jpg"
    void put(const std::string& place, const std::string& fixture = "pictures/photo.jpg") const {
        const std::filesystem::path target = files() + "/" + place;
        std::filesystem::create_directories(target.parent_path());
        std::filesystem::copy_file(std::string(QRA_FIXTURES) + "/" + fixture, target,
                                   std::filesystem::copy_options::overwrite_existing);
    }

    void link(const std::string& place, const std::string& target) const {
        const std::filesystem::path link = files() + "/" + place;
        std::filesystem::create_directories(link.parent_path());
        std::filesystem::create_symlink(target, link);
    }

    /// Fills the drive with folders of pictures. @return how many pictures
    int put_many(int folders, int files_in_each) const {
        for (int folder = 0; folder < folders; ++folder) {
            for (int file = 0; file < files_in_each; ++file) {
                put("folder" + std::to_string(folder) + "/" + std::to_string(file) + ".jpg");
            }
        }
        return folders * files_in_each;
    }

    std::string drive_path(const std::string& relative = "") const { return drive().link_path() + relative; }

    /// Scans and waits. @return the error
    int scan(const std::string& relative = "", bool recursive = true) {
        ScanAnswer answer;
        const int started = media_content_scan_folder_v2(drive_path(relative).c_str(), recursive,
                                                         ScanAnswer::on_report, &answer);
        return started != 0 ? started : answer.wait();
    }

    /// Scans through the administration's function. @return the last progress
    media_content_scan_progress_s scan_with_progress(int* error = nullptr) {
        media_content_scan_progress_s last{};
        const int result = media_content_admin_scan(
            drive_path().c_str(), true,
            [](const media_content_scan_progress_s* progress, void* last_one) {
                *static_cast<media_content_scan_progress_s*>(last_one) = *progress;
                static_cast<media_content_scan_progress_s*>(last_one)->current_path = nullptr;
                return true;
            },
            &last);
        if (error) {
            *error = result;
        }
        return last;
    }

    int64_t media_count() { return number("SELECT count(*) FROM media"); }

    /// The paths of all media on the drive, in byte order.
    std::vector<std::string> media_paths() {
        return texts(
            "SELECT f.path || '/' || m.name FROM media m JOIN folder f ON f.id = m.folder ORDER BY 1");
    }
    std::vector<std::string> folder_paths() { return texts("SELECT path FROM folder ORDER BY 1"); }

    int64_t id_of(const std::string& name) {
        return number("SELECT id FROM media WHERE name = '" + name + "'");
    }

    int folder_status(const std::string& relative) {
        return static_cast<int>(number("SELECT scan_status FROM folder WHERE path = '" + relative + "'"));
    }
    int storage_status() { return static_cast<int>(number("SELECT scan_status FROM storage")); }

private:
    std::vector<std::string> texts(const std::string& sql) {
        std::vector<std::string> found;
        Database::ReadLease reader(database());
        Query query(reader.connection(), sql);
        while (query.step()) {
            found.emplace_back(query.text(0));
        }
        return found;
    }
};

}  // namespace media_content

#endif
