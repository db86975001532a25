#ifndef QRA_RECORDING_HOST_RECORDING_REMOVAL_H
#define QRA_RECORDING_HOST_RECORDING_REMOVAL_H

#include <string>

namespace recording {

enum class Removal {
    kDone,
    kNotThere,    ///< neither the recording nor a companion is there
    kRefused,     ///< the system let nothing be removed
    kIncomplete,  ///< the recording is gone, but not all of its companions
};

/// One of the files that lie beside a recording, by its extension.
bool is_companion(const std::string& path);

/// Removes the recording at `path`, and after it its companions.
Removal remove_recording(const std::string& path);

}  // namespace recording

#endif
