#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/qra/batch_job.h"
#include "apps/qra/browsing.h"
#include "apps/qra/chosen_items.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/confirmation.h"
#include "apps/qra/directory_path.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/job_check.h"
#include "apps/qra/job_output.h"
#include "apps/qra/media_path.h"
#include "apps/qra/terminal_text.h"

namespace {

/// A reason that stands after a file's name; empty for none.
using Reason = std::function<std::string(const JobItem&)>;

/// What there is to do, and how many of the chosen tiles are not in it.
struct Plan {
    std::vector<JobItem> items;
    std::size_t left_out = 0;
};

/// What tells one kind of job from another.
struct JobKind {
    qra_processor_type_e type = QRA_PROCESSOR_TYPE_RESERVED;
    std::string target;  ///< for the library
    std::uint64_t bytes = 0;
    Reason failure;
    Reason shortfall = [](const JobItem&) { return std::string(); };  ///< of a file that is done
    std::function<bool()> has_gone;  ///< the drive that is written to; asked at each report
};

[[noreturn]] void fail(const std::string& message) {
    throw CommandError(ExitStatus::RequestFailed, message);
}

Plan make_plan(ListRequest& request, const CommandLine& line, const Reason& refusal, JobOutput& output) {
    Plan plan;
    for (JobItem& item : chosen_items(request, line.list, line.job.choices)) {
        if (is_without_content(item.media_type)) {
            continue;
        }
        const std::string no_file = tile_refusal(item.media_type);
        const std::string reason = no_file.empty() ? refusal(item) : no_file;
        if (reason.empty()) {
            plan.items.push_back(std::move(item));
        } else {
            output.left_out(item, reason);
            ++plan.left_out;
        }
    }
    if (plan.items.empty()) {
        fail("nothing that was chosen is left to work on");
    }
    return plan;
}

std::uint64_t bytes_of(const std::vector<JobItem>& items) {
    std::uint64_t bytes = 0;
    for (const JobItem& item : items) {
        bytes += item.size;
    }
    return bytes;
}

void check_left_out(std::size_t left_out) {
    if (left_out > 0) {
        fail(std::to_string(left_out) + (left_out == 1 ? " chosen tile was" : " chosen tiles were") +
             " left out");
    }
}

void show_plan(const Plan& plan, JobOutput& output) {
    for (const JobItem& item : plan.items) {
        output.planned(item);
    }
    check_left_out(plan.left_out);
}

/// One job from its start to its end, with all that is told about it.
class JobRun {
public:
    JobRun(const JobKind& kind, ListRequest& request, const Plan& plan, JobOutput& output)
        : kind_(kind),
          request_(request),
          items_(select_for_job(request, plan.items)),
          left_out_(plan.left_out),
          done_(items_.size()),
          output_(output) {
        progress_.files = items_.size();
        progress_.bytes = kind.bytes;
    }

    /// @throws CommandError unless everything that was chosen is done
    void run() {
        if (interrupt::requested()) {
            fail("interrupted");
        }
        output_.started(progress_);
        BatchJob job(kind_.type, request_.handle(), kind_.target);
        while (const auto report = job.next()) {
            const bool has_gone = kind_.has_gone();
            // A film that is no longer there counts as deleted, also where its drive is pulled.
            is_in_doubt_ = is_in_doubt_ || (has_gone && kind_.type == QRA_PROCESSOR_TYPE_DELETE);
            if (!is_in_doubt_) {
                take(*report);
            }
            if (has_gone) {
                job.stop();
            }
        }
        if (is_in_doubt_) {
            end_in_doubt();
        }
        if (job.was_stopped()) {
            end_stopped();
        }
        if (failed_) {
            end_failed(*failed_);
        }
        end_finished();
    }

private:
    void take(const JobReport& report) {
        progress_.bytes_done = report.bytes_done;
        progress_.name = report.name;
        meter_.add(std::chrono::steady_clock::now(), report.bytes_done);
        progress_.bytes_per_second = kind_.bytes > 0 ? meter_.bytes_per_second() : std::nullopt;
        const auto number = static_cast<std::size_t>(std::max(report.files_done, 0));
        if (report.event == QRA_EVENT_BATCH_PROGRESS) {
            output_.progress(progress_);
        } else if (report.event == QRA_EVENT_BATCH_FILE_DONE && number > 0 && number <= items_.size()) {
            done_[number - 1] = true;
            ++progress_.files_done;
            take_done(items_[number - 1]);
        } else if (report.event == QRA_EVENT_BATCH_FAILED) {
            failed_ = std::min(number, items_.size() - 1);
        }
    }

    void take_done(const JobItem& item) {
        output_.file_done(item, progress_);
        const std::string shortfall = kind_.shortfall(item);
        if (!shortfall.empty()) {
            output_.incomplete(item, shortfall);
            ++incomplete_;
        }
    }

