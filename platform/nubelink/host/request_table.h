#ifndef QRA_NUBELINK_REQUEST_TABLE_H
#define QRA_NUBELINK_REQUEST_TABLE_H

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "platform/nubelink/host/worker.h"

namespace nbl {

class Session;

/**
 * One open request of a client: a browse, a search, a download ... Made on the client's thread, everything
 * else happens on the worker's.
 *
 * start() begins it; it ends itself with RequestTable::take() and answers then, or the table ends it with
 * answer(). Either way the client hears of its end exactly once: whoever has taken it out of the table is the
 * one who answers. Its destructor calls off whatever it has under way (calls, timers), and tells nobody.
 */
class Request {
public:
    /// `device_id`: the server that it is for; empty where the loss of a server does not end it.
    explicit Request(std::string device_id) : device_id_(std::move(device_id)) {}
    virtual ~Request() = default;
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    /// Begins the work. An error that shows at once ends it from in here, through RequestTable::end().
    virtual void start(Session& session) = 0;
    /// Tells the client the error; nothing follows it. The request is out of the table by then.
    virtual void answer(int error) = 0;

    int token() const { return token_; }
    const std::string& device_id() const { return device_id_; }

private:
    friend class RequestTable;
    int token_ = 0;
    const std::string device_id_;
};

/**
 * The open requests by token. Tokens are numbered from 1 through the life of the process, for requests of all
 * kinds alike; after 2^31 - 1 they begin again. new_token() and was_given() may be called from any thread,
 * all else from the worker's.
 *
 * A request is out of the table before its client is answered, so a callback may start and cancel requests,
 * its own too, and end the service.
 */
class RequestTable {
public:
    /// Longest life of a request that does not see to its end itself.
    static constexpr unsigned kDeadline = 15'000;

    /// For start(); the client has it before the request begins.
    int new_token();
    bool was_given(int token) const;

    /// For a request that watches over its own progress.
    static constexpr unsigned kNoDeadline = 0;

    /// Starts the request; without a session it is answered with NBL_ERROR_NOT_CONNECTED. When the deadline
    /// has passed it is ended with NBL_ERROR_TIMEOUT, unless extend() is called meanwhile.
    void start(int token, std::unique_ptr<Request> request, Session* session, unsigned deadline = kDeadline);
    /// Begins the deadline anew: part of the answer is there. Nothing for a token that is not open.
    void extend(int token, unsigned deadline = kDeadline);
    /// Takes a request out, for its own end: the taker answers. Null if it has ended already.
    std::unique_ptr<Request> take(int token);
    /// Ends one request; nothing for a token that is not open.
    void end(int token, int error);
    void end_all(int error);
    /// Ends all requests for one server.
    void end_all_of(const std::string& device_id, int error);

    size_t size() const { return open_.size(); }

private:
    struct Open {
        std::unique_ptr<Request> request;
        std::unique_ptr<Timer> deadline;
    };
    std::atomic<int> last_token_{0};
    std::map<int, Open> open_;
};

}  // namespace nbl

#endif
