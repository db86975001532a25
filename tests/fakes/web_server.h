#ifndef QRA_TESTS_FAKES_WEB_SERVER_H
#define QRA_TESTS_FAKES_WEB_SERVER_H

#include <libsoup/soup.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

/**
 * A web server on a free port of this machine that does what the test wants, mistakes included. It lives in
 * the test's own main context: it answers while that runs.
 */
class WebServer {
public:
    using Handler = std::function<void(SoupServerMessage* message)>;
    struct Request {
        std::string method;
        std::string path;
        std::string depth;
        std::string authorization;
    };

    WebServer();
    /// One that speaks TLS with that certificate and key, files in PEM.
    WebServer(const std::string& certificate_file, const std::string& key_file);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    std::string url(const std::string& path) const { return base_ + path; }
    void on(const std::string& path, Handler handler) { handlers_[path] = std::move(handler); }
    /// What was asked so far.
    const std::vector<Request>& requests() const { return requests_; }

private:
    void listen(bool safe);
    static void on_request(SoupServer* server, SoupServerMessage* message, const char* path,
                           GHashTable* query, void* self);

    SoupServer* server_;
    std::string base_;
    std::map<std::string, Handler> handlers_;
    std::vector<Request> requests_;
};

/// Answers properly.
void reply(SoupServerMessage* message, unsigned status, const std::string& body,
           const std::string& type = "application/xml");
/// Sends the client elsewhere.
void redirect(SoupServerMessage* message, unsigned status, const std::string& location);
/// Sends these bytes, head and all, in place of an answer, then closes the connection.
void reply_raw(SoupServerMessage* message, const std::string& bytes);
/// Begins with `body` and goes on with `piece` for ever.
void reply_endlessly(SoupServerMessage* message, unsigned status, const std::string& body,
                     const std::string& piece);
/// Begins with `body`, if any, and says nothing more.
void fall_silent(SoupServerMessage* message, unsigned status, const std::string& body);
/// Says the rest after all.
void end_silence(SoupServerMessage* message, const std::string& rest);

#endif
