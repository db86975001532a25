#include "platform/nubelink/host/position_store.h"

#include <algorithm>
#include <vector>

#include "platform/files/file_lock.h"
#include "platform/files/key_file.h"
#include "platform/nubelink/host/log.h"
#include "platform/support/glib_ptr.h"

namespace nbl {

namespace {

constexpr char kGroup[] = "positions";
constexpr off_t kLargestFile = 32 << 20;
constexpr mode_t kOwnerOnly = 0600;

std::string escaped(std::string_view text) {
    const glib::TextPtr out(
        g_uri_escape_bytes(reinterpret_cast<const guint8*>(text.data()), text.size(), nullptr));
    return out.get();
}

/// A key file takes no key with any letter, and ids of servers have any; no escaped text has a '/'.
std::string key_of(std::string_view device, std::string_view content) {
    return escaped(device) + "/" + escaped(content);
}

bool same_file(const struct stat& one, const struct stat& other) {
    return one.st_ino == other.st_ino && one.st_size == other.st_size &&
           one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

}  // namespace

int PositionStore::find(std::string_view device, std::string_view content) {
    const std::lock_guard<std::mutex> lock(mutex_);
    refresh();
    const auto found = kept_.find(key_of(device, content));
    return found == kept_.end() ? 0 : found->second.seconds;
}

void PositionStore::refresh() {
    struct stat status {};
    if (stat(path_.c_str(), &status) != 0) {
        kept_.clear();
        seen_ = {};
    } else if (!same_file(status, seen_)) {
        read(status);
    }
}

void PositionStore::read(const struct stat& status) {
    kept_.clear();
    seen_ = status;
    const glib::KeyFilePtr file(g_key_file_new());
    if (!S_ISREG(status.st_mode) || status.st_size > kLargestFile ||
        !g_key_file_load_from_file(file.get(), path_.c_str(), G_KEY_FILE_NONE, nullptr)) {
        NBL_LOG_WARNING("positions cannot be read from %s", path_.c_str());
        return;
    }
    gsize count = 0;
    const glib::TextsPtr keys(g_key_file_get_keys(file.get(), kGroup, &count, nullptr));
    for (gsize i = 0; i < count; ++i) {
        const glib::TextPtr text(g_key_file_get_string(file.get(), kGroup, keys.get()[i], nullptr));
        char* rest = nullptr;
        const gint64 seconds = text ? g_ascii_strtoll(text.get(), &rest, 10) : 0;
        if (seconds > 0 && seconds <= G_MAXINT && *rest == ' ') {
            kept_[keys.get()[i]] = {static_cast<int>(seconds), g_ascii_strtoll(rest, nullptr, 10)};
        }
    }
}

bool PositionStore::keep(std::string_view device, std::string_view content, int seconds) {
    if (device.size() > kLongestId || content.size() > kLongestId) {
        return false;
    }
    const std::lock_guard<std::mutex> guard(mutex_);
    const glib::TextPtr directory(g_path_get_dirname(path_.c_str()));
    g_mkdir_with_parents(directory.get(), 0700);
    const files::FileLock lock = files::FileLock::on_file(path_ + ".lock");
    if (!lock.held()) {
        NBL_LOG_WARNING("no lock on the positions in %s", path_.c_str());
        return false;
    }
    refresh();
    const std::string key = key_of(device, content);
    if (seconds > 0) {
        kept_[key] = {seconds, g_get_real_time()};
        forget_oldest();
    } else if (kept_.erase(key) == 0) {
        return true;
    }
    return write();
}

void PositionStore::forget_oldest() {
    while (kept_.size() > kMost) {
        kept_.erase(std::min_element(kept_.begin(), kept_.end(), [](const auto& one, const auto& other) {
            return one.second.when < other.second.when;
        }));
    }
}

bool PositionStore::write() {
    const glib::KeyFilePtr file(g_key_file_new());
    for (const auto& [key, kept] : kept_) {
        g_key_file_set_string(file.get(), kGroup, key.c_str(),
                              (std::to_string(kept.seconds) + " " + std::to_string(kept.when)).c_str());
    }
    const bool written = files::replace_key_file(file.get(), path_, kOwnerOnly);
    if (!written) {
        NBL_LOG_WARNING("positions cannot be written to %s", path_.c_str());
    }
    if (!written || stat(path_.c_str(), &seen_) != 0) {
        seen_ = {};  // What is kept here and what is in the file may differ: it is read anew.
    }
    return written;
}

}  // namespace nbl
