#ifndef QRA_RECORDING_HOST_RECORDING_INFO_FILE_H
#define QRA_RECORDING_HOST_RECORDING_INFO_FILE_H

#include <glib.h>

#include <memory>
#include <string>

namespace recording {

/// The name of a recording's info file: the recording's own with another extension.
std::string info_file_name(const std::string& recording);

/**
 * The info file beside a recording: a key file with one group, whose keys are the lower-case names of the
 * recording's columns. What it does not hold, or holds in a form that does not fit, reads as 0, false or
 * empty.
 */
class InfoFile {
public:
    /**
     * Loads the info file of the recording `name` in an open directory; `name` may be that of the info file
     * itself, and hold a path. False when there is none, or none that can be read.
     */
    bool load_beside(int directory, const std::string& name);

    std::string text(const char* key) const;
    int number(const char* key) const;
    bool flag(const char* key) const;

private:
    bool load(int descriptor);

    struct Deleter {
        void operator()(GKeyFile* file) const { g_key_file_unref(file); }
    };
    std::unique_ptr<GKeyFile, Deleter> file_;
    std::string group_;
};

}  // namespace recording

#endif
