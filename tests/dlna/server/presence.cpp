#include "tests/dlna/server/presence.h"

#include <gio/gio.h>

namespace {

constexpr char kType[] = "urn:schemas-upnp-org:device:MediaServer:1";

}  // namespace

Presence::Presence(GUPnPRootDevice* device, const std::string& id, Journal& journal)
    : client_(GSSDP_CLIENT(gupnp_device_info_get_context(GUPNP_DEVICE_INFO(device)))),
      location_(gupnp_device_info_get_location(GUPNP_DEVICE_INFO(device))),
      name_(id + "::" + kType),
      journal_(journal) {
    g_signal_connect(client_, "message-received", G_CALLBACK(on_message), this);
}

Presence::~Presence() {
    g_signal_handlers_disconnect_by_data(client_, this);
}

void Presence::on_message(GSSDPClient*, const char* from, unsigned port, int, SoupMessageHeaders* headers,
                          void* self) {
    auto* presence = static_cast<Presence*>(self);
    const char* subtype = soup_message_headers_get_one(headers, "NTS");
    if (soup_message_headers_get_one(headers, "MAN")) {
        presence->searcher_ = from;
        presence->searcher_port_ = port;
        presence->journal_.count("M-SEARCH");
    } else if (subtype && soup_message_headers_get_one(headers, "USN") == presence->name_) {
        presence->journal_.count(std::string(subtype) == "ssdp:alive" ? "alive" : "byebye");
    }
}

bool Presence::answer_search() {
    if (searcher_.empty()) {
        return false;
    }
    const std::string answer = "HTTP/1.1 200 OK\r\nLocation: " + location_ + "\r\nExt:\r\nUSN: " + name_ +
                               "\r\nServer: test\r\nCache-Control: max-age=1800\r\nST: " + kType +
                               "\r\nContent-Length: 0\r\n\r\n";
    GSocketAddress* to = g_inet_socket_address_new_from_string(searcher_.c_str(), searcher_port_);
    GSocket* socket =
        g_socket_new(g_socket_address_get_family(to), G_SOCKET_TYPE_DATAGRAM, G_SOCKET_PROTOCOL_UDP, nullptr);
    const gssize sent = g_socket_send_to(socket, to, answer.data(), answer.size(), nullptr, nullptr);
    g_object_unref(socket);
    g_object_unref(to);
    return sent == static_cast<gssize>(answer.size());
}
