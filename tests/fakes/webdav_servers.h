#ifndef QRA_TESTS_FAKES_WEBDAV_SERVERS_H
#define QRA_TESTS_FAKES_WEBDAV_SERVERS_H

#include <gio/gio.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/temp_dir.h"

/**
 * A WebDAV server of the system's packages that serves a directory on a free port of this machine, as a
 * process of its own that ends with the test.
 */
class WebDavServer {
public:
    virtual ~WebDavServer();
    WebDavServer(const WebDavServer&) = delete;
    WebDavServer& operator=(const WebDavServer&) = delete;

    /// Of the directory itself, with a slash at its end.
    const std::string& url() const { return url_; }
    /// What it serves. Files may come and go while it runs.
    std::string path(const std::string& name = "") const { return served_.path(name); }
    /// Puts a file there, with its folders.
    void write(const std::string& name, const std::string& content) const;

protected:
    WebDavServer();
    /// Runs the command, which makes the server listen on that port, and waits until it does. False if it
    /// ended before: somebody else may have taken the port meanwhile.
    bool run(const std::vector<std::string>& command, int port);
    static int free_port();

    TempDir served_;
    TempDir own_;  ///< for the server's files

private:
    GSubprocess* process_ = nullptr;
    std::string url_;
};

/// apache2 with mod_dav: the strict one. With a user it wants that one's password.
class ApacheServer : public WebDavServer {
public:
    ApacheServer() : ApacheServer("", "") {}
    ApacheServer(const std::string& user, const std::string& password);
};

/// rclone: the second opinion.
class RcloneServer : public WebDavServer {
public:
    RcloneServer();
};

#endif
