#include "apps/qra/batch_job.h"

#include "apps/qra/exit_status.h"

namespace {

using ShareParam = std::unique_ptr<qra_share_s, decltype(&qra_destroy_share_param)>;
using UserDataParam = std::unique_ptr<qra_share_user_data_s, decltype(&qra_destroy_share_user_data_param)>;

void check(qra_error_code_e code) {
    if (code != QRA_ERROR_NONE) {
        throw CommandError(
            ExitStatus::RequestFailed,
            "the job cannot be started: error " + std::to_string(code) + " (QRA_LOG=warning tells why)");
    }
}

ShareParam share_param(const std::string& target) {
    qra_share_param_h raw = nullptr;
    check(qra_create_share_param(&raw));
    ShareParam param(raw, &qra_destroy_share_param);
    if (!target.empty()) {
        check(qra_param_set_share_dest_dev_path(raw, target.c_str()));
    }
    return param;
}

UserDataParam user_data_param(void* user_data, qra_share_cb callback) {
    qra_share_user_data_param_h raw = nullptr;
    check(qra_create_share_user_data_param(&raw));
    UserDataParam param(raw, &qra_destroy_share_user_data_param);
    check(qra_param_set_share_user_data_udata(raw, user_data));
    check(qra_param_set_share_user_data_cb(raw, callback));
    return param;
}

}  // namespace

BatchJob::BatchJob(qra_processor_type_e type, qra_agent_handler_h list, const std::string& target) {
    start(type, list, target);
    reaction_ = std::make_unique<interrupt::Reaction>([this] {
        const std::lock_guard<std::mutex> lock(mutex_);
        signal_came_ = true;
        changed_.notify_one();
    });
}

BatchJob::~BatchJob() {
    if (handle_ != nullptr) {
        qra_stop_batch_process_v2(handle_);
    }
}

void BatchJob::start(qra_processor_type_e type, qra_agent_handler_h list, const std::string& target) {
    const ShareParam param = share_param(target);
    const UserDataParam user_data = user_data_param(this, on_event);
    check(qra_batch_process_v2(type, param.get(), list, user_data.get(), &handle_));
}

bool BatchJob::on_event(void* user_data, CQRASendHandle*, qra_event_e event,
                        qra_share_status_info_s* status) {
    auto* job = static_cast<BatchJob*>(user_data);
    const std::lock_guard<std::mutex> lock(job->mutex_);
    job->reports_.push_back(
        {event, status->nFinishedCount, status->llProgressedTotalSize, status->szFileName});
    job->over_ = job->over_ || event == QRA_EVENT_BATCH_FINISHED || event == QRA_EVENT_BATCH_FAILED;
    job->changed_.notify_one();
    return true;
}

void BatchJob::stop() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (over_) {
            return;
        }
    }
    qra_stop_batch_process_v2(handle_);
    handle_ = nullptr;
    const std::lock_guard<std::mutex> lock(mutex_);
    // The job may have come to its end before the stop reached it.
    stopped_ = reports_.empty() || reports_.back().event != QRA_EVENT_BATCH_FINISHED;
    over_ = true;
}

std::optional<JobReport> BatchJob::next() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return !reports_.empty() || over_ || signal_came_; });
    if (signal_came_) {
        lock.unlock();
        stop();
        lock.lock();
    }
    if (reports_.empty()) {
        return std::nullopt;
    }
    JobReport report = std::move(reports_.front());
    reports_.pop_front();
    return report;
}
