#ifndef QRA_NUBELINK_HTTP_CALL_H
#define QRA_NUBELINK_HTTP_CALL_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/support/glib_ptr.h"

typedef struct _GCancellable GCancellable;
typedef struct _GError GError;
typedef struct _SoupMessage SoupMessage;
typedef struct _SoupSession SoupSession;

namespace nbl {

class Turns;

/**
 * The connections to all servers, eight to one server at most. Lives on the worker's thread longer than all
 * its calls, and works on the main context that was the thread's default when it was made. No proxy, no
 * cookies, no credentials.
 *
 * Answers that are complete are handed over in turn. What a client asks for on account of the first is on its
 * way to the server then before the next is looked at: where several came together, the server has not to
 * wait for the last.
 */
class HttpClient {
public:
    HttpClient();
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// For calls that need more than HttpCall: transfers.
    SoupSession* session() const { return session_.get(); }
    /// For complete answers.
    Turns& turns() const { return *turns_; }

private:
    const glib::ObjectPtr<SoupSession> session_;
    const std::unique_ptr<Turns> turns_;
};

/// Whether a text is an address that the service may speak to: http or https, with a host.
bool is_web_address(const char* uri);

/// What a connection's end makes of a question, an nbl_error_e.
int error_of(const GError* error);

struct HttpQuestion {
    static constexpr size_t kLargestAnswer = size_t{8} << 20;

    std::string method = "GET";
    std::string uri;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body_type;
    std::string body;
    size_t largest_answer = kLargestAnswer;  ///< a longer one is NBL_ERROR_BAD_ANSWER
    unsigned milliseconds = 14'000;          ///< in all; then it is NBL_ERROR_TIMEOUT
    bool repeatable = true;  ///< may be sent again where a kept connection turns out to be closed
};

struct HttpAnswer {
    int error = 0;        ///< an nbl_error_e: NBL_ERROR_NONE for every complete answer, whatever its status
    unsigned status = 0;  ///< of HTTP
    std::string body;
};

/**
 * One question to a server and its answer, as a whole. Redirects are not followed. Lives on the worker's
 * thread; `done` is called there once, never from inside the constructor, and may end the call. The call's
 * end before that cancels it: `done` is not called then, and what it holds is released.
 */
class HttpCall {
public:
    using Done = std::function<void(HttpAnswer)>;
    HttpCall(const HttpClient& client, HttpQuestion question, Done done);
    ~HttpCall();
    HttpCall(const HttpCall&) = delete;
    HttpCall& operator=(const HttpCall&) = delete;

private:
    class State;
    const std::shared_ptr<State> state_;
};

}  // namespace nbl

#endif
