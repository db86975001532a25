#include "apps/qra/item_act.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>
#include <utility>

#include "apps/qra/engine_access.h"
#include "apps/qra/exit_status.h"
#include "apps/qra/json_text.h"
#include "apps/qra/terminal_text.h"

namespace {

constexpr char kPath[] = "/com/morva/qra/engine";
constexpr char kRequestKey[] = "qra_act_request_times";
constexpr int kActDone = 6;
constexpr int kActFailed = 7;

/// Ends a command with what the bus or the engine said.
[[noreturn]] void fail(GError* error) {
    g_dbus_error_strip_remote_error(error);
    const bool refused = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_FAILED) != FALSE;
    const std::string text = printable_text(error->message);
    g_error_free(error);
    throw CommandError(refused ? ExitStatus::RequestFailed : ExitStatus::ServiceMissing,
                       refused ? text : "the content engine does not answer: " + text);
}

Owned<GDBusConnection> system_bus() {
    GError* error = nullptr;
    Owned<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error));
    if (!bus) {
        fail(error);
    }
    return bus;
}

Owned<GVariant> call(GDBusConnection* bus, const char* method, GVariant* arguments, const char* reply_type) {
    GError* error = nullptr;
    Owned<GVariant> reply(g_dbus_connection_call_sync(bus, kEngineName, kPath, kEngineName, method, arguments,
                                                      G_VARIANT_TYPE(reply_type), G_DBUS_CALL_FLAGS_NONE, -1,
                                                      nullptr, &error));
    if (!reply) {
        fail(error);
    }
    return reply;
}

guint32 connect(GDBusConnection* bus, const std::string& account) {
    const Owned<GVariant> reply = call(bus, "connect", g_variant_new("(s)", account.c_str()), "(u)");
    guint32 id = 0;
    g_variant_get(reply.get(), "(u)", &id);
    return id;
}

void disconnect(GDBusConnection* bus, guint32 id) {
    g_dbus_connection_call(bus, kEngineName, kPath, kEngineName, "disconnect", g_variant_new("(u)", id),
                           nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

}  // namespace

ItemActs::ItemActs(const std::string& account, Completions& completions)
    : completions_(completions), bus_(system_bus()), id_(connect(bus_.get(), account)) {
    subscription_ = g_dbus_connection_signal_subscribe(
        bus_.get(), kEngineName, kEngineName, "qra_request_normal_complete", kPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, on_complete, &completions_, nullptr);
}

ItemActs::~ItemActs() {
    g_dbus_connection_signal_unsubscribe(bus_.get(), subscription_);
    disconnect(bus_.get(), id_);
}

void ItemActs::perform(Json::Value request, std::chrono::seconds longest_wait) {
    const std::unique_ptr<char, decltype(&g_free)> number(g_uuid_string_random(), &g_free);
    request[kRequestKey] = number.get();
    call(bus_.get(), "request_act", g_variant_new("(uss)", id_, "", json_text(request).c_str()), "()");
    for (;;) {
        const Json::Value answer = read_json_object(completions_.next_within(longest_wait));
        const bool is_ours = answer[kRequestKey] == number.get();
        if (is_ours && answer["qra_event_type"] == kActDone) {
            return;
        }
        if (is_ours && answer["qra_event_type"] == kActFailed) {
            const Json::Value& reason = answer["qra_error_text"];
            throw CommandError(ExitStatus::RequestFailed, reason.isString()
                                                              ? printable_text(reason.asString())
                                                              : "the service gave no reason");
        }
    }
}

void ItemActs::on_complete(GDBusConnection*, const char*, const char*, const char*, const char*,
                           GVariant* arguments, gpointer completions) {
    if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(s)"))) {
        const char* text = nullptr;
        g_variant_get(arguments, "(&s)", &text);
        static_cast<Completions*>(completions)->give(text);
    }
}

void fail_refused_account(const std::string& account) {
    const Owned<GDBusConnection> bus = system_bus();
    std::string reason;
    try {
        disconnect(bus.get(), connect(bus.get(), account));
    } catch (const CommandError& error) {
        reason = std::string(": ") + error.what();
        reason.erase(reason.find_last_not_of('.') + 1);
    }
    throw CommandError(ExitStatus::RequestFailed, "the content engine does not take the account " +
                                                      printable_text(account) + reason +
                                                      "; `qra account list` shows yours");
}
