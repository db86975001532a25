#include "platform/nubelink/host/transfer_requests.h"

#include <utility>

#include "platform/nubelink/host/soap_call.h"

namespace nbl {

namespace {

/// Takes an object away at the server, for nobody in particular.
class RemovalRequest : public Request {
public:
    RemovalRequest(std::string device_id, std::string object_id)
        : Request(std::move(device_id)), object_id_(std::move(object_id)) {}

    void start(Session& session) override {
        const DevicePtr device = session.device(device_id());
        if (device == nullptr) {
            session.requests().end(token(), NBL_ERROR_DEVICE_GONE);
            return;
        }
        call_ = std::make_unique<SoapCall>(
            session.http(), device->description.content_directory,
            SoapQuestion{"DestroyObject", {{"ObjectID", object_id_}}},
            [this, &session](const SoapAnswer& answer) { session.requests().end(token(), answer.error); });
    }
    void answer(int) override {}

private:
    const std::string object_id_;
    std::unique_ptr<SoapCall> call_;
};

}  // namespace

DownloadRequest::DownloadRequest(DownloadQuestion question, std::shared_ptr<DownloadPaths::Hold> file,
                                 nbl_download_cb callback, void* user_data)
    : Request(std::string()),
      question_(std::move(question)),
      file_(std::move(file)),
      callback_(callback),
      user_data_(user_data) {}

void DownloadRequest::start(Session& session) {
    session_ = &session;
    download_ = std::make_unique<Download>(session.http(), question_,
                                           [this](const DownloadReport& report) { on_report(report); });
}

void DownloadRequest::on_report(const DownloadReport& report) {
    last_ = report;
    if (report.state == NBL_DOWNLOAD_STATE_PROGRESS) {
        tell(report);
    } else if (const std::unique_ptr<Request> self = session_->requests().take(token())) {
        file_.reset();  // The client may begin the next one when it hears of the end.
        tell(last_);
    }
}

void DownloadRequest::answer(int error) {
    download_.reset();  // The file is gone before the client hears of it.
    file_.reset();
    last_.state = error == NBL_ERROR_CANCELLED ? NBL_DOWNLOAD_STATE_CANCELLED : NBL_DOWNLOAD_STATE_FAILED;
    last_.error = error;
    tell(last_);
}

void DownloadRequest::tell(const DownloadReport& report) {
    nbl_transfer_info info = {report.state, report.error, report.received, report.total};
    callback_(token(), &info, user_data_);
}

UploadRequest::UploadRequest(nbl_provider_t provider, nbl_item_t item,
                             const nbl_provider_receive_handler& handlers, void* user_data)
    : Request(provider->id), item_(share(item)), handlers_(handlers), user_data_(user_data) {}

void UploadRequest::start(Session& session) {
    session_ = &session;
    if (session.device(device_id()) == nullptr) {
        session.requests().end(token(), NBL_ERROR_DEVICE_GONE);
        return;
    }
    upload_ = std::make_unique<Upload>(session.http(), question(), reports());
}

UploadQuestion UploadRequest::question() const {
    UploadQuestion question;
    question.directory = session_->device(device_id())->description.content_directory;
    question.title = item_->text("dc:title");
    question.mimetype = item_->text(property::kMimeType);
    question.live = item_->find(property::kFifo).has_value();
    question.path = item_->text(question.live ? property::kFifo : property::kPath);
    return question;
}

UploadReports UploadRequest::reports() {
    UploadReports reports;
    reports.started = [this] {
        if (handlers_.started != nullptr) {
            handlers_.started(token(), item_.get(), NBL_ERROR_NONE, user_data_);
        }
    };
    reports.progress = [this](uint64_t sent, uint64_t total) { on_progress(sent, total); };
    reports.left_behind = [this](const std::string& object_id) { take_away(object_id); };
    reports.completed = [this](int error) { on_completed(error); };
    return reports;
}

void UploadRequest::on_progress(uint64_t sent, uint64_t total) {
    if (handlers_.progress != nullptr) {
        nbl_transfer_info info = {NBL_DOWNLOAD_STATE_PROGRESS, NBL_ERROR_NONE, sent, total};
        handlers_.progress(token(), &info, NBL_ERROR_NONE, user_data_);
    }
}

void UploadRequest::on_completed(int error) {
    session_->on_call_error(device_id(), error);
    session_->requests().end(token(), error);
}

void UploadRequest::answer(int error) {
    upload_.reset();
    if (handlers_.completed != nullptr) {
        handlers_.completed(token(), item_.get(), error, user_data_);
    }
}

void UploadRequest::take_away(const std::string& object_id) {
    RequestTable& requests = session_->requests();
    requests.start(requests.new_token(), std::make_unique<RemovalRequest>(device_id(), object_id), session_);
}

}  // namespace nbl
