#include "tests/engine/protocol_client.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "common/datamodel/qra_resultlist.h"
#include "engine/src/json_text.h"

namespace {

constexpr char kName[] = "com.morva.qra.engine";
constexpr char kPath[] = "/com/morva/qra/engine";
constexpr gint64 kLongestWait = 30 * G_USEC_PER_SEC;
constexpr char kShmDirectory[] = "/dev/shm/";

}  // namespace

size_t private_dirty_kb_of(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/smaps_rollup");
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::string key;
        size_t kilobytes = 0;
        if (words >> key >> kilobytes && key == "Private_Dirty:") {
            return kilobytes;
        }
    }
    ADD_FAILURE() << "no Private_Dirty of process " << pid;
    return 0;
}

EngineProcess::EngineProcess(const std::vector<std::string>& limits) {
    std::vector<char*> arguments = {const_cast<char*>(QRA_TEST_ENGINE)};
    for (const std::string& limit : limits) {
        arguments.push_back(const_cast<char*>(limit.c_str()));
    }
    arguments.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        execv(QRA_TEST_ENGINE, arguments.data());
        _exit(127);
    }
}

EngineProcess::~EngineProcess() {
    if (is_alive()) {
        EXPECT_EQ(0, end());
    } else if (pid_ > 0) {
        wait();
    }
}

bool EngineProcess::is_alive() const {
    siginfo_t info = {};
    return pid_ > 0 && waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

int EngineProcess::wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void EngineProcess::kill_now() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        wait();
    }
}

int EngineProcess::end() {
    kill(pid_, SIGTERM);
    return wait();
}

size_t EngineProcess::open_descriptors() const {
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(pid_) + "/fd")) {
        count += entry.path().empty() ? 0 : 1;
    }
    return count;
}

SectionTexts read_section(const std::string& name) {
    CResultList list(name);
    SectionTexts section = {
        list.StartIndex(), list.EndIndex(), list.SectionIndex(), list.GetTotalCount(), {}, {}, {}};
    for (int i = 0; i < list.GetGroupCount(); ++i) {
        int first = 0;
        int last = 0;
        EXPECT_TRUE(list.GetGroup(i, first, last));
        section.groups.emplace_back(first, last);
    }
    for (int i = 0; i < list.GetBlockCount(); ++i) {
        std::string block;
        EXPECT_TRUE(list.GetBlockName(i, block));
        section.block_names.emplace_back(block.c_str());
    }
    for (int i = section.first; i <= section.last; ++i) {
        std::string text;
        std::string block;
        int place = -1;
        EXPECT_TRUE(list.GetItem(i, text, block, place)) << "item " << i;
        section.texts.push_back(text);
    }
    return section;
}

std::set<std::string> objects_like(const std::string& name) {
    const std::string instance = name.substr(1, name.rfind('_'));
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kShmDirectory)) {
        const std::string other = entry.path().filename();
        if (other.compare(0, instance.size(), instance) == 0 && other != instance + "live") {
            names.insert("/" + other);
        }
    }
    return names;
}

bool has_object(const std::string& name) {
    return access((kShmDirectory + name.substr(1)).c_str(), F_OK) == 0;
}

bool wait_until(const std::function<bool()>& condition, GMainContext* context) {
    const gint64 end = g_get_monotonic_time() + kLongestWait;
    while (!condition()) {
        if (g_get_monotonic_time() > end) {
            return false;
        }
        if (!g_main_context_iteration(context, FALSE)) {
            g_usleep(1000);
        }
    }
    return true;
}

ProtocolClient::ProtocolClient() : context_(g_main_context_new()) {
    g_main_context_push_thread_default(context_);
    glib::ErrorOut error;
    const char* address = g_getenv("DBUS_SYSTEM_BUS_ADDRESS");
    bus_.reset(g_dbus_connection_new_for_address_sync(
        address ? address : "",
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, error));
    EXPECT_TRUE(bus_) << error.message();
    g_dbus_connection_set_exit_on_close(bus_.get(), FALSE);
    g_dbus_connection_signal_subscribe(bus_.get(), nullptr, kName, "qra_request_normal_complete", kPath,
                                       nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &ProtocolClient::on_signal, this,
                                       nullptr);
    g_main_context_pop_thread_default(context_);
}

ProtocolClient::~ProtocolClient() {
    close();
    g_main_context_unref(context_);
}

void ProtocolClient::close() {
    if (bus_) {
        g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
        bus_.reset();
        while (g_main_context_iteration(context_, FALSE)) {
        }
    }
}

void ProtocolClient::on_signal(GDBusConnection*, const char*, const char*, const char*, const char*,
                               GVariant* values, void* self) {
    const char* text = nullptr;
    g_variant_get(values, "(&s)", &text);
    static_cast<ProtocolClient*>(self)->completions_.push_back(json_of(text));
}

glib::VariantPtr ProtocolClient::call(const char* method, GVariant* arguments) {
    glib::ErrorOut error;
    glib::VariantPtr reply(g_dbus_connection_call_sync(bus_.get(), kName, kPath, kName, method, arguments,
                                                       nullptr, G_DBUS_CALL_FLAGS_NONE, 30 * 1000, nullptr,
                                                       error));
    error_ = reply ? "" : error.message();
    return reply;
}

bool ProtocolClient::wait_for_engine() {
    return wait_until(
        [this] { return call("start_server", g_variant_new("(s)", "start_server")) != nullptr; }, context_);
}

uint32_t ProtocolClient::connect(const std::string& account) {
    const glib::VariantPtr reply = call("connect", g_variant_new("(s)", account.c_str()));
    uint32_t id = 0;
    if (reply) {
        g_variant_get(reply.get(), "(u)", &id);
    }
    return id;
}

void ProtocolClient::get_range(uint32_t id, uint32_t first, uint32_t last, const Json::Value& request) {
    call("get_partial_list", g_variant_new("(uuus)", id, first, last, engine::to_json_text(request).c_str()));
}

void ProtocolClient::get_range(uint32_t id, uint32_t first, uint32_t last, int section) {
    get_range(id, first, last, list_request(id, section));
}

Json::Value ProtocolClient::next() {
    if (!wait_until([this] { return !completions_.empty(); }, context_)) {
        ADD_FAILURE() << "no completion came";
        return {};
    }
    Json::Value completion = completions_.front();
    completions_.pop_front();
    return completion;
}

bool ProtocolClient::is_quiet() {
    call("start_server", g_variant_new("(s)", "start_server"));
    while (g_main_context_iteration(context_, FALSE)) {
    }
    return completions_.empty();
}

Json::Value list_request(uint32_t id, int section) {
    Json::Value request(Json::objectValue);
    request["qra_source"].append("CloudSource");
    request["qra_command"] = "qra_requestlist";
    for (const char* key :
         {"qra_contenttype", "qra_category", "qra_filter", "qra_filter_data_type", "qra_source_user_data"}) {
        request[key] = "QRA_NULL";
    }
    request["qra_data_style"] = 0;
    request["qra_sectionindex"] = section;
    request["qra_agent_handle"] = id;
    return request;
}

Json::Value json_of(const std::string& text) {
    return engine::parse_json_object(text, 32);
}

std::string list_name(const Json::Value& completion) {
    return completion["qra_result_list_block_name"].asString();
}
