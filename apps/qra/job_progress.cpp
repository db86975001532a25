#include "apps/qra/job_progress.h"

#include <algorithm>
#include <cmath>

#include "apps/qra/status_line.h"
#include "apps/qra/terminal_text.h"

namespace {

constexpr std::chrono::seconds kShortestSpan{1};
constexpr std::chrono::seconds kLongestSpan{10};
constexpr double kLongestRest = 100 * 3600.0;

}  // namespace

void RateMeter::add(Time now, std::uint64_t bytes) {
    reports_.push_back({now, bytes});
    while (reports_.size() > 2 && now - reports_[1].time >= kLongestSpan) {
        reports_.pop_front();
    }
}

std::optional<double> RateMeter::bytes_per_second() const {
    if (reports_.empty() || reports_.back().time - reports_.front().time < kShortestSpan) {
        return std::nullopt;
    }
    const std::chrono::duration<double> span = reports_.back().time - reports_.front().time;
    // A file that failed takes its bytes back.
    const std::uint64_t first = std::min(reports_.front().bytes, reports_.back().bytes);
    return static_cast<double>(reports_.back().bytes - first) / span.count();
}

std::optional<std::uint64_t> seconds_left(const JobProgress& progress) {
    if (!progress.bytes_per_second || *progress.bytes_per_second <= 0 ||
        progress.bytes_done > progress.bytes) {
        return std::nullopt;
    }
    const double rest =
        std::ceil(static_cast<double>(progress.bytes - progress.bytes_done) / *progress.bytes_per_second);
    return rest < kLongestRest ? std::optional<std::uint64_t>(static_cast<std::uint64_t>(rest))
                               : std::nullopt;
}

std::string job_status_text(const JobProgress& progress, int width) {
    std::string text = progress.bytes > 0 ? progress_bar(progress.bytes_done, progress.bytes)
                                          : progress_bar(progress.files_done, progress.files);
    text += " " + std::to_string(progress.files_done) + " of " + std::to_string(progress.files) + " files";
    if (progress.bytes > 0) {
        text += "  " + readable_size(progress.bytes_done) + " of " + readable_size(progress.bytes);
    }
    if (progress.bytes_per_second) {
        text += "  " + readable_size(static_cast<std::uint64_t>(*progress.bytes_per_second)) + "/s";
    }
    if (const auto rest = seconds_left(progress)) {
        text += "  " + readable_duration(*rest * 1000) + " left";
    }
    text += "  " + printable_text(progress.name);
    return fit_to_cells(text, static_cast<std::size_t>(std::max(width, 1)), "~");
}

std::string files_text(std::size_t files, std::uint64_t bytes) {
    const std::string text = std::to_string(files) + (files == 1 ? " file" : " files");
    return bytes > 0 ? text + " (" + readable_size(bytes) + ")" : text;
}
