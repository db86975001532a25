#include <json/json.h>
#include <qra/qra_content_agent.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <memory>
#include <string>
#include <utility>

#include "apps/qra/answer_queue.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/directory_path.h"
#include "apps/qra/engine_access.h"
#include "apps/qra/json_text.h"
#include "apps/qra/main_loop_thread.h"
#include "apps/qra/media_drives.h"
#include "apps/qra/media_path.h"
#include "apps/qra/output.h"
#include "apps/qra/request_error.h"
#include "apps/qra/terminal_text.h"

namespace {

/// Where a folder stands below the media root.
std::string find_media_path(const std::string& path) {
    MediaDrives drives;
    return media_path(drives, readable_directory(path));
}

struct CheckResult {
    qra_event_e event;
    std::string text;
};

bool on_device_checked(void* results, CQRADeviceCheckHandle*, qra_event_e event, const char* text) {
    static_cast<AnswerQueue<CheckResult>*>(results)->give({event, text != nullptr ? text : ""});
    return true;
}

using DeviceCheck = std::unique_ptr<CQRADeviceCheckHandle, decltype(&qra_stop_checking_device_v2)>;

void print_check(const std::string& path, const CheckResult& result) {
    Json::Value object(Json::objectValue);
    object["path"] = path;
    object["event"] = result.event;
    object["text"] = result.text;
    print_json(object);
}

bool on_thumb(void* answers, CQRAFolderThumbHandle*, const char* text) {
    static_cast<AnswerQueue<std::string>*>(answers)->give(text);
    return true;
}

/// "image" is short for "CONTENT-IMAGE".
std::string full_content_type(const std::string& type) {
    const std::string prefix = "CONTENT-";
    if (type.rfind(prefix, 0) == 0) {
        return type;
    }
    std::string upper = type;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return prefix + upper;
}

/// A request for a folder's thumbnail, taken back if it has not been answered.
class ThumbRequest {
public:
    ThumbRequest(std::string path, std::string content_type, int count, AnswerQueue<std::string>& answers)
        : path_(std::move(path)), content_type_(std::move(content_type)), count_(count) {
        check("thumbs", qra_request_folder_thumbnail_path(path_.data(), content_type_.data(), count_,
                                                          on_thumb, &answers, &handle_));
    }
    ~ThumbRequest() {
        // Gives a code, and does nothing, for a request that was answered.
        qra_cancel_request_folder_thumbnail_path(path_.data(), content_type_.data(), count_, handle_);
    }
    ThumbRequest(const ThumbRequest&) = delete;
    ThumbRequest& operator=(const ThumbRequest&) = delete;

private:
    std::string path_;
    std::string content_type_;
    const int count_;
    CQRAFolderThumbHandle* handle_ = nullptr;
};

constexpr int kShowsMedia = 0;
constexpr int kShowsFolders = 1;

/// @throws CommandError if it is none, or tells of a failure
Json::Value read_thumb(const std::string& text) {
    Json::Value thumb = read_json_object(text);
    if (thumb.isNull()) {
        throw CommandError(ExitStatus::RequestFailed, "the answer cannot be read");
    }
    const Json::Value& code = thumb["qra_folder_thumbnail_error_code"];
    if (!code.isInt() || code.asInt() != 0 || !thumb["qra_folder_thumbnail_type"].isInt()) {
        throw CommandError(ExitStatus::RequestFailed, "the folder could not be read or scanned");
    }
    return thumb;
}

void print_thumb(const Json::Value& thumb) {
    const int type = thumb["qra_folder_thumbnail_type"].asInt();
    if (type != kShowsMedia) {
        print(type == kShowsFolders ? "no media, only folders\n" : "empty\n");
        return;
    }
    const bool for_a_person = isatty(STDOUT_FILENO) == 1;
    for (const Json::Value& item : thumb["qra_folder_thumbnail_items"]) {
        const std::string path = item.isString() ? item.asString() : "";
        print((for_a_person ? printable_text(path) : path) + "\n");
    }
}

}  // namespace

void run_check_device(const CommandLine& line) {
    const EngineAccess engine;
    const MainLoopThread loop;
    const std::string path = find_media_path(line.path);
    AnswerQueue<CheckResult> results;
    CQRADeviceCheckHandle* handle = nullptr;
    check("check-device", qra_check_device_v2(path.c_str(), on_device_checked, &results, &handle));
    const DeviceCheck owner(handle, &qra_stop_checking_device_v2);
    const CheckResult result = results.next_within(std::chrono::seconds(line.devices.timeout));
    if (line.json) {
        print_check(path, result);
    }
    if (result.event != QRA_EVENT_LIST_SUCCESS) {
        throw CommandError(ExitStatus::RequestFailed, "the scan failed: " + printable_text(result.text));
    }
    if (!line.json) {
        print(printable_text(path) + " is scanned\n");
    }
}

void run_thumbs(const CommandLine& line) {
    const std::string content_type = full_content_type(line.devices.content_type);
    if (!is_content_type(content_type)) {
        throw CommandError(ExitStatus::Usage,
                           "--content: there is no content type " + printable_text(content_type));
    }
    const EngineAccess engine;
    const MainLoopThread loop;
    AnswerQueue<std::string> answers;
    std::string answer;
    {
        const ThumbRequest request(find_media_path(line.path), content_type, line.devices.count, answers);
        answer = answers.next_within(std::chrono::seconds(line.devices.timeout));
    }
    if (line.json) {
        print(answer);
    }
    const Json::Value thumb = read_thumb(answer);
    if (!line.json) {
        print_thumb(thumb);
    }
}
