#include "tests/fakes/web_server.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

[[noreturn]] void give_up(const char* what, const GError* error) {
    std::fprintf(stderr, "test web server: %s: %s\n", what, error ? error->message : "");
    std::abort();
}

std::string header_of(SoupServerMessage* message, const char* name) {
    const char* value = soup_message_headers_get_one(soup_server_message_get_request_headers(message), name);
    return value ? value : "";
}

void begin_in_pieces(SoupServerMessage* message, unsigned status, const std::string& body) {
    soup_server_message_set_status(message, status, nullptr);
    soup_message_headers_set_encoding(soup_server_message_get_response_headers(message),
                                      SOUP_ENCODING_CHUNKED);
    soup_message_body_set_accumulate(soup_server_message_get_response_body(message), FALSE);
    if (!body.empty()) {
        soup_message_body_append(soup_server_message_get_response_body(message), SOUP_MEMORY_COPY,
                                 body.data(), body.size());
    }
}

}  // namespace

WebServer::WebServer() : server_(soup_server_new(nullptr, nullptr)) {
    listen(false);
}

WebServer::WebServer(const std::string& certificate_file, const std::string& key_file) {
    GError* error = nullptr;
    GTlsCertificate* certificate =
        g_tls_certificate_new_from_files(certificate_file.c_str(), key_file.c_str(), &error);
    if (!certificate) {
        give_up("certificate", error);
    }
    server_ = soup_server_new("tls-certificate", certificate, nullptr);
    g_object_unref(certificate);
    listen(true);
}

void WebServer::listen(bool safe) {
    GError* error = nullptr;
    const auto options = static_cast<SoupServerListenOptions>(SOUP_SERVER_LISTEN_IPV4_ONLY |
                                                              (safe ? SOUP_SERVER_LISTEN_HTTPS : 0));
    if (!soup_server_listen_local(server_, 0, options, &error)) {
        give_up("listen", error);
    }
    GSList* uris = soup_server_get_uris(server_);
    base_ = (safe ? "https://127.0.0.1:" : "http://127.0.0.1:") +
            std::to_string(g_uri_get_port(static_cast<GUri*>(uris->data)));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    soup_server_add_handler(server_, nullptr, on_request, this, nullptr);
}

WebServer::~WebServer() {
    soup_server_disconnect(server_);
    g_object_unref(server_);
}

void WebServer::on_request(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*,
                           void* self) {
    auto* server = static_cast<WebServer*>(self);
    server->requests_.push_back({soup_server_message_get_method(message), path, header_of(message, "Depth"),
                                 header_of(message, "Authorization")});
    const auto handler = server->handlers_.find(path);
    if (handler == server->handlers_.end()) {
        reply(message, 404, "");
    } else {
        handler->second(message);
    }
}

void reply(SoupServerMessage* message, unsigned status, const std::string& body, const std::string& type) {
    soup_server_message_set_status(message, status, nullptr);
    soup_server_message_set_response(message, type.c_str(), SOUP_MEMORY_COPY, body.data(), body.size());
}

void redirect(SoupServerMessage* message, unsigned status, const std::string& location) {
    soup_server_message_set_status(message, status, nullptr);
    soup_message_headers_replace(soup_server_message_get_response_headers(message), "Location",
                                 location.c_str());
}

void reply_raw(SoupServerMessage* message, const std::string& bytes) {
    GIOStream* stream = soup_server_message_steal_connection(message);
    g_output_stream_write_all(g_io_stream_get_output_stream(stream), bytes.data(), bytes.size(), nullptr,
                              nullptr, nullptr);
    g_io_stream_close(stream, nullptr, nullptr);
    g_object_unref(stream);
}

void reply_endlessly(SoupServerMessage* message, unsigned status, const std::string& body,
                     const std::string& piece) {
    begin_in_pieces(message, status, body);
    const auto append = [](SoupServerMessage* to, std::string* text) {
        soup_message_body_append(soup_server_message_get_response_body(to), SOUP_MEMORY_COPY, text->data(),
                                 text->size());
    };
    const auto free = [](void* text, GClosure*) {
        std::unique_ptr<std::string>(static_cast<std::string*>(text));
    };
    g_signal_connect_data(
        message, "wrote-chunk", G_CALLBACK(static_cast<void (*)(SoupServerMessage*, std::string*)>(append)),
        std::make_unique<std::string>(piece).release(), free, static_cast<GConnectFlags>(0));
}

void fall_silent(SoupServerMessage* message, unsigned status, const std::string& body) {
    begin_in_pieces(message, status, body);
    if (body.empty()) {
        soup_server_message_pause(message);
    }
    // With a first piece the server waits by itself for the one that never comes.
}

void end_silence(SoupServerMessage* message, const std::string& rest) {
    soup_message_body_append(soup_server_message_get_response_body(message), SOUP_MEMORY_COPY, rest.data(),
                             rest.size());
    soup_message_body_complete(soup_server_message_get_response_body(message));
    soup_server_message_unpause(message);
}
