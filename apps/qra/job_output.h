#ifndef QRA_APPS_QRA_JOB_OUTPUT_H
#define QRA_APPS_QRA_JOB_OUTPUT_H

#include <cstdint>
#include <string>

#include "apps/qra/job_item.h"
#include "apps/qra/job_progress.h"
#include "apps/qra/status_line.h"

/// What a job command tells: to a person a status line, notes on stderr and a summary on stdout; to a program
/// one JSON object for each event, one on a line, on stdout. For one thread.
class JobOutput {
public:
    /// @param done_word what becomes of a file: "copied", "deleted"
    JobOutput(bool json, std::string done_word);

    /// A chosen tile that the job does not touch. @param reason reads after the file's name
    void left_out(const JobItem& item, const std::string& reason);
    void planned(const JobItem& item);
    void started(const JobProgress& progress);
    void progress(const JobProgress& progress);
    void file_done(const JobItem& item, const JobProgress& progress);
    /// A file that is done, but not whole with what belongs to it.
    void incomplete(const JobItem& item, const std::string& reason);
    void failed(const JobItem& item, const std::string& reason);

    /// @param event "finished", "failed" or "stopped"
    void ended(const char* event, const JobProgress& progress);

private:
    class Event;
    void show(const JobProgress& progress);
    void tell(const char* event, const JobItem& item, const std::string& reason);

    bool json_;
    std::string done_word_;
    StatusLine line_;
};

#endif
