#include "tests/fakes/fake_engine.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "common/util/qra_handover.h"

namespace {

constexpr const char* kName = "com.morva.qra.engine";
constexpr const char* kPath = "/com/morva/qra/engine";

/// A broken set-up of a test ends it; nothing can be tested without a bus.
template <class T>
T* require(T* object, const char* what, GError* error) {
    if (object == nullptr) {
        std::fprintf(stderr, "FakeEngine: %s: %s\n", what, error != nullptr ? error->message : "");
        std::abort();
    }
    return object;
}

struct VariantUnref {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

VariantPtr parse(const std::string& text) {
    GError* error = nullptr;
    return VariantPtr(
        require(g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, &error), text.c_str(), error));
}

std::string print(GVariant* value) {
    if (value == nullptr) {
        return "()";
    }
    gchar* const text = g_variant_print(value, TRUE);
    const std::string result(text);
    g_free(text);
    return result;
}

/// Takes the reply over.
void send(GDBusConnection* connection, GDBusMessage* reply) {
    g_dbus_connection_send_message(connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(reply);
}

}  // namespace

FakeEngine::FakeEngine() {
    const char* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    GError* error = nullptr;
    connection_ =
        require(g_dbus_connection_new_for_address_sync(
                    address != nullptr ? address : "",
                    static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                      G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                    nullptr, nullptr, &error),
                "bus", error);
    qra_hand_over(this);
    filter_ = g_dbus_connection_add_filter(connection_, on_message, this, nullptr);
    GVariant* const reply = require(
        g_dbus_connection_call_sync(connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", "RequestName", g_variant_new("(su)", kName, 0u),
                                    G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error),
        "RequestName", error);
    g_variant_unref(reply);
}

FakeEngine::~FakeEngine() {
    // Closing ends the thread that calls the filter, so that none runs once this object is gone.
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_dbus_connection_remove_filter(connection_, filter_);
    g_object_unref(connection_);
    // Orders what the filter wrote before what follows also for the thread sanitizer, which does not see
    // GLib's locks.
    const std::lock_guard<std::mutex> lock(mutex_);
    for (GDBusMessage* const reply : held_replies_) {
        g_object_unref(reply);
    }
}

void FakeEngine::answer(const std::string& method, std::vector<std::string> replies) {
    const std::lock_guard<std::mutex> lock(mutex_);
    replies_[method] = std::move(replies);
}

void FakeEngine::emit(const std::string& signal, const std::string& parameters) {
    g_dbus_connection_emit_signal(connection_, nullptr, kPath, kName, signal.c_str(), parse(parameters).get(),
                                  nullptr);
    g_dbus_connection_flush_sync(connection_, nullptr, nullptr);
}

void FakeEngine::emit_with_reply(const std::string& method, const std::string& signal,
                                 const std::string& parameters) {
    const std::lock_guard<std::mutex> lock(mutex_);
    signals_[method] = {signal, parameters};
}

void FakeEngine::send_signal_of(const std::string& method) {
    std::pair<std::string, std::string> signal;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        signal = signals_[method];
    }
    if (!signal.first.empty()) {
        // Not flushed: this is the thread that writes.
        g_dbus_connection_emit_signal(connection_, nullptr, kPath, kName, signal.first.c_str(),
                                      parse(signal.second).get(), nullptr);
    }
}

void FakeEngine::hold(const std::string& method) {
    const std::lock_guard<std::mutex> lock(mutex_);
    held_method_ = method;
}

void FakeEngine::release() {
    std::vector<GDBusMessage*> replies;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        held_method_.clear();
        replies.swap(held_replies_);
    }
    for (GDBusMessage* const reply : replies) {
        send(connection_, reply);
    }
}

std::vector<FakeEngine::Call> FakeEngine::calls() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return calls_;
}

int FakeEngine::count(const std::string& method) const {
    const std::vector<Call> all = calls();
    return static_cast<int>(
        std::count_if(all.begin(), all.end(), [&](const Call& call) { return call.method == method; }));
}

bool FakeEngine::wait_for(const std::string& method, int count) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return called_.wait_for(lock, std::chrono::seconds(20), [&] {
        return std::count_if(calls_.begin(), calls_.end(),
                             [&](const Call& call) { return call.method == method; }) >= count;
    });
}

GDBusMessage* FakeEngine::on_message(GDBusConnection* connection, GDBusMessage* message, gboolean incoming,
                                     gpointer user_data) {
    qra_take_over(user_data);
    const bool is_call = incoming &&
                         g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL &&
                         g_strcmp0(g_dbus_message_get_interface(message), kName) == 0;
    if (!is_call) {
        return message;
    }
    if (GDBusMessage* const reply = static_cast<FakeEngine*>(user_data)->reply_to(message)) {
        send(connection, reply);
    }
    g_object_unref(message);
    return nullptr;
}

/// Null while the answer is kept back.
GDBusMessage* FakeEngine::reply_to(GDBusMessage* call) {
    const std::string method = g_dbus_message_get_member(call);
    const std::string text = take_reply(method);
    send_signal_of(method);
    GDBusMessage* reply = nullptr;
    if (text.empty()) {
        reply = g_dbus_message_new_method_error_literal(call, "com.morva.qra.engine.Error.Scripted",
                                                        "the test says so");
    } else {
        reply = g_dbus_message_new_method_reply(call);
        g_dbus_message_set_body(reply, parse(text).get());
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back({method, print(g_dbus_message_get_body(call))});
    called_.notify_all();
    if (method == held_method_) {
        held_replies_.push_back(reply);
        return nullptr;
    }
    return reply;
}

std::string FakeEngine::take_reply(const std::string& method) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string>& replies = replies_[method];
    if (replies.empty()) {
        return {};
    }
    std::string reply = replies.front();
    if (replies.size() > 1) {
        replies.erase(replies.begin());
    }
    return reply;
}
