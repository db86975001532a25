#ifndef QRA_APPS_QRA_DLNA_SERVICE_H
#define QRA_APPS_QRA_DLNA_SERVICE_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "apps/qra/answer_queue.h"

constexpr const char* kAttached = "attached";

/// A media server as the tool shows it, a copy of the library's record.
struct ServerLine {
    std::string event;  ///< "present", kAttached or "detached"
    std::string id;
    std::string name;
    std::string address;
    bool own_maker = false;
};

/// The connection to the home network service, and the servers there, for the thread that makes it.
/// One in a process.
class DlnaService {
public:
    /// Connects and waits for it. @throws CommandError if the service cannot run here
    DlnaService();
    ~DlnaService();
    DlnaService(const DlnaService&) = delete;
    DlnaService& operator=(const DlnaService&) = delete;

    /// The servers that are there now. @throws CommandError
    std::vector<ServerLine> servers();
    /// The next server that comes or goes; nothing after a signal that ends the tool.
    std::optional<ServerLine> next() { return events_.next(); }
    /// The same, but nothing after that point in time either.
    std::optional<ServerLine> next_before(std::chrono::steady_clock::time_point end) {
        return events_.next_before(end);
    }
    /// The id of a server that is named by its id or by its name. Waits a while for it to come.
    /// @throws CommandError if it does not, or several servers have the name
    std::string find(const std::string& server);

private:
    static std::optional<std::string> id_of(const std::vector<ServerLine>& servers,
                                            const std::string& server);

    AnswerQueue<ServerLine> events_;
};

/// A line for people, without control characters, with a line end.
std::string server_text(const ServerLine& server, bool with_event);

/// One JSON object on a line, which is valid UTF-8 whatever servers call themselves.
std::string server_json(const ServerLine& server);

#endif
