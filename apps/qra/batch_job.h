#ifndef QRA_APPS_QRA_BATCH_JOB_H
#define QRA_APPS_QRA_BATCH_JOB_H

#include <qra/qra_content_agent.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "apps/qra/interrupt.h"

/// What a job told in one of its calls.
struct JobReport {
    qra_event_e event;
    int files_done;            ///< with QRA_EVENT_BATCH_FAILED the number of the failed one, from 0
    std::uint64_t bytes_done;  ///< by the whole job
    std::string name;          ///< of the current file
};

/// A batch job on the selection of a list, from its start to its end, for the thread that makes it. The
/// library's callback only stores what it is told and wakes that thread.
class BatchJob {
public:
    /// Starts the job.
    /// @param list    its cursor walks the selection; it is not used while the job lives
    /// @param target  directory of a copy
    /// @throws CommandError when the library refuses the job
    BatchJob(qra_processor_type_e type, qra_agent_handler_h list, const std::string& target);
    ~BatchJob();
    BatchJob(const BatchJob&) = delete;
    BatchJob& operator=(const BatchJob&) = delete;

    /// Waits for the next report; a signal stops the job meanwhile. Nothing once the job is over and all is
    /// told.
    std::optional<JobReport> next();

    /// Ends the job if it still runs; a file that is not yet whole is taken back. What came before is still
    /// told.
    void stop();

    /// The job was stopped before it was done.
    bool was_stopped() const { return stopped_; }

private:
    static bool on_event(void* user_data, CQRASendHandle*, qra_event_e event,
                         qra_share_status_info_s* status);
    void start(qra_processor_type_e type, qra_agent_handler_h list, const std::string& target);

    CQRASendHandle* handle_ = nullptr;
    bool stopped_ = false;

    std::mutex mutex_;  // covers the three below
    std::condition_variable changed_;
    std::deque<JobReport> reports_;
    bool over_ = false;
    bool signal_came_ = false;

    std::unique_ptr<interrupt::Reaction> reaction_;
};

#endif
