#ifndef QRA_TESTS_INTEGRATION_ENGINE_BUS_H
#define QRA_TESTS_INTEGRATION_ENGINE_BUS_H

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "platform/support/glib_ptr.h"

inline constexpr char kEngineName[] = "com.morva.qra.engine";
inline constexpr char kEnginePath[] = "/com/morva/qra/engine";

/// What came of a call.
struct Answer {
    std::string error;  ///< the D-Bus error's name; empty for success
    std::string text;   ///< the reply as text, or the error's message
};

inline bool operator==(const Answer& left, const Answer& right) {
    return left.error == right.error && left.text == right.text;
}

inline std::ostream& operator<<(std::ostream& out, const Answer& answer) {
    return out << answer.error << " " << answer.text;
}

/// A copy of a text that GLib allocated, which is freed; empty for none.
inline std::string take(char* text) {
    const std::string copy = text ? text : "";
    g_free(text);
    return copy;
}

/// A client of the bus that stands in for the system bus.
class Bus {
public:
    Bus() {
        glib::ErrorOut error;
        connection_.reset(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, error));
        EXPECT_TRUE(connection_) << error.message();
        g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    }

    Answer call(const char* name, const char* path, const char* interface, const char* method,
                GVariant* arguments) const {
        GError* error = nullptr;
        const glib::VariantPtr reply(
            g_dbus_connection_call_sync(connection_.get(), name, path, interface, method, arguments, nullptr,
                                        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error));
        if (reply) {
            return {"", take(g_variant_print(reply.get(), FALSE))};
        }
        const std::string remote = take(g_dbus_error_get_remote_error(error));
        g_dbus_error_strip_remote_error(error);
        const Answer answer = {remote.empty() ? "no remote error" : remote, error->message};
        g_error_free(error);
        return answer;
    }

    Answer engine(const char* method, GVariant* arguments) const {
        return call(kEngineName, kEnginePath, kEngineName, method, arguments);
    }

    Answer check_folder(const std::string& request) const {
        return engine("check_folder_path", g_variant_new("(s)", request.c_str()));
    }

    Answer find(const std::string& key) const {
        return check_folder(R"({"OPERATION_TYPE":1,"FOLDER_PATH":")" + key + "\"}");
    }

    Answer add(const std::string& key, const std::string& id) const {
        return check_folder(R"({"OPERATION_TYPE":0,"FOLDER_PATH":")" + key + R"(","FOLDER_ID":")" + id +
                            "\"}");
    }

    Answer start_server() const { return engine("start_server", g_variant_new("(s)", "start_server")); }

    /// The unique name of who has the engine's name, or the bus's error.
    Answer owner() const {
        return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner",
                    g_variant_new("(s)", kEngineName));
    }

private:
    glib::ObjectPtr<GDBusConnection> connection_;
};

inline const Answer kUp = {"", "('QRA_SERVER_START_SUCCESS',)"};

/// What the folder map answers with this id.
inline Answer id(const std::string& text) {
    return {"", "('" + text + "',)"};
}

#endif
