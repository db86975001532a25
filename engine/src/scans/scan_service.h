#ifndef QRA_ENGINE_SCAN_SERVICE_H
#define QRA_ENGINE_SCAN_SERVICE_H

#include <cstdint>
#include <list>
#include <map>
#include <string>

#include "engine/src/engine_parts.h"
#include "engine/src/scans/folder_scans.h"

namespace engine {

/**
 * Serves "start_scanner", "stop_scanner" and their kin for folder thumbnails: scans for clients, each of whom
 * is told when its own scan has ended by itself. A scan ends early when the last client that asked for it
 * stops it or leaves the bus. Clients stop their own scans only.
 */
class ScanService {
public:
    explicit ScanService(const EngineParts& parts);

private:
    /// A client's scan of a place and all below it.
    struct Check {
        ClientHold client;
        std::string path;
    };
    /// What a client wants to know of a folder once that is scanned.
    struct Thumb {
        std::string path;
        std::string content_type;
        uint32_t count;
        uint32_t process_id;
    };
    struct ThumbRequest {
        ClientHold client;
        Thumb thumb;
    };
    using ThumbRequests = std::list<ThumbRequest>;

    void start_scanner(MethodCall call);
    void stop_scanner(MethodCall call);
    void start_scanner_thumb(MethodCall call);
    void stop_scanner_thumb(MethodCall call);

    bool may_ask(const std::string& client) const;
    ThumbRequests::iterator find_thumb(const std::string& client, const Thumb& thumb);
    static Thumb read_thumb(GVariant* arguments);
    void stop_all_of(const std::string& client);

    void on_done(const ScanPlace& place, int error);
    void tell_checks(const std::string& path, int error);
    void tell_thumbs(const std::string& path, int error);

    ClientTable& clients_;
    const SignalSender& signals_;
    std::map<uint32_t, Check> checks_;  ///< by scanner id
    ThumbRequests thumbs_;
    uint32_t last_id_ = 0;
    FolderScans scans_;
};

}  // namespace engine

#endif
