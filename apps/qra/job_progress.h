#ifndef QRA_APPS_QRA_JOB_PROGRESS_H
#define QRA_APPS_QRA_JOB_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

/// Bytes per second of the last seconds. For one thread.
class RateMeter {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// @param bytes all bytes so far
    void add(Time now, std::uint64_t bytes);

    /// Nothing until the reports span a second.
    std::optional<double> bytes_per_second() const;

private:
    struct Report {
        Time time;
        std::uint64_t bytes;
    };
    std::deque<Report> reports_;
};

/// How far a job is.
struct JobProgress {
    std::size_t files_done = 0;
    std::size_t files = 0;
    std::uint64_t bytes_done = 0;
    std::uint64_t bytes = 0;  ///< 0 for a job that moves none
    std::optional<double> bytes_per_second;
    std::string name;  ///< of the current file
};

/// Seconds until a job at this rate is done; nothing while nobody can tell.
std::optional<std::uint64_t> seconds_left(const JobProgress& progress);

/// The status line of a job, exactly `width` cells wide: a bar, files, bytes, rate, rest time and the current
/// file.
std::string job_status_text(const JobProgress& progress, int width);

/// "1 file", "12 files", with their size where the job moves bytes: "3 files (4.2 MB)".
std::string files_text(std::size_t files, std::uint64_t bytes);

#endif
