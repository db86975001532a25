// Downloads, uploads and bookmarks.
#include <algorithm>

#include "nubelink.h"
#include "platform/nubelink/host/bookmark_request.h"
#include "platform/nubelink/host/http_call.h"
#include "platform/nubelink/host/service.h"
#include "platform/nubelink/host/transfer_requests.h"

using nbl::RequestTable;
using nbl::Service;

namespace {

constexpr int kShortestInterval = 10;  // milliseconds

bool is_missing(const char* text) {
    return text == nullptr || *text == '\0';
}

bool is_to_be_sent(const nbl_item_s& item) {
    return item.find(nbl::property::kPath) || item.find(nbl::property::kFifo);
}

}  // namespace

int nbl_provider_download(const char* uri, const char* mimetype, const char* path, int interval_ms,
                          nbl_download_cb callback, void* user_data, int* token) {
    if (is_missing(uri) || !nbl::is_web_address(uri) || is_missing(path) || interval_ms < 0 ||
        callback == nullptr || token == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    nbl::DownloadQuestion question;
    question.uri = uri;
    question.mimetype = mimetype != nullptr ? mimetype : "";
    question.path = path;
    question.interval = static_cast<unsigned>(std::max(interval_ms, kShortestInterval));
    nbl::DownloadPaths& paths = nbl::DownloadPaths::instance();
    const std::shared_ptr<nbl::DownloadPaths::Hold> file = paths.hold(question.path);
    if (file == nullptr) {
        return NBL_ERROR_FILE;
    }
    auto request = std::make_unique<nbl::DownloadRequest>(std::move(question), file, callback, user_data);
    const int result = Service::instance().start(std::move(request), token, RequestTable::kNoDeadline);
    if (result == NBL_ERROR_NONE) {
        paths.name(*file, *token);
    }
    return result;
}

int nbl_provider_cancel_download(int token) {
    const int result = Service::instance().cancel(token);
    if (result == NBL_ERROR_NONE) {
        nbl::DownloadPaths::instance().give_up(token);
    }
    return result;
}

int nbl_provider_receive(nbl_provider_t provider, nbl_item_t item,
                         const nbl_provider_receive_handler* handlers, void* user_data, int* id) {
    if (id == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *id = -1;
    if (provider == nullptr || item == nullptr || handlers == nullptr || !is_to_be_sent(*item)) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    auto request = std::make_unique<nbl::UploadRequest>(provider, item, *handlers, user_data);
    return Service::instance().start(std::move(request), id, RequestTable::kNoDeadline);
}

int nbl_provider_cancel_receive(nbl_provider_t provider, int id, nbl_receive_cancelled_cb callback,
                                void* user_data) {
    if (provider == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    const int result = Service::instance().cancel(id);
    if (result == NBL_ERROR_NONE && callback != nullptr) {
        Service::instance().post([=] { callback(id, NBL_ERROR_NONE, user_data); });
    }
    return result;
}

int nbl_provider_set_bookmark(nbl_provider_t provider, nbl_item_t item, int seconds, nbl_bookmark_cb callback,
                              int tag) {
    if (provider == nullptr || item == nullptr || seconds < 0 || !item->find("@id")) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    auto request = std::make_unique<nbl::BookmarkRequest>(provider, item, seconds, callback, tag);
    int token = 0;
    return Service::instance().start(std::move(request), &token);
}
