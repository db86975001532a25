#ifndef QRA_APPS_QRA_DLNA_TRANSFER_H
#define QRA_APPS_QRA_DLNA_TRANSFER_H

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

#include "nubelink.h"

/**
 * One transfer from or to a media server, at the home network service: the client interface of the library
 * has none. For one thread; the service's reports come on another one. The service has to be connected.
 *
 * The destructor waits for the transfer's end.
 */
class DlnaTransfer {
public:
    DlnaTransfer() = default;
    ~DlnaTransfer();
    DlnaTransfer(const DlnaTransfer&) = delete;
    DlnaTransfer& operator=(const DlnaTransfer&) = delete;

    // Each returns when the transfer has ended, with an nbl_error_e, and tells meanwhile how many bytes have
    // been moved. A signal that ends the tool cancels it.
    using Progress = std::function<void(std::uint64_t bytes)>;
    int download(const std::string& uri, const std::string& mimetype, const std::string& path,
                 const Progress& progress);
    /// Sends content to the server of that id; `item` may be freed afterwards.
    int upload(const std::string& server_id, nbl_item_t item, const Progress& progress);

private:
    static void on_download(int token, nbl_transfer_info* info, void* self);
    static void on_upload_progress(int id, nbl_transfer_info* info, int error, void* self);
    static void on_upload_completed(int id, nbl_item_t item, int error, void* self);
    void report(std::uint64_t bytes);
    void end(int error);
    int wait(const Progress& progress, const std::function<void()>& cancel);

    std::mutex mutex_;  // covers what follows
    std::condition_variable changed_;
    bool running_ = false;
    bool reported_ = false;
    std::uint64_t bytes_ = 0;
    int error_ = NBL_ERROR_NONE;
};

/// Why a transfer failed; reads after the file's name.
std::string transfer_failure(int error);

#endif
