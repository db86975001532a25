#include "platform/recording/host/recording_removal.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "platform/recording/host/recording_info_file.h"

namespace recording {
namespace {

constexpr const char* kCompanionExtensions[] = {".inf", ".ss", ".mdb", ".mta", ".cip"};

enum class FileRemoval { kRemoved, kAbsent, kRefused };

FileRemoval remove_file(const std::string& path) {
    if (unlink(path.c_str()) == 0) {
        return FileRemoval::kRemoved;
    }
    return errno == ENOENT ? FileRemoval::kAbsent : FileRemoval::kRefused;
}

}  // namespace

bool is_companion(const std::string& path) {
    return std::any_of(std::begin(kCompanionExtensions), std::end(kCompanionExtensions),
                       [&path](const char* extension) { return companion_name(path, extension) == path; });
}

Removal remove_recording(const std::string& path) {
    const FileRemoval recording = remove_file(path);
    // A recording that stays needs its companions.
    if (recording == FileRemoval::kRefused) {
        return Removal::kRefused;
    }
    bool any_removed = recording == FileRemoval::kRemoved;
    bool any_left = false;
    for (const char* extension : kCompanionExtensions) {
        const FileRemoval companion = remove_file(companion_name(path, extension));
        any_removed = any_removed || companion == FileRemoval::kRemoved;
        any_left = any_left || companion == FileRemoval::kRefused;
    }
    if (any_left) {
        return Removal::kIncomplete;
    }
    return any_removed ? Removal::kDone : Removal::kNotThere;
}

}  // namespace recording
