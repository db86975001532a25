#include "apps/qra/job_output.h"

#include <json/value.h>
#include <json/writer.h>

#include <utility>

#include "apps/qra/json_text.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"

/// A JSON object that is printed at its end.
class JobOutput::Event {
public:
    explicit Event(const char* name) { object_["event"] = name; }
    ~Event() = default;
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    Event& with(const JobItem& item) {
        object_["tile"] = item.tile;
        object_["name"] = item.name;
        object_["path"] = item.path;
        object_["size"] = Json::UInt64{item.size};
        return *this;
    }

    Event& with(const JobProgress& progress) {
        object_["files_done"] = Json::UInt64{progress.files_done};
        object_["files"] = Json::UInt64{progress.files};
        if (progress.bytes > 0) {
            object_["bytes_done"] = Json::UInt64{progress.bytes_done};
            object_["bytes"] = Json::UInt64{progress.bytes};
        }
        if (progress.bytes_per_second) {
            object_["bytes_per_second"] =
                Json::UInt64{static_cast<std::uint64_t>(*progress.bytes_per_second)};
        }
        if (const auto rest = seconds_left(progress)) {
            object_["seconds_left"] = Json::UInt64{*rest};
        }
        return *this;
    }

    Event& with_reason(const std::string& reason) {
        object_["reason"] = reason;
        return *this;
    }

    void send() const {
        print_json(object_);
        flush_output();
    }

private:
    Json::Value object_{Json::objectValue};
};

JobOutput::JobOutput(bool json, std::string done_word) : json_(json), done_word_(std::move(done_word)) {}

void JobOutput::left_out(const JobItem& item, const std::string& reason) {
    if (json_) {
        Event("left_out").with(item).with_reason(reason).send();
        return;
    }
    print_note("tile " + std::to_string(item.tile) + ", " + printable_text(item.name) + ", " + reason);
}

void JobOutput::planned(const JobItem& item) {
    if (json_) {
        Event("planned").with(item).send();
        return;
    }
    print(std::to_string(item.tile) + "  " + printable_text(item.name) + "  " + readable_size(item.size) +
          "\n");
}

void JobOutput::show(const JobProgress& progress) {
    if (line_.is_shown()) {
        line_.show(job_status_text(progress, line_.width()));
    }
}

void JobOutput::started(const JobProgress& progress) {
    show(progress);
    if (json_) {
        Event("started").with(progress).send();
    }
}

void JobOutput::progress(const JobProgress& progress) {
    show(progress);
    if (json_) {
        Event("progress").with(progress).send();
    }
}

void JobOutput::file_done(const JobItem& item, const JobProgress& progress) {
    show(progress);
    if (json_) {
        Event("file_done").with(item).with(progress).send();
    }
}

void JobOutput::incomplete(const JobItem& item, const std::string& reason) {
    tell("file_incomplete", item, reason);
}

void JobOutput::failed(const JobItem& item, const std::string& reason) {
    tell("file_failed", item, reason);
}

void JobOutput::tell(const char* event, const JobItem& item, const std::string& reason) {
    line_.wipe();
    if (json_) {
        Event(event).with(item).with_reason(reason).send();
        return;
    }
    print_note(printable_text(item.name) + " " + reason);
}

void JobOutput::ended(const char* event, const JobProgress& progress) {
    line_.wipe();
    if (json_) {
        Event(event).with(progress).send();
        return;
    }
    print(files_text(progress.files_done, progress.bytes_done) + " " + done_word_ + "\n");
}
