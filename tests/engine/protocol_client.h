#ifndef QRA_TESTS_ENGINE_PROTOCOL_CLIENT_H
#define QRA_TESTS_ENGINE_PROTOCOL_CLIENT_H

#include <gio/gio.h>
#include <json/json.h>
#include <sys/types.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "platform/support/glib_ptr.h"
#include "tests/fakes/temp_dir.h"

/// A test's own directory for what its engines keep.
class DataDirectory : public TempDir {
public:
    DataDirectory() { setenv("QRA_DATA_DIR", path().c_str(), 1); }
};

// The sanitizers keep memory that was freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsMemoryOurs = false;
#else
inline constexpr bool kIsMemoryOurs = true;
#endif

/// Private dirty memory of a process, in kB; of its whole address space.
size_t private_dirty_kb_of(pid_t pid);

/// An engine as a process of its own. One that still runs is asked to end with the object, and must end well.
class EngineProcess {
public:
    explicit EngineProcess(const std::vector<std::string>& limits = {});
    ~EngineProcess();
    EngineProcess(const EngineProcess&) = delete;
    EngineProcess& operator=(const EngineProcess&) = delete;

    pid_t pid() const { return pid_; }
    bool is_alive() const;
    void kill_now();  ///< SIGKILL, and waits for its end
    int end();        ///< SIGTERM; the exit status

    size_t open_descriptors() const;
    size_t private_dirty_kb() const { return private_dirty_kb_of(pid_); }

private:
    int wait();

    pid_t pid_;
};

/// The texts of one section, as the library reads them out of shared memory.
struct SectionTexts {
    int first = 0;
    int last = -1;
    int section = -1;
    int total = 0;
    std::vector<std::pair<int, int>> groups;
    std::vector<std::string> texts;
    std::vector<std::string> block_names;
};
SectionTexts read_section(const std::string& name);

/// The shared memory objects of the engine that made the object `name`, but for its mark of life.
std::set<std::string> objects_like(const std::string& name);
/// Whether there is an object of that name.
bool has_object(const std::string& name);

/// Waits for a condition, letting a main context run; false if it does not come true within 30 seconds.
bool wait_until(const std::function<bool()>& condition, GMainContext* context = nullptr);

/// A client on a bus connection of its own, and the completions that the engine sent it.
class ProtocolClient {
public:
    ProtocolClient();
    ~ProtocolClient();
    ProtocolClient(const ProtocolClient&) = delete;
    ProtocolClient& operator=(const ProtocolClient&) = delete;

    /// Waits until the engine answers. False if it does not within 30 seconds.
    bool wait_for_engine();
    /// Calls a method; null, with error() set, if that fails.
    glib::VariantPtr call(const char* method, GVariant* arguments);
    const std::string& error() const { return error_; }

    /// The id of a new connection to an account; 0, with error() set, if it is refused.
    uint32_t connect(const std::string& account);
    void disconnect(uint32_t id) { call("disconnect", g_variant_new("(u)", id)); }
    void get_range(uint32_t id, uint32_t first, uint32_t last, const Json::Value& request);
    /// The same with the keys of an ordinary request.
    void get_range(uint32_t id, uint32_t first, uint32_t last, int section = 0);
    void drop(uint32_t id, const std::string& name) {
        call("drop_partial_list", g_variant_new("(us)", id, name.c_str()));
    }

    /// The next completion that came; a null value if none comes within 30 seconds.
    Json::Value next();
    /// True if no completion is waiting after the engine has answered a further call.
    bool is_quiet();
    /// Asks for a range of a list and gives the answer.
    Json::Value ask_range(uint32_t id, uint32_t first, uint32_t last, int section = 0) {
        get_range(id, first, last, section);
        return next();
    }

    GMainContext* context() const { return context_; }
    void close();

private:
    static void on_signal(GDBusConnection*, const char*, const char*, const char*, const char*,
                          GVariant* values, void* self);

    GMainContext* context_;
    glib::ObjectPtr<GDBusConnection> bus_;
    std::string error_;
    std::deque<Json::Value> completions_;
};

Json::Value list_request(uint32_t id, int section);
/// The JSON object of a text; null if it is none.
Json::Value json_of(const std::string& text);
/// The text of a completion's name of the result list.
std::string list_name(const Json::Value& completion);

#endif
