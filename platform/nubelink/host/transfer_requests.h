#ifndef QRA_NUBELINK_TRANSFER_REQUESTS_H
#define QRA_NUBELINK_TRANSFER_REQUESTS_H

#include <memory>
#include <string>

#include "platform/nubelink/host/download.h"
#include "platform/nubelink/host/download_paths.h"
#include "platform/nubelink/host/item_record.h"
#include "platform/nubelink/host/request_table.h"
#include "platform/nubelink/host/service.h"
#include "platform/nubelink/host/upload.h"

namespace nbl {

/// A download, with the client that is told of it.
class DownloadRequest : public Request {
public:
    DownloadRequest(DownloadQuestion question, std::shared_ptr<DownloadPaths::Hold> file,
                    nbl_download_cb callback, void* user_data);

    void start(Session& session) override;
    void answer(int error) override;

private:
    void on_report(const DownloadReport& report);
    void tell(const DownloadReport& report);

    const DownloadQuestion question_;
    std::shared_ptr<DownloadPaths::Hold> file_;
    const nbl_download_cb callback_;
    void* const user_data_;
    Session* session_ = nullptr;
    DownloadReport last_;
    std::unique_ptr<Download> download_;
};

/// An upload, with the client that is told of it.
class UploadRequest : public Request {
public:
    UploadRequest(nbl_provider_t provider, nbl_item_t item, const nbl_provider_receive_handler& handlers,
                  void* user_data);

    void start(Session& session) override;
    void answer(int error) override;

private:
    UploadQuestion question() const;
    UploadReports reports();
    void on_progress(uint64_t sent, uint64_t total);
    void on_completed(int error);
    void take_away(const std::string& object_id);

    const ItemPtr item_;
    const nbl_provider_receive_handler handlers_;
    void* const user_data_;
    Session* session_ = nullptr;
    std::unique_ptr<Upload> upload_;
};

}  // namespace nbl

#endif
