#include <qra/qra_content_agent.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "apps/qra/answer_queue.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/device_view.h"
#include "apps/qra/engine_access.h"
#include "apps/qra/engine_watch.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/main_loop_thread.h"
#include "apps/qra/output.h"
#include "apps/qra/request_error.h"

namespace {

using WatchEvent = std::variant<DeviceLine, EngineState>;
using WatchEvents = AnswerQueue<WatchEvent>;

/// An engine that ends as soon as it is started is not started more often than that.
constexpr std::chrono::seconds kPauseBetweenStarts(1);

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
    static_cast<WatchEvents*>(events)->give(device_line(event_name(event), storage, false));
}

void on_bd_event(void* events, int event, qra_storage_h storage) {
    static_cast<WatchEvents*>(events)->give(device_line(event_name(event), storage, true));
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

    void show_all(const std::vector<DeviceLine>& devices) const {
        for (const DeviceLine& device : devices) {
            show(device);
        }
        flush_output();
    }

    void show_engine(bool runs) const {
        if (json_) {
            print(runs ? "{\"event\":\"engine-back\"}\n" : "{\"event\":\"engine-ended\"}\n");
        } else {
            print(runs ? "the content engine is back\n" : "the content engine ended\n");
        }
        flush_output();
    }

private:
    const DeviceOptions& options_;
    const bool json_;
};

using StorageList = std::unique_ptr<_qra_storage_list_s, decltype(&qra_storage_list_destory)>;

void add_devices(const StorageList& list, bool optical, std::vector<DeviceLine>& devices) {
    for (int i = 0; i < qra_storage_get_list_count(list.get()); ++i) {
        devices.push_back(device_line("present", qra_storage_get_storage(i, list.get()), optical));
    }
}

/// Those that are there.
qra_error_code_e get_devices(const DeviceOutput& output, std::vector<DeviceLine>& devices) {
    qra_storage_list_h list = nullptr;
    if (output.wants_usb()) {
        const qra_error_code_e code = qra_get_usb_list(QRA_STORAGE_DEVICE_ALL, &list);
        if (code != QRA_ERROR_NONE) {
            return code;
        }
        add_devices(StorageList(list, &qra_storage_list_destory), false, devices);
    }
    if (output.wants("bd")) {
        const qra_error_code_e code = qra_get_bd_list(&list);
        if (code != QRA_ERROR_NONE) {
            return code;
        }
        add_devices(StorageList(list, &qra_storage_list_destory), true, devices);
    }
    return QRA_ERROR_NONE;
}

/// Shows what is there and what comes and goes. Once the engine has ended it starts it again, where the bus
/// can, or waits until somebody else does.
class DeviceWatch {
public:
    DeviceWatch(const DeviceOutput& output, WatchEvents& events) : output_(output), events_(events) {}
    ~DeviceWatch() {
        if (tells_usb_) {
            qra_unset_usb_callback();
        }
        if (tells_bd_) {
            qra_unset_bd_callback();
        }
    }
    DeviceWatch(const DeviceWatch&) = delete;
    DeviceWatch& operator=(const DeviceWatch&) = delete;

    /// Until a signal ends the tool.
    void run() {
        const EngineWatch<WatchEvent> engine(events_);
        events_.next();  // what the engine's state was before this asks it anything
        check("devices", begin());
        while (!interrupt::requested()) {
            const std::optional<WatchEvent> event =
                wants_engine_ ? events_.next_before(last_begin_ + kPauseBetweenStarts) : events_.next();
            if (event) {
                std::visit([this](const auto& change) { take(change); }, *event);
            } else if (!interrupt::requested()) {
                static_cast<void>(begin());  // an engine that does not answer yet is waited for
            }
        }
    }

private:
    /// Has events told, then shows what is there, so that nothing is missed between the two.
    qra_error_code_e begin() {
        wants_engine_ = false;
        last_begin_ = std::chrono::steady_clock::now();
        std::vector<DeviceLine> devices;
        qra_error_code_e code = set_callbacks();
        if (code == QRA_ERROR_NONE) {
            code = get_devices(output_, devices);
        }
        if (code != QRA_ERROR_NONE) {
            return code;
        }
        is_watching_ = true;
        if (has_ended_) {
            has_ended_ = false;
            output_.show_engine(true);
        }
        output_.show_all(devices);
        return QRA_ERROR_NONE;
    }

    qra_error_code_e set_callbacks() {
        qra_error_code_e code = QRA_ERROR_NONE;
        if (output_.wants_usb()) {
            code = qra_set_usb_callback(on_usb_event, &events_);
            tells_usb_ = code == QRA_ERROR_NONE;
        }
        if (code == QRA_ERROR_NONE && output_.wants("bd")) {
            code = qra_set_bd_callback(on_bd_event, &events_);
            tells_bd_ = code == QRA_ERROR_NONE;
        }
        return code;
    }

    void take(const DeviceLine& device) {
        output_.show(device);
        flush_output();
    }

    void take(EngineState state) {
        if (state == EngineState::NoBus) {
            throw CommandError(ExitStatus::ServiceMissing, "the message bus ended");
        }
        const bool runs = state == EngineState::Running;
        if (!runs && is_watching_) {
            output_.show_engine(false);
            has_ended_ = true;
        }
        wants_engine_ = wants_engine_ || runs != is_watching_;
        is_watching_ = is_watching_ && runs;
    }

    const DeviceOutput& output_;
    WatchEvents& events_;
    bool tells_usb_ = false;
    bool tells_bd_ = false;
    bool is_watching_ = false;   ///< the engine that runs tells events
    bool has_ended_ = false;     ///< the engine has, and the user was told
    bool wants_engine_ = false;  ///< to begin again, as soon as that may be
    std::chrono::steady_clock::time_point last_begin_;
};

}  // namespace

void run_devices(const CommandLine& line) {
    WatchEvents events;  // outlives the loop whose thread fills it
    const EngineAccess engine;
    const MainLoopThread loop;
    const DeviceOutput output(line);
    if (line.devices.watch) {
        DeviceWatch(output, events).run();
        return;
    }
    std::vector<DeviceLine> devices;
    check("devices", get_devices(output, devices));
    output.show_all(devices);
}
