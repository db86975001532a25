#ifndef QRA_TESTS_INTEGRATION_ENGINE_CLIENT_H
#define QRA_TESTS_INTEGRATION_ENGINE_CLIENT_H

#include <gio/gio.h>
#include <json/json.h>
#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/support/glib_ptr.h"

/// Runs the default main context until something is so; false if that takes far too long.
bool wait_until(const std::function<bool()>& is_so);

/// A connection of its own to the bus that stands in for the system bus.
glib::ObjectPtr<GDBusConnection> connect_to_bus();

/// How many threads of an engine scan folders.
int scanning_threads_of(pid_t engine);

/// A content engine as a process of the test's own, with the test's environment. Ends with the object.
class EngineProcess {
public:
    explicit EngineProcess(std::vector<std::string> options = {"--idle-timeout", "0"});
    ~EngineProcess();
    EngineProcess(const EngineProcess&) = delete;
    EngineProcess& operator=(const EngineProcess&) = delete;

    /// Ends it without any warning.
    void kill();
    /// Whether it has ended by itself, and well.
    bool has_ended();
    int scanning_threads() const { return scanning_threads_of(pid_); }

private:
    pid_t pid_;
    int status_ = -1;
};

/// A client of the engine, with all signals that it was sent.
class EngineClient {
public:
    EngineClient();
    ~EngineClient();
    EngineClient(const EngineClient&) = delete;
    EngineClient& operator=(const EngineClient&) = delete;

    /// Calls a method and runs the main context until the answer is there. Null, and a failed test, for an
    /// error.
    glib::VariantPtr call(const char* method, GVariant* arguments);
    /// The same for a call that may fail; null for an error, which is kept in `error`.
    glib::VariantPtr try_call(const char* method, GVariant* arguments, glib::ErrorOut& error);

    /// Starts an engine that ends soon unless it is in use, and calls a method that makes it be. An engine
    /// that ended before the call reached it is replaced.
    std::unique_ptr<EngineProcess> use_impatient_engine(const char* method,
                                                        const std::function<GVariant*()>& arguments);

    /// The reply of a method that answers one number.
    unsigned number(const char* method, GVariant* arguments);

    /// The arguments of the first signal of that name that was not taken before, waited for; null, and a
    /// failed test, if none comes.
    glib::VariantPtr take_signal(const std::string& name);
    /// The same for a signal whose one argument is a JSON text.
    Json::Value take_json(const std::string& name);

    /// How many signals were sent and not taken, once all that was sent before this call is here.
    size_t signals_left();

    /// Leaves the bus.
    void leave();

private:
    struct Signal {
        std::string name;
        glib::VariantPtr arguments;
    };

    static void on_signal(GDBusConnection* bus, const char* sender, const char* path, const char* interface,
                          const char* signal, GVariant* arguments, void* self);

    glib::ObjectPtr<GDBusConnection> bus_;
    unsigned subscription_;
    std::vector<Signal> signals_;
};

Json::Value parse_json(const std::string& text);

#endif
