#include <json/json.h>
#include <qra/qra_content_agent.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/qra/answer_queue.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/device_view.h"
#include "apps/qra/engine_access.h"
#include "apps/qra/main_loop_thread.h"
#include "apps/qra/media_drives.h"
#include "apps/qra/media_path.h"
#include "apps/qra/output.h"
#include "apps/qra/request_error.h"
#include "apps/qra/terminal_text.h"

namespace {

using DeviceEvents = AnswerQueue<DeviceLine>;

std::string event_name(int event) {
    switch (event) {
        case QRA_STORAGE_EVENT_ATTACHED:
            return "attached";
        case QRA_STORAGE_EVENT_DETACHED:
            return "detached";
        default:
            return "event " + std::to_string(event);
    }
}

void on_usb_event(void* events, int event, qra_storage_h storage) {
    static_cast<DeviceEvents*>(events)->give(device_line(event_name(event), storage, false));
}

void on_bd_event(void* events, int event, qra_storage_h storage) {
    static_cast<DeviceEvents*>(events)->give(device_line(event_name(event), storage, true));
}

/// Which devices the user wants to see, and how.
class DeviceOutput {
public:
    explicit DeviceOutput(const CommandLine& line) : options_(line.devices), json_(line.json) {}

    bool wants(const std::string& type) const {
        const auto& types = options_.types;
        return types.empty() || std::find(types.begin(), types.end(), type) != types.end();
    }
    bool wants_usb() const { return wants("usb") || wants("ptp") || wants("other"); }

    void show(const DeviceLine& device) const {
        if (wants(device.type)) {
            print(json_ ? device_json(device) : device_text(device, options_.watch));
        }
    }

    void show_all(qra_storage_list_h list, bool optical) const {
        for (int i = 0; i < qra_storage_get_list_count(list); ++i) {
            show(device_line("present", qra_storage_get_storage(i, list), optical));
        }
    }

private:
    const DeviceOptions& options_;
    const bool json_;
};

using StorageList = std::unique_ptr<_qra_storage_list_s, decltype(&qra_storage_list_destory)>;

void show_devices(const DeviceOutput& output) {
    qra_storage_list_h list = nullptr;
    if (output.wants_usb()) {
        check("devices", qra_get_usb_list(QRA_STORAGE_DEVICE_ALL, &list));
        output.show_all(StorageList(list, &qra_storage_list_destory).get(), false);
    }
    if (output.wants("bd")) {
        check("devices", qra_get_bd_list(&list));
        output.show_all(StorageList(list, &qra_storage_list_destory).get(), true);
    }
    flush_output();
}

/// Has events told while it lives.
class DeviceWatch {
public:
    DeviceWatch(const DeviceOutput& output, DeviceEvents& events) {
        if (output.wants_usb()) {
            check("devices", qra_set_usb_callback(on_usb_event, &events));
            unset_.push_back(&qra_unset_usb_callback);
        }
        if (output.wants("bd")) {
            set_bd_callback(events);
        }
    }
    ~DeviceWatch() { unset(); }
    DeviceWatch(const DeviceWatch&) = delete;
    DeviceWatch& operator=(const DeviceWatch&) = delete;

private:
    void set_bd_callback(DeviceEvents& events) {
        const qra_error_code_e code = qra_set_bd_callback(on_bd_event, &events);
        if (code != QRA_ERROR_NONE) {
            unset();
            check("devices", code);
        }
        unset_.push_back(&qra_unset_bd_callback);
    }

    void unset() {
        for (const auto function : unset_) {
            function();
        }
    }

    std::vector<qra_error_code_e (*)()> unset_;
};

/// Where a folder stands below the media root.
std::string find_media_path(const std::string& path) {
    MediaDrives drives;
    return media_path(drives, path);
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
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    print(Json::writeString(builder, object) + "\n");
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
    Json::Value thumb;
    std::string problem;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &thumb, &problem) || !thumb.isObject()) {
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

void run_devices(const CommandLine& line) {
    const EngineAccess engine;
    const MainLoopThread loop;
    const DeviceOutput output(line);
    if (!line.devices.watch) {
        show_devices(output);
        return;
    }
    DeviceEvents events;
    // Before the list, so that nothing is missed between the two.
    const DeviceWatch watch(output, events);
    show_devices(output);
    while (const std::optional<DeviceLine> event = events.next()) {
        output.show(*event);
        flush_output();
    }
}

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
    const EngineAccess engine;
    const MainLoopThread loop;
    AnswerQueue<std::string> answers;
    std::string answer;
    {
        const ThumbRequest request(find_media_path(line.path), full_content_type(line.devices.content_type),
                                   line.devices.count, answers);
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
