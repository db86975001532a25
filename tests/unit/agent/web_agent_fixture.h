#ifndef QRA_TESTS_UNIT_AGENT_WEB_AGENT_FIXTURE_H
#define QRA_TESTS_UNIT_AGENT_WEB_AGENT_FIXTURE_H

#include <gtest/gtest.h>
#include <json/json.h>
#include <qra/qra_content_agent.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "libqra-agent/agent/src/qra_type.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/result_objects.h"

/// What a callback of the client was told, and where.
struct ClientEvent {
    CQRAAgentHandle* handle;
    qra_event_e event;
    int id;
    std::string text;
    std::thread::id thread;
};
using ClientEvents = std::vector<ClientEvent>;

/// Runs the thread's main loop until the condition holds; false if it does not within 20 seconds.
bool run_loop_until(const std::function<bool()>& condition);

/// Takes list events into the ClientEvents that is its user data.
bool take_list_event(void* events, CQRAAgentHandle* handle, qra_event_e event, int id, const char* text);
/// The same for details and acts.
bool take_item_event(void* events, CQRAAgentHandle* handle, int id, qra_event_e event, const char* text);

/// A list that an engine has in shared memory.
class RemoteList {
public:
    RemoteList(int total, int section_size) : total_(total), section_size_(section_size) {}

    /// Writes a section and gives its name.
    const std::string& write(int section);
    /// The text of an item.
    static std::string item(int index);

    IndexPairs groups;

private:
    int total_;
    int section_size_;
    std::vector<std::unique_ptr<ShmFile>> files_;
};

/// A client of the exported functions, with a scripted engine that gives the agent id 7. The test is the
/// thread that subscribes, and runs the main loop when it waits.
class WebAgentTest : public testing::Test {
protected:
    static constexpr int kId = 7;

    WebAgentTest();
    ~WebAgentTest() override;

    void start_engine();
    qra_error_code_e request();
    qra_error_code_e disconnect();
    /// Starts the request and lets the first section arrive.
    void open_list();
    /// Lays out all items, folders included, on pages of 2 x 9 tiles.
    qra_error_code_e lay_out(int mask = 0x02);

    /// Sends a completion signal, with the handle's id unless the answer brings one.
    void complete(Json::Value answer);
    void complete_section(int section);
    /// Sends a signal with this text.
    void emit(const std::string& payload);
    bool wait_for_log(const std::string& part);
    bool wait_for_events(size_t count);

    /// The arguments of the engine's calls of a method, as text; waits for as many.
    std::vector<std::string> calls_of(const std::string& method, size_t count);
    /// The JSON that ends the arguments of a call.
    static Json::Value json_of(const std::string& arguments);
    std::string item(int index);

    LogCapture log_;
    std::optional<FakeEngine> engine_;
    qra_general_s param_;
    RemoteList list_{10, 4};
    CQRAAgentHandle* handle_ = nullptr;
    ClientEvents events_;
};

#endif
