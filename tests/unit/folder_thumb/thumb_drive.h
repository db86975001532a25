#ifndef QRA_TESTS_UNIT_FOLDER_THUMB_THUMB_DRIVE_H
#define QRA_TESTS_UNIT_FOLDER_THUMB_THUMB_DRIVE_H

#include <unistd.h>

#include <cstdlib>
#include <set>
#include <string>

#include "apps/qra/main_loop_thread.h"
#include "common/util/json_value.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/received.h"
#include "tests/unit/local_source/sample_drive.h"

/// The sample drive takes the bus away; this keeps its address.
class BusAddress {
protected:
    BusAddress() {
        const char* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
        address_ = address != nullptr ? address : "";
    }
    void restore() const { setenv("DBUS_SYSTEM_BUS_ADDRESS", address_.c_str(), 1); }

private:
    std::string address_;
};

/// Lets the engine of a fixture be made after the bus has been given back.
class SampleDriveOnBus : private BusAddress, public SampleDrive {
protected:
    SampleDriveOnBus() { restore(); }
};

/// A real media database with a drive, a scripted engine, and a main loop on a thread of its own.
class ThumbDrive : public SampleDriveOnBus {
protected:
    ThumbDrive() {
        engine.answer("start_server", {"('QRA_SERVER_START_SUCCESS',)"});
        engine.answer("check_folder_path", {"('',)"});
        engine.answer("start_scanner_thumb", {"(true,)"});
        engine.answer("stop_scanner_thumb", {"()"});
    }

    /// The arguments of a call about a folder's scan.
    static std::string scan_arguments(const std::string& path, const std::string& content_type, int count) {
        return "('" + path + "', '" + content_type + "', uint32 " + std::to_string(count) + ", uint32 " +
               std::to_string(getpid()) + ")";
    }

    std::string arguments_of(const std::string& method) const {
        std::string arguments = "never called";
        for (const FakeEngine::Call& call : engine.calls()) {
            if (call.method == method) {
                arguments = call.arguments;
            }
        }
        return arguments;
    }

    /// The scans that the engine was told to stop. A scan that is called off while the engine is still asked
    /// to start it is stopped twice.
    std::set<std::string> stopped_scans() const {
        std::set<std::string> stopped;
        for (const FakeEngine::Call& call : engine.calls()) {
            if (call.method == "stop_scanner_thumb") {
                stopped.insert(call.arguments);
            }
        }
        return stopped;
    }

    /// What the engine signals of a scan that is done.
    static std::string done_text(const std::string& path, const std::string& content_type, int count,
                                 const std::string& data) {
        CJsonValue json;
        json.Set("qra_folder_thumbnail_error_code", 0);
        json.Set("qra_folder_thumbnail_path", path);
        json.Set("qra_folder_thumbnail_content_type", content_type);
        json.Set("qra_folder_thumbnail_request_num", count);
        json.Set("qra_folder_thumbnail_data", data);
        return json.ToString();
    }

    /// Sends a text with the signal that scans are done; the texts of these tests hold no quotes but double
    /// ones.
    void signal(const std::string& text) {
        std::string quoted;
        for (const char c : text) {
            quoted += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : std::string(1, c);
        }
        engine.emit("qra_folder_thumb_done", "('" + quoted + "',)");
    }

    void finish(const std::string& path, const std::string& content_type, int count,
                const std::string& data = "{}") {
        signal(done_text(path, content_type, count, data));
    }

    FakeEngine engine;
    Received received;
    MainLoopThread loop;
};

#endif
