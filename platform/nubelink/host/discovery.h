#ifndef QRA_NUBELINK_DISCOVERY_H
#define QRA_NUBELINK_DISCOVERY_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/nubelink/host/device_table.h"
#include "platform/nubelink/host/http_call.h"
#include "platform/nubelink/host/worker.h"
#include "platform/support/glib_ptr.h"

typedef struct _GSSDPClient GSSDPClient;
typedef struct _GSSDPResourceBrowser GSSDPResourceBrowser;
typedef struct _GUPnPContext GUPnPContext;
typedef struct _GUPnPContextManager GUPnPContextManager;
typedef struct _SoupMessageHeaders SoupMessageHeaders;

namespace nbl {

/**
 * What announcements make of devices: for each device its locations by network, the description that is being
 * fetched from one of them, and the device as it stands in the table.
 *
 * A device is known by its id. Announced again, from another network or with another address, it stays the
 * same device with other addresses; it is gone when it is gone from all networks. A description that cannot
 * be read is asked for again a few times, and at the next announcement. Announcements come from strangers: of
 * more than kMostDevices at once, or kMostUnread of one host and port whose descriptions have not been read,
 * the rest is not looked at.
 *
 * Lives on the worker's thread.
 */
class Announcements {
public:
    static constexpr size_t kMostDevices = 256;
    static constexpr size_t kMostUnread = 16;
    using Report = std::function<void(int event, nbl_device_t device)>;

    /// `report` is told each nbl_device_event_e, after the table has it.
    Announcements(const HttpClient& http, DeviceTable& table, Report report);
    ~Announcements();
    Announcements(const Announcements&) = delete;
    Announcements& operator=(const Announcements&) = delete;

    /// The device says on a network (any number that stands for it) that its description is at `location`.
    void on_alive(const std::string& device_id, const std::string& location, const void* network);
    /// It says goodbye there, or has not been heard of for too long.
    void on_gone(const std::string& device_id, const void* network);
    /// It did not answer a request: where its description cannot be had either, it is gone, whatever it
    /// announced.
    void check(const std::string& device_id);
    /// A network of this host is gone.
    void on_network_gone(const void* network);

private:
    struct Known {
        std::map<const void*, std::string> locations;  ///< by network
        std::string used;                              ///< the location that the device in the table has
        std::string asked;                             ///< the location whose description is under way
        unsigned failures = 0;
        bool in_doubt = false;  ///< the description under way decides whether it is there
        std::unique_ptr<HttpCall> call;
        Timer again;
    };
    using KnownMap = std::map<std::string, std::unique_ptr<Known>>;

    bool has_room_for(std::string_view location) const;
    void ask(const std::string& device_id, const std::string& location);
    void on_description(const std::string& device_id, HttpAnswer answer);
    void on_failure(const std::string& device_id);
    void put(const std::string& device_id, DeviceDescription description);
    void update(const std::string& device_id);
    void forget(KnownMap::iterator found);

    const HttpClient& http_;
    DeviceTable& table_;
    const Report report_;
    KnownMap known_;
    bool full_ = false;  ///< said so in the log
};

/**
 * Finds media servers on all networks of this host: searches with an MX of 1, listens to announcements, and
 * hands both to Announcements. Networks may come and go.
 *
 * Lives on the worker's thread.
 */
class Discovery {
public:
    Discovery(const HttpClient& http, DeviceTable& table, Announcements::Report report);
    ~Discovery();
    Discovery(const Discovery&) = delete;
    Discovery& operator=(const Discovery&) = delete;

    /// False if this host lets nobody look for networks.
    bool running() const { return manager_ != nullptr; }
    /// Searches anew.
    void refresh();
    /// A server did not answer a request.
    void check(const std::string& device_id) { announcements_.check(device_id); }

private:
    struct Network;
    void look_for_networks();
    void leave_networks();
    void look_again_if_none();
    static void on_network(GUPnPContextManager*, GUPnPContext* context, Discovery* self);
    static void on_network_gone(GUPnPContextManager*, GUPnPContext* context, Discovery* self);

    DeviceTable& table_;
    Announcements announcements_;
    std::map<GUPnPContext*, std::unique_ptr<Network>> networks_;
    Timer first_search_;
    Timer look_again_;
    unsigned looks_ = 0;  ///< for networks, while none is found
    glib::ObjectPtr<GUPnPContextManager> manager_;
};

}  // namespace nbl

#endif