    std::string untouched_text() const {
        return files_text(items_.size() - progress_.files_done, 0) + " not " +
               (kind_.type == QRA_PROCESSOR_TYPE_COPY ? "copied" : "deleted");
    }

    [[noreturn]] void end_stopped() {
        output_.ended("stopped", progress_);
        fail((kind_.has_gone() ? "the target is gone: " : "interrupted: ") + untouched_text());
    }

    [[noreturn]] void end_in_doubt() {
        output_.ended("stopped", progress_);
        fail("the drive is gone: " + files_text(items_.size() - progress_.files_done, 0) +
             " may still be on it");
    }

    [[noreturn]] void end_failed(std::size_t number) {
        output_.failed(items_[number], kind_.failure(items_[number]));
        output_.ended("failed", progress_);
        fail(untouched_text());
    }

    void end_finished() {
        for (std::size_t number = 0; number < items_.size(); ++number) {
            // The library passes over a recording in silence while it is being made.
            if (!done_[number]) {
                output_.left_out(items_[number], "is still being recorded");
                ++left_out_;
            }
        }
        output_.ended("finished", progress_);
        if (incomplete_ > 0) {
            fail(files_text(incomplete_, 0) + " copied without all companions");
        }
        check_left_out(left_out_);
    }

    const JobKind& kind_;
    ListRequest& request_;
    std::vector<JobItem> items_;  // in the order of the job
    std::size_t left_out_;
    std::size_t incomplete_ = 0;
    std::vector<bool> done_;
    JobOutput& output_;
    JobProgress progress_;
    bool is_in_doubt_ = false;
    RateMeter meter_;
    std::optional<std::size_t> failed_;
};

std::string copy_refusal(const JobItem& item, const std::string& directory, const TargetLimits& limits,
                         PlannedCopies& planned) {
    for (const std::string& reason :
         {target_refusal(item, directory), source_refusal(item), limit_refusal(item, limits)}) {
        if (!reason.empty()) {
            return reason;
        }
    }
    return planned.add(item);
}

void check_space(const Plan& plan, const std::string& directory, const TargetLimits& limits) {
    const std::uint64_t needed = needed_bytes(plan.items, limits);
    if (needed > limits.free_bytes) {
        fail(printable_text(directory) + ": not enough space, " + readable_size(needed) + " are needed and " +
             readable_size(limits.free_bytes) + " free");
    }
}

void ask_for_deletion(const Plan& plan, const std::string& folder) {
    const std::string files = files_text(plan.items.size(), bytes_of(plan.items));
    if (!confirmed("delete " + files + " in " + printable_text(folder) + " for good?")) {
        fail("nothing deleted");
    }
}

}  // namespace

void run_copy(const CommandLine& line) {
    const std::string directory = existing_directory(line.job.target);
    const TargetLimits limits = target_limits(directory);
    Browsing browsing(line);
    JobOutput output(line.json, "copied");
    PlannedCopies planned(directory, limits);
    const Reason refusal = [&](const JobItem& item) {
        return copy_refusal(item, directory, limits, planned);
    };
    const Plan plan = make_plan(browsing.request(), line, refusal, output);
    check_space(plan, directory, limits);
    if (line.job.dry_run) {
        show_plan(plan, output);
        return;
    }
    // A target on a drive has its copies in the media database at once.
    MediaDrives drives;
    JobKind kind;
    kind.type = QRA_PROCESSOR_TYPE_COPY;
    kind.target = media_path(drives, directory);
    kind.bytes = bytes_of(plan.items);
    kind.failure = [&](const JobItem& item) { return copy_failure(item, directory, limits); };
    kind.shortfall = [&](const JobItem& item) { return planned.shortfall(item); };
    kind.has_gone = [&] { return has_gone(directory, limits); };
    JobRun(kind, browsing.request(), plan, output).run();
}

void run_delete(const CommandLine& line) {
    if (!line.job.yes && !line.job.dry_run) {
        require_someone_to_ask();
    }
    Browsing browsing(line);
    const std::string folder = existing_directory(line.path);
    const TargetLimits limits = target_limits(folder);
    JobOutput output(line.json, "deleted");
    const Plan plan = make_plan(browsing.request(), line, removal_refusal, output);
    if (line.job.dry_run) {
        show_plan(plan, output);
        return;
    }
    if (!line.job.yes) {
        ask_for_deletion(plan, line.path);
    }
    JobKind kind;
    kind.type = QRA_PROCESSOR_TYPE_DELETE;
    kind.failure = removal_failure;
    kind.has_gone = [&] { return has_gone(folder, limits); };
    JobRun(kind, browsing.request(), plan, output).run();
}
