#ifndef QRA_TESTS_FAKES_FAKE_ENGINE_H
#define QRA_TESTS_FAKES_FAKE_ENGINE_H

#include <gio/gio.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

/**
 * A content engine that a test scripts: it owns the engine's name on the bus of DBUS_SYSTEM_BUS_ADDRESS and
 * answers each method with what the test told it, with a D-Bus error where it told nothing.
 *
 * Run the test program through scripts/with-bus. Answers and signals are written in GVariant's text form,
 * such as
 * "(uint32 7, 'text')". Calls are answered on a thread of GLib's; everything here may be called from any
 * thread.
 */
class FakeEngine {
public:
    struct Call {
        std::string method;
        std::string arguments;  ///< in GVariant's text form, with types
    };

    FakeEngine();
    ~FakeEngine();
    FakeEngine(const FakeEngine&) = delete;
    FakeEngine& operator=(const FakeEngine&) = delete;

    /// Answers `method` with each of `replies` in turn; the last one stays. An empty reply is a D-Bus error.
    void answer(const std::string& method, std::vector<std::string> replies);

    /// Sends a signal of the engine to whoever listens.
    void emit(const std::string& signal, const std::string& parameters);

    /// Sends a signal just before each answer to `method`, as an engine does that is done at once.
    void emit_with_reply(const std::string& method, const std::string& signal, const std::string& parameters);

    /// Keeps the answers to `method` back until release(); the calls count as they come.
    void hold(const std::string& method);
    void release();

    /// What was called so far, in the order in which it came.
    std::vector<Call> calls() const;

    int count(const std::string& method) const;

    /// Waits until `method` was called as often; false if it was not within twenty seconds.
    bool wait_for(const std::string& method, int count = 1) const;

private:
    static GDBusMessage* on_message(GDBusConnection* connection, GDBusMessage* message, gboolean incoming,
                                    gpointer user_data);
    GDBusMessage* reply_to(GDBusMessage* call);
    std::string take_reply(const std::string& method);
    void send_signal_of(const std::string& method);

    GDBusConnection* connection_ = nullptr;
    guint filter_ = 0;
    mutable std::mutex mutex_;
    mutable std::condition_variable called_;
    std::map<std::string, std::vector<std::string>> replies_;             ///< under mutex_
    std::map<std::string, std::pair<std::string, std::string>> signals_;  ///< by method; under mutex_
    std::vector<Call> calls_;                                             ///< under mutex_
    std::string held_method_;                                             ///< under mutex_
    std::vector<GDBusMessage*> held_replies_;                             ///< owned; under mutex_
};

#endif
