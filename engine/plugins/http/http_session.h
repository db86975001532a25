#ifndef QRA_ENGINE_PLUGINS_HTTP_HTTP_SESSION_H
#define QRA_ENGINE_PLUGINS_HTTP_HTTP_SESSION_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/src/plugin.h"

namespace engine {

/// What an answer may cost at most.
struct HttpLimits {
    unsigned milliseconds_in_all = 300'000;
    unsigned milliseconds_of_silence = 30'000;  ///< until the answer begins, and between its pieces
    uint64_t bytes = uint64_t{256} << 20;
    int redirects = 5;
};

struct HttpQuestion {
    std::string method;
    std::string url;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body_type;
    std::string body;
    unsigned wanted_status = 200;
    std::string wrong_status;  ///< what another success means, after the server's name: "is no feed"
    bool beside = false;       ///< takes none of the connections that answers which are held may occupy
};

/// Takes an answer. It may end the transfer from inside any of these.
class HttpSink {
public:
    virtual ~HttpSink() = default;
    /// The answer begins; `url` is where it came from, after redirects.
    virtual void on_begin(const std::string& url) = 0;
    virtual void on_bytes(const char* bytes, size_t size) = 0;
    /// The answer is complete.
    virtual void on_end() = 0;
    /// There is none, or not all of it: a text that a person understands. Nothing comes after it.
    virtual void on_failure(const std::string& reason) = 0;
};

/// A question under way; its end cancels it. It tells nothing from inside the call that began it, nor from
/// inside hold() and go_on().
class HttpTransfer {
public:
    class State;
    explicit HttpTransfer(std::shared_ptr<State> state);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    /// From inside on_bytes(): no more of the answer is read until go_on(), and the server has to wait. Such
    /// a wait is no silence of the server, but a part of the time that an answer may take in all.
    void hold();
    void go_on();

private:
    const std::shared_ptr<State> state_;
};

/**
 * The connections to the server of one account.
 *
 * The account's user and password go to the scheme, host and port of its address only, whatever a redirect
 * says; with them a redirect never leads from https to http. A certificate that is not trusted ends a
 * transfer. Lives in one thread, and works on the main context that was the thread's default when it was
 * made.
 */
class HttpSession {
public:
    struct Parts;
    explicit HttpSession(const Account& account, const HttpLimits& limits = {});
    ~HttpSession();
    HttpSession(const HttpSession&) = delete;
    HttpSession& operator=(const HttpSession&) = delete;

    /// `sink` outlives the transfer, which outlives neither its end nor the session.
    std::unique_ptr<HttpTransfer> start(HttpQuestion question, HttpSink& sink);

private:
    const std::shared_ptr<Parts> parts_;
};

/// Empty, or why the address cannot be an account's.
std::string wrong_address(const std::string& address);

}  // namespace engine

#endif
