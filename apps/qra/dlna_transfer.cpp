#include "apps/qra/dlna_transfer.h"

#include "apps/qra/interrupt.h"
#include "apps/qra/server_questions.h"

namespace {

constexpr int kProgressInterval = 300;

}  // namespace

DlnaTransfer::~DlnaTransfer() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return !running_; });
}

int DlnaTransfer::download(const std::string& uri, const std::string& mimetype, const std::string& path,
                           const Progress& progress) {
    int token = 0;
    running_ = true;
    const int code = nbl_provider_download(uri.c_str(), mimetype.empty() ? nullptr : mimetype.c_str(),
                                           path.c_str(), kProgressInterval, on_download, this, &token);
    if (code != NBL_ERROR_NONE) {
        end(code);
        return code;
    }
    return wait(progress, [token] { nbl_provider_cancel_download(token); });
}

int DlnaTransfer::upload(const std::string& server_id, nbl_item_t item, const Progress& progress) {
    nbl_provider_t provider = nullptr;
    int code = find_provider(server_id, provider);
    if (code != NBL_ERROR_NONE) {
        return code;
    }
    const nbl_provider_receive_handler handlers{nullptr, on_upload_completed, on_upload_progress};
    int id = 0;
    running_ = true;
    code = nbl_provider_receive(provider, item, &handlers, this, &id);
    if (code != NBL_ERROR_NONE) {
        end(code);
        return code;
    }
    return wait(progress, [provider, id] { nbl_provider_cancel_receive(provider, id, nullptr, nullptr); });
}

int DlnaTransfer::wait(const Progress& progress, const std::function<void()>& cancel) {
    const interrupt::Reaction cancel_on_signal(cancel);
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return reported_ || !running_; });
        if (!running_) {
            return error_;
        }
        reported_ = false;
        const std::uint64_t bytes = bytes_;
        lock.unlock();
        progress(bytes);
        lock.lock();
    }
}

void DlnaTransfer::report(std::uint64_t bytes) {
    const std::lock_guard<std::mutex> lock(mutex_);
    bytes_ = bytes;
    reported_ = true;
    changed_.notify_all();
}

void DlnaTransfer::end(int error) {
    const std::lock_guard<std::mutex> lock(mutex_);
    error_ = error;
    running_ = false;
    changed_.notify_all();
}

void DlnaTransfer::on_download(int, nbl_transfer_info* info, void* self) {
    auto* transfer = static_cast<DlnaTransfer*>(self);
    switch (info->state) {
        case NBL_DOWNLOAD_STATE_PROGRESS:
            transfer->report(info->received);
            break;
        case NBL_DOWNLOAD_STATE_COMPLETE:
            transfer->end(NBL_ERROR_NONE);
            break;
        case NBL_DOWNLOAD_STATE_CANCELLED:
            transfer->end(NBL_ERROR_CANCELLED);
            break;
        default:
            transfer->end(info->error != NBL_ERROR_NONE ? info->error : NBL_ERROR_FAILED);
            break;
    }
}

void DlnaTransfer::on_upload_progress(int, nbl_transfer_info* info, int, void* self) {
    static_cast<DlnaTransfer*>(self)->report(info->received);
}

void DlnaTransfer::on_upload_completed(int, nbl_item_t, int error, void* self) {
    static_cast<DlnaTransfer*>(self)->end(error);
}

std::string transfer_failure(int error) {
    switch (error) {
        case NBL_ERROR_INVALID_PARAMETER:
            return "has no address that can be fetched";
        case NBL_ERROR_NOT_SUPPORTED:
            return "was not taken: the server takes no files";
        case NBL_ERROR_ITEM_NOT_EXIST:
            return "is not on the server any more";
        case NBL_ERROR_TIMEOUT:
            return "did not arrive in time";
        case NBL_ERROR_CANCELLED:
            return "was interrupted";
        case NBL_ERROR_DEVICE_GONE:
            return "could not be transferred: the server is gone";
        case NBL_ERROR_NETWORK:
            return "could not be transferred: the connection broke";
        case NBL_ERROR_REFUSED:
            return "was refused by the server";
        case NBL_ERROR_FILE:
            return "could not be read or written";
        default:
            return "could not be transferred, error " + std::to_string(error);
    }
}
