#ifndef QRA_BENCH_LIST_CLIENT_H
#define QRA_BENCH_LIST_CLIENT_H

#include <qra/qra_content_agent.h>

#include <condition_variable>
#include <mutex>
#include <string>

namespace bench {

/// One list request on "SOURCE_MSC", as a client makes it: opened and answered when the constructor returns.
class ListClient {
public:
    ListClient(const std::string& path, const char* content, const char* category);
    ~ListClient();
    ListClient(const ListClient&) = delete;
    ListClient& operator=(const ListClient&) = delete;

    /// From the request's call to its answer.
    double seconds() const { return m_seconds; }
    qra_agent_handler_h handle() const { return m_handle; }
    /// Lays the list out with the given mask, all groups, 2 rows of 9 columns. Gives the number of tiles.
    int lay_out(int mask);

private:
    static bool on_answer(void* self, CQRAAgentHandle* handle, qra_event_e event, int value,
                          const char* data);

    std::mutex m_mutex;
    std::condition_variable m_answered;
    bool m_done = false;
    qra_event_e m_event = QRA_EVENT_LIST_FAILED;
    double m_seconds = 0;
    qra_agent_handler_h m_handle = nullptr;
};

}  // namespace bench

#endif
