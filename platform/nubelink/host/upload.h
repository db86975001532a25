#ifndef QRA_NUBELINK_UPLOAD_H
#define QRA_NUBELINK_UPLOAD_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/nubelink/host/http_call.h"
#include "platform/nubelink/host/soap_call.h"

namespace nbl {

struct UploadQuestion {
    ServiceAddress directory;  ///< of the server
    std::string title;
    std::string mimetype;
    std::string path;            ///< of a regular file, or of a FIFO
    bool live = false;           ///< it is a FIFO: read until its writer closes it
    unsigned interval = 1000;    ///< between two reports, in milliseconds
    unsigned patience = 15'000;  ///< with nothing moving, in milliseconds
};

/// What is told of an upload, on the worker's thread. Each may end the upload.
struct UploadReports {
    std::function<void()> started;
    std::function<void(uint64_t sent, uint64_t total)> progress;
    /// The server has made this object for content that did not all arrive. Before `completed`, or from
    /// inside the destructor.
    std::function<void(const std::string& object_id)> left_behind;
    std::function<void(int error)> completed;  ///< an nbl_error_e; last of all
};

/**
 * Sends one file: has the server make an object, then sends the bytes to where the server wants them.
 *
 * Lives on the worker's thread; nothing is reported from inside the constructor. The upload's end before
 * `completed` breaks it off; nothing but `left_behind` is reported then.
 */
class Upload {
public:
    Upload(const HttpClient& client, UploadQuestion question, UploadReports reports);
    ~Upload();
    Upload(const Upload&) = delete;
    Upload& operator=(const Upload&) = delete;

private:
    class State;
    const std::shared_ptr<State> state_;
};

/// The description that asks a server to make an object for that content. `size` below 0: not known.
std::string upload_didl(const UploadQuestion& question, const std::string& container, int64_t size);

/// Where a server wants the bytes: the first address of its description that is http or https, empty for
/// none.
std::string import_address_of(std::string_view didl);

}  // namespace nbl

#endif
