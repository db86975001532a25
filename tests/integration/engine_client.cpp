#include "tests/integration/engine_client.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/integration/engine_bus.h"

namespace {

constexpr unsigned kDeadlineSeconds = 30;
constexpr unsigned kLookMilliseconds = 5;
constexpr int kMostImpatientEngines = 50;

}  // namespace

bool wait_until(const std::function<bool()>& is_so) {
    bool late = false;
    const auto set_late = [](void* flag) -> int {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_CONTINUE;
    };
    const unsigned deadline = g_timeout_add_seconds(kDeadlineSeconds, set_late, &late);
    // For what no event of this process tells of.
    const unsigned look = g_timeout_add(
        kLookMilliseconds, [](void*) -> int { return G_SOURCE_CONTINUE; }, nullptr);
    bool so = is_so();
    while (!so && !late) {
        g_main_context_iteration(nullptr, TRUE);
        so = is_so();
    }
    g_source_remove(deadline);
    g_source_remove(look);
    return so;
}

glib::ObjectPtr<GDBusConnection> connect_to_bus() {
    glib::ErrorOut error;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    glib::ObjectPtr<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
        getenv("DBUS_SYSTEM_BUS_ADDRESS"), flags, nullptr, nullptr, error));
    EXPECT_TRUE(bus) << error.message();
    return bus;
}

EngineProcess::EngineProcess(std::vector<std::string> options) {
    options.insert(options.begin(), QRA_TEST_ENGINE);
    std::vector<char*> arguments;
    for (std::string& option : options) {
        arguments.push_back(option.data());
    }
    arguments.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        execv(QRA_TEST_ENGINE, arguments.data());
        _exit(127);
    }
    const Bus bus;
    EXPECT_TRUE(wait_until([&] { return has_ended() || bus.owner().error.empty(); }))
        << "the engine takes no name on the bus";
}

EngineProcess::~EngineProcess() {
    if (status_ < 0) {
        ::kill(pid_, SIGTERM);
        waitpid(pid_, &status_, 0);
        EXPECT_EQ(0, status_) << "the engine did not end well";
    }
}

void EngineProcess::kill() {
    ::kill(pid_, SIGKILL);
    waitpid(pid_, &status_, 0);
    const Bus bus;
    EXPECT_TRUE(wait_until([&] { return !bus.owner().error.empty(); }))
        << "the bus keeps a dead engine's name";
}

bool EngineProcess::has_ended() {
    if (status_ < 0 && waitpid(pid_, &status_, WNOHANG) == pid_) {
        EXPECT_EQ(0, status_) << "the engine did not end well";
    }
    return status_ >= 0;
}

int scanning_threads_of(pid_t engine) {
    const std::string tasks = "/proc/" + std::to_string(engine) + "/task";
    const std::unique_ptr<DIR, int (*)(DIR*)> threads(opendir(tasks.c_str()), closedir);
    int count = 0;
    while (const dirent* thread = threads ? readdir(threads.get()) : nullptr) {
        std::ifstream file(tasks + "/" + thread->d_name + "/comm");
        std::string name;
        count += std::getline(file, name) && name == "media-scan" ? 1 : 0;
    }
    return count;
}

EngineClient::EngineClient() : bus_(connect_to_bus()) {
    subscription_ =
        g_dbus_connection_signal_subscribe(bus_.get(), kEngineName, kEngineName, nullptr, kEnginePath,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &on_signal, this, nullptr);
}

EngineClient::~EngineClient() {
    leave();
}

void EngineClient::leave() {
    if (bus_) {
        g_dbus_connection_signal_unsubscribe(bus_.get(), subscription_);
        g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
        bus_.reset();
    }
}

glib::VariantPtr EngineClient::call(const char* method, GVariant* arguments) {
    glib::ErrorOut error;
    glib::VariantPtr reply = try_call(method, arguments, error);
    EXPECT_TRUE(reply) << method << ": " << error.message();
    return reply;
}

glib::VariantPtr EngineClient::try_call(const char* method, GVariant* arguments, glib::ErrorOut& error) {
    GAsyncResult* result = nullptr;
    const auto done = [](GObject*, GAsyncResult* answer, void* place) {
        *static_cast<GAsyncResult**>(place) = static_cast<GAsyncResult*>(g_object_ref(answer));
    };
    g_dbus_connection_call(bus_.get(), kEngineName, kEnginePath, kEngineName, method, arguments, nullptr,
                           G_DBUS_CALL_FLAGS_NONE, -1, nullptr, done, &result);
    while (result == nullptr) {
        g_main_context_iteration(nullptr, TRUE);  // the call has a deadline of its own
    }
    glib::VariantPtr reply(g_dbus_connection_call_finish(bus_.get(), result, error));
    g_object_unref(result);
    return reply;
}

std::unique_ptr<EngineProcess> EngineClient::use_impatient_engine(
    const char* method, const std::function<GVariant*()>& arguments) {
    for (int i = 0; i < kMostImpatientEngines; ++i) {
        auto engine = std::make_unique<EngineProcess>(std::vector<std::string>{"--idle-timeout", "0.2"});
        glib::ErrorOut error;
        if (try_call(method, arguments(), error)) {
            return engine;
        }
    }
    ADD_FAILURE() << "no engine waits for a call";
    return std::make_unique<EngineProcess>();
}

unsigned EngineClient::number(const char* method, GVariant* arguments) {
    guint32 answer = 0xffffffff;
    if (const auto reply = call(method, arguments)) {
        g_variant_get(reply.get(), "(u)", &answer);
    }
    return answer;
}

glib::VariantPtr EngineClient::take_signal(const std::string& name) {
    const auto find = [&] {
        return std::find_if(signals_.begin(), signals_.end(),
                            [&](const Signal& one) { return one.name == name; });
    };
    if (!wait_until([&] { return find() != signals_.end(); })) {
        ADD_FAILURE() << "the signal " << name << " does not come";
        return nullptr;
    }
    const auto found = find();
    glib::VariantPtr arguments = std::move(found->arguments);
    signals_.erase(found);
    return arguments;
}

Json::Value EngineClient::take_json(const std::string& name) {
    const auto arguments = take_signal(name);
    const char* text = "{}";
    if (arguments) {
        g_variant_get(arguments.get(), "(&s)", &text);
    }
    return parse_json(text);
}

size_t EngineClient::signals_left() {
    // The bus and the engine keep the order: what was sent before the answer is here before it.
    call("start_server", g_variant_new("(s)", "start_server"));
    return signals_.size();
}

void EngineClient::on_signal(GDBusConnection*, const char*, const char*, const char*, const char* signal,
                             GVariant* arguments, void* self) {
    static_cast<EngineClient*>(self)->signals_.push_back(
        {signal, glib::VariantPtr(g_variant_ref(arguments))});
}

Json::Value parse_json(const std::string& text) {
    std::istringstream stream(text);
    Json::Value value;
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) << errors << text;
    return value;
}
