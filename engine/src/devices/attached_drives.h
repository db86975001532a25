#ifndef QRA_ENGINE_ATTACHED_DRIVES_H
#define QRA_ENGINE_ATTACHED_DRIVES_H

#include <gio/gio.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/src/devices/volume.h"
#include "engine/src/media_connection.h"
#include "platform/support/glib_ptr.h"

namespace engine {

/// A drive of the media database: a link below the media root to a directory.
struct AttachedDrive {
    std::string id;
    std::string name;  ///< "USBDriveN"
    int number;        ///< N
    std::string link_path;
    std::string target;  ///< the directory
    bool mounted;        ///< the directory is there, on the file system that was attached
};

/**
 * The drives of the media database: those that any process attached, and the volumes that this one keeps
 * attached while they are mounted. For one thread, that of the main context that was its default at
 * construction.
 */
class AttachedDrives {
public:
    /// `changed` is called after any process attached or detached a drive.
    explicit AttachedDrives(std::function<void()> changed);
    ~AttachedDrives();
    AttachedDrives(const AttachedDrives&) = delete;
    AttachedDrives& operator=(const AttachedDrives&) = delete;

    /// Attaches the volumes that are new, and detaches those that were given before and are no longer; the
    /// first time also those that an engine before this one kept and that were unmounted since. A volume that
    /// cannot be attached is tried again the next time.
    void keep(const Volumes& volumes);

    /// The drives that are attached and mounted, by number.
    std::vector<AttachedDrive> drives();

private:
    static void on_root_changed(GFileMonitor* monitor, GFile* file, GFile* other, GFileMonitorEvent event,
                                void* self);

    std::function<void()> changed_;
    MediaConnection media_;
    std::map<std::string, std::string> kept_;  ///< mount points of volumes, with the ids of their drives
    bool leftovers_removed_ = false;
    glib::ObjectPtr<GFileMonitor> monitor_;
};

}  // namespace engine

#endif
