#include "platform/nubelink/host/discovery.h"

#include <libgupnp/gupnp.h>

#include <set>
#include <string_view>

#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/text.h"

namespace nbl {

namespace {

constexpr char kMediaServer[] = "urn:schemas-upnp-org:device:MediaServer:1";
constexpr std::string_view kAnyMediaServer = "urn:schemas-upnp-org:device:MediaServer:";
// Answers come within the second of the MX; descriptions are fetched meanwhile and after it.
constexpr unsigned kFirstSearch = 1300;
// Later than any answer to an earlier search.
constexpr unsigned kAskAgain = 1300;
constexpr size_t kMostLeft = 256;
constexpr unsigned kNextLook = 200;
constexpr unsigned kMostLooks = 5;
constexpr size_t kLongestId = 200;
constexpr size_t kLongestLocation = 1024;

/// The device's id in a name that is announced, "uuid:...::urn:schemas-upnp-org:device:MediaServer:1"; empty
/// if it is the name of something else.
std::string device_id_of(std::string_view name) {
    const size_t end = name.find("::");
    if (end == std::string_view::npos || end > kLongestId || !starts_with(name, "uuid:") ||
        !starts_with(name.substr(end + 2), kAnyMediaServer)) {
        return {};
    }
    std::string id(name.substr(0, end));
    repair_text(id);
    return id;
}

}  // namespace

/**
 * One network of this host. The browser searches and tells who is gone, by goodbye or by age; who is there
 * comes from the messages themselves, since the browser is silent where a device that it knows moves to
 * another address.
 *
 * A server that starts may say goodbye first, in the name of the one that it was: who is announced again
 * right after a goodbye is not gone. An answer to a search, though, may have been on its way when its server
 * said goodbye, and then says nothing: the first answer after a goodbye makes the network ask again, and only
 * what is answered then counts.
 */
struct Discovery::Network {
    Network(GUPnPContext* context, Announcements& to);
    ~Network();
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    static void on_message(GSSDPClient*, const char* from, unsigned port, int type,
                           SoupMessageHeaders* headers, Network* self);
    static void on_gone(GSSDPResourceBrowser*, const char* name, Network* self);
    void pass_on_gone();
    bool is_late_answer(const std::string& device_id);
    void ask_again();

    Announcements& announcements;
    std::set<std::string> gone;
    Timer gone_timer;
    std::set<std::string> left;  ///< said goodbye, and have not been heard of since
    Timer again;
    bool asking_again = false;
    const glib::ObjectPtr<GUPnPContext> client;
    const glib::ObjectPtr<GSSDPResourceBrowser> browser;
};

Discovery::Network::Network(GUPnPContext* context, Announcements& to)
    : announcements(to),
      client(GUPNP_CONTEXT(g_object_ref(context))),
      browser(gssdp_resource_browser_new(GSSDP_CLIENT(context), kMediaServer)) {
    // After the browser's own handler, which the browser's making has connected.
    g_signal_connect(client.get(), "message-received", G_CALLBACK(&Network::on_message), this);
    g_signal_connect(browser.get(), "resource-unavailable", G_CALLBACK(&Network::on_gone), this);
    gssdp_resource_browser_set_mx(browser.get(), 1);
    gssdp_resource_browser_set_active(browser.get(), TRUE);
}

Discovery::Network::~Network() {
    g_signal_handlers_disconnect_by_data(browser.get(), this);
    g_signal_handlers_disconnect_by_data(client.get(), this);
}

void Discovery::Network::on_message(GSSDPClient*, const char*, unsigned, int, SoupMessageHeaders* headers,
                                    Network* self) {
    const char* name = soup_message_headers_get_one(headers, "USN");
    const char* location = soup_message_headers_get_one(headers, "Location");
    const char* subtype = soup_message_headers_get_one(headers, "NTS");
    if (name == nullptr || location == nullptr || g_strcmp0(subtype, "ssdp:byebye") == 0) {
        return;
    }
    const std::string device_id = device_id_of(name);
    const bool is_answer = subtype == nullptr;
    if (device_id.empty() || std::string_view(location).size() > kLongestLocation ||
        !is_web_address(location) || (is_answer && self->is_late_answer(device_id))) {
        return;
    }
    self->gone.erase(device_id);
    self->left.erase(device_id);
    self->announcements.on_alive(device_id, location, self);
}

bool Discovery::Network::is_late_answer(const std::string& device_id) {
    const bool is_late = left.count(device_id) != 0;
    if (is_late && !asking_again) {
        asking_again = true;
        again.start(kAskAgain, [this] { ask_again(); });
    }
    return is_late;
}

void Discovery::Network::ask_again() {
    // A search that is still under way is not begun anew.
    if (gssdp_resource_browser_rescan(browser.get())) {
        asking_again = false;
        left.clear();
    } else {
        again.start(kAskAgain, [this] { ask_again(); });
    }
}

void Discovery::Network::on_gone(GSSDPResourceBrowser*, const char* name, Network* self) {
    const std::string device_id = device_id_of(name);
    if (!device_id.empty()) {
        self->gone.insert(device_id);
        if (self->left.size() < kMostLeft) {
            self->left.insert(device_id);
        }
        self->gone_timer.start(
            0, [self] { self->pass_on_gone(); }, Timer::Priority::kAfterAllElse);
    }
}

void Discovery::Network::pass_on_gone() {
    std::set<std::string> ids;
    ids.swap(gone);
    for (const std::string& device_id : ids) {
        announcements.on_gone(device_id, this);
    }
}

Discovery::Discovery(const HttpClient& http, DeviceTable& table, Announcements::Report report)
    : table_(table), announcements_(http, table, std::move(report)) {
    look_for_networks();
    if (running()) {
        table_.set_searched(false);
        first_search_.start(kFirstSearch, [this] { table_.set_searched(true); });
    }
}

void Discovery::look_for_networks() {
    manager_.reset(gupnp_context_manager_create(0));
    if (!running()) {
        return;
    }
    g_signal_connect(manager_.get(), "context-available", G_CALLBACK(&Discovery::on_network), this);
    g_signal_connect(manager_.get(), "context-unavailable", G_CALLBACK(&Discovery::on_network_gone), this);
    look_again_.start(kNextLook, [this] { look_again_if_none(); });
}

void Discovery::leave_networks() {
    if (running()) {
        g_signal_handlers_disconnect_by_data(manager_.get(), this);
    }
    networks_.clear();
}

void Discovery::look_again_if_none() {
    // GUPnP chooses a port without looking whether it is free, and leaves a network out whose port is not.
    if (networks_.empty() && ++looks_ < kMostLooks) {
        leave_networks();
        look_for_networks();
    }
}

Discovery::~Discovery() {
    leave_networks();
    table_.clear();
    table_.set_searched(true);
}

void Discovery::refresh() {
    for (const auto& [context, network] : networks_) {
        gssdp_resource_browser_rescan(network->browser.get());
    }
}

void Discovery::on_network(GUPnPContextManager*, GUPnPContext* context, Discovery* self) {
    NBL_LOG_INFO("looking for media servers on %s", gssdp_client_get_interface(GSSDP_CLIENT(context)));
    self->networks_[context] = std::make_unique<Network>(context, self->announcements_);
}

void Discovery::on_network_gone(GUPnPContextManager*, GUPnPContext* context, Discovery* self) {
    const auto found = self->networks_.find(context);
    if (found != self->networks_.end()) {
        const std::unique_ptr<Network> network = std::move(found->second);
        self->networks_.erase(found);
        self->announcements_.on_network_gone(network.get());
    }
}

}  // namespace nbl
