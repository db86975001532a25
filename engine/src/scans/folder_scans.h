#ifndef QRA_ENGINE_FOLDER_SCANS_H
#define QRA_ENGINE_FOLDER_SCANS_H

#include <glib-unix.h>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>

#include "engine/src/media_connection.h"

namespace engine {

/// What is scanned: one folder, or all below it too.
struct ScanPlace {
    std::string path;
    bool recursive;
};

bool operator==(const ScanPlace& left, const ScanPlace& right);

/**
 * Scans folders through the media database, each place once however many ask for it. The scans themselves run
 * on the media database's threads; the object belongs to one thread, the one
 * that runs the default main context, and tells the end of a scan there.
 */
class FolderScans {
public:
    /// Told that a scan ended by itself: 0, or the media database's error.
    using Done = std::function<void(const ScanPlace& place, int error)>;

    explicit FolderScans(Done done);
    /// Ends all scans; nothing more is told.
    ~FolderScans();
    FolderScans(const FolderScans&) = delete;
    FolderScans& operator=(const FolderScans&) = delete;

    /// Asks for a scan. False, with a log line, if it cannot begin: the folder is missing or on no drive.
    bool ask(const ScanPlace& place);
    /// Takes back one ask() for a scan that has not ended; the last one ends the scan.
    void leave(const ScanPlace& place);

private:
    struct Scan {
        uint64_t serial;
        ScanPlace place;
        size_t asked;
        bool running;
    };
    using Scans = std::list<Scan>;
    /// Where the threads of scans leave what they have to tell; outlives an owner that has ended.
    class Mailbox;
    struct Report;

    Scans::iterator find(const ScanPlace& place);
    bool begin(Scan& scan);
    void begin_waiting();
    bool has_room(const ScanPlace& place) const;
    void end(uint64_t serial, int error);

    static void on_report(int error, int phase, void* report);
    static int on_mail(int wake, GIOCondition condition, void* self);

    Done done_;
    MediaConnection media_;
    std::shared_ptr<Mailbox> mailbox_;
    unsigned mail_source_;
    uint64_t last_serial_ = 0;
    Scans scans_;  ///< in the order in which they were asked for
};

}  // namespace engine

#endif
