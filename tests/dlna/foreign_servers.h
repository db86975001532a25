#ifndef QRA_TESTS_DLNA_FOREIGN_SERVERS_H
#define QRA_TESTS_DLNA_FOREIGN_SERVERS_H

#include <gio/gio.h>

#include <string>
#include <vector>

#include "tests/fakes/temp_dir.h"

/**
 * A media server of the system's packages that serves a directory, as a process of its own in the test's own
 * network. It says goodbye and is gone at the end.
 */
class ForeignServer {
public:
    virtual ~ForeignServer();
    ForeignServer(const ForeignServer&) = delete;
    ForeignServer& operator=(const ForeignServer&) = delete;

    /// Of what it serves.
    std::string path(const std::string& name = "") const { return served_.path(name); }

protected:
    ForeignServer() = default;
    /// Puts the project's sample media there.
    void serve_fixtures();
    void run(const std::vector<std::string>& command);

    TempDir served_;
    TempDir own_;  ///< for the server's files

private:
    GSubprocess* process_ = nullptr;
};

/// ReadyMedia: browses, searches, takes nothing. Has looked at its files when it is made.
class ReadyMedia : public ForeignServer {
public:
    static constexpr char kId[] = "uuid:4d696e69-444c-164e-9d41-000000000001";
    ReadyMedia();
};

/// rygel: takes files, and tells of changes.
class Rygel : public ForeignServer {
public:
    Rygel();
};

#endif
