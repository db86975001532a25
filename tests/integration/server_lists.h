#ifndef QRA_TESTS_INTEGRATION_SERVER_LISTS_H
#define QRA_TESTS_INTEGRATION_SERVER_LISTS_H

#include <gtest/gtest.h>
#include <qra/qra_content_agent.h>

#include <set>
#include <string>
#include <vector>

#include "tests/fakes/awaited_signal.h"
#include "tests/fakes/loop_sources.h"

// What pages of lists show.
constexpr int kFoldersAndMedia = 0x06;
constexpr int kGroups = 0x08;
constexpr int kGroupsAndMedia = 0x0C;

/// What a list shows.
struct ServerListRequest {
    const char* sort;
    const char* content;
    const char* folder;
    const char* keyword = nullptr;
};

/// A list of a media server, as a client has it by the exported functions. Disconnected at the end.
class ServerList {
public:
    ServerList(const std::string& server, const ServerListRequest& request);
    ~ServerList() { disconnect(); }
    ServerList(const ServerList&) = delete;
    ServerList& operator=(const ServerList&) = delete;

    /// Asks for another list with the same handle.
    void repeat(const ServerListRequest& request);
    void cancel() { qra_cancel_request_list_v2(handle_); }
    void disconnect();

    /// The answer, or -1 if none comes; lays out a page.
    int wait(int mask);
    /// The answer to the request that was made last, -1 as long as there is none.
    int event() {
        return told_.read([this] { return event_; });
    }
    /// How many answers came in all.
    int answers() {
        return told_.read([this] { return answers_; });
    }

    std::vector<std::string> texts(const char* field) const;
    std::vector<int> numbers(const char* field) const;

private:
    static bool on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*);
    void send(const ServerListRequest& request);
    int count() const;

    const std::string server_;
    qra_agent_handler_h handle_ = nullptr;
    Signal told_;
    int event_ = -1;
    int answers_ = 0;
};

/// A client that is connected to the home network service in a network of its own. Skipped where there is
/// none.
class HomeNetworkClient : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    void connect();
    void disconnect();
    bool wait_for_server(const std::string& id);
    /// The id of the first server that comes; empty if none does.
    std::string wait_for_any_server();

    LoopSources loop_;  ///< of the home network service

private:
    static void on_state(qra_nbl_serviceconnector_state_e state, void* self);
    static void on_server(void* self, int event, qra_storage_h storage);
    bool wait_for_state(int state);

    Signal told_;
    int state_ = -1;
    std::set<std::string> here_;
};

#endif
