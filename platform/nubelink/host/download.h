#ifndef QRA_NUBELINK_DOWNLOAD_H
#define QRA_NUBELINK_DOWNLOAD_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/nubelink/host/http_call.h"

namespace nbl {

struct DownloadQuestion {
    std::string uri;       ///< http or https
    std::string mimetype;  ///< what has to come; empty: not known
    std::string path;
    unsigned interval = 1000;    ///< between two reports, in milliseconds
    unsigned patience = 15'000;  ///< with nothing arriving, in milliseconds
};

struct DownloadReport {
    int state = 0;  ///< an nbl_download_state_e
    int error = 0;  ///< an nbl_error_e
    uint64_t received = 0;
    uint64_t total = 0;  ///< 0: not known
};

/**
 * Fetches one file. It has its name from the start, and is gone before a failure is reported. Redirects are
 * followed a few times, to http and https alone. Only a regular file is ever replaced.
 *
 * Lives on the worker's thread; `report` is called there, never from inside the constructor, and may end the
 * download. The state that is not NBL_DOWNLOAD_STATE_PROGRESS is the last one that it hears. The download's
 * end before that breaks it off and removes the file; nothing is reported then. Writing is done on a thread
 * of GLib's: a slow drive does not hold up the worker.
 */
class Download {
public:
    using Report = std::function<void(const DownloadReport&)>;
    Download(const HttpClient& client, DownloadQuestion question, Report report);
    ~Download();
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;

private:
    class State;
    const std::shared_ptr<State> state_;
};

}  // namespace nbl

#endif
