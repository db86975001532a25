#ifndef QRA_APPS_QRA_BROWSING_H
#define QRA_APPS_QRA_BROWSING_H

#include <optional>
#include <string>

#include "apps/qra/dlna_service.h"
#include "apps/qra/engine_access.h"
#include "apps/qra/list_request.h"
#include "apps/qra/media_drives.h"

struct CommandLine;

/// Sees to it that the list is there to be asked for: attaches and scans the folder where that is wanted, and
/// sends the request. Its constructor throws CommandError.
class Browsing {
public:
    explicit Browsing(const CommandLine& line);

    ListRequest& request() { return request_; }

    /// What the library calls the drive, folder or server that is listed.
    const std::string& path() const { return path_; }

    /// The media database; there for lists of drives only.
    std::optional<MediaDrives>& drives() { return drives_; }

private:
    std::string prepare(const CommandLine& line);
    std::string prepare_drive(const CommandLine& line);

    std::optional<EngineAccess> engine_;  ///< cameras and media servers need none
    std::optional<DlnaService> network_;  ///< there for media servers only
    std::optional<MediaDrives> drives_;
    std::string path_;
    ListRequest request_;
};

#endif
