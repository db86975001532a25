#ifndef QRA_TESTS_DLNA_SERVER_PRESENCE_H
#define QRA_TESTS_DLNA_SERVER_PRESENCE_H

#include <libgupnp/gupnp.h>

#include <string>

#include "tests/dlna/server/journal.h"

/**
 * Listens to what is said on the network: counts searches as "M-SEARCH", and the device's own announcements,
 * which come back to it as they come to everybody, as "alive" and "byebye".
 */
class Presence {
public:
    Presence(GUPnPRootDevice* device, const std::string& id, Journal& journal);
    ~Presence();
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;

    /// Answers the search that came last, now, whether the device is there or not. False if none came.
    bool answer_search();

private:
    static void on_message(GSSDPClient* client, const char* from, unsigned port, int type,
                           SoupMessageHeaders* headers, void* self);

    GSSDPClient* client_;
    const std::string location_;
    const std::string name_;
    Journal& journal_;
    std::string searcher_;
    unsigned searcher_port_ = 0;
};

#endif
