#ifndef QRA_RECORDING_HOST_RECORDING_INFO_FILE_H
#define QRA_RECORDING_HOST_RECORDING_INFO_FILE_H

#include <string>

#include "platform/files/key_file.h"
#include "platform/support/glib_ptr.h"

namespace recording {

/// A file beside a recording: the recording's name with another extension, such as ".inf".
std::string companion_name(const std::string& recording, const char* extension);

/// The name of a recording's info file.
std::string info_file_name(const std::string& recording);

/**
 * The info file beside a recording: a key file with one group, whose keys are the lower-case names of the
 * recording's columns. What it does not hold, or holds in a form that does not fit, reads as 0, false or
 * empty. For one thread.
 */
class InfoFile {
public:
    enum class LoadResult { kLoaded, kAbsent, kUnreadable };

    /**
     * Loads the info file of the recording `name` in an open directory; `name` may be that of the info file
     * itself, and hold a path. Unreadable is also what is no regular file, larger than 1 MiB, or no key file.
     */
    LoadResult load_beside(int directory, const std::string& name);

    /// Begins an empty one in place of what was loaded.
    void start();

    std::string text(const char* key) const;
    int number(const char* key) const;
    bool flag(const char* key) const;

    /// These change a value only if it reads as another one. To be called on a file that is loaded or
    /// started.
    void set_text(const char* key, const std::string& value);
    void set_number(const char* key, int value);
    void set_flag(const char* key, bool value);

    /// Something differs from what was loaded.
    bool changed() const { return changed_; }

    /// Replaces the file beside the recording `name`, with everything in it that nobody changed; false if the
    /// system refuses, and then the old one is unharmed.
    bool store_beside(const std::string& name) const;

private:
    LoadResult load(int descriptor);

    glib::KeyFilePtr file_;
    std::string group_;
    mode_t rights_ = 0666;
    bool changed_ = false;
};

}  // namespace recording

#endif
