#ifndef QRA_TESTS_UNIT_AGENT_AGENT_FIXTURE_H
#define QRA_TESTS_UNIT_AGENT_AGENT_FIXTURE_H

#include <gtest/gtest.h>
#include <qra/qra_agent.h>

#include <functional>
#include <string>
#include <vector>

#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_source.h"

/// What reached the client's list callback.
struct ListAnswer {
    qra_event_e event;
    int value;
    std::string data;
    CQRAAgentHandle* handle;
};

/// A client of the exported functions on scripted sources: every source that the agent makes follows
/// `script_`.
class AgentTest : public testing::Test {
protected:
    AgentTest();
    ~AgentTest() override;

    /// Requests a list of `source` on `handle_`; the result is in `handle_`.
    qra_error_code_e request(const std::string& source = "SOURCE_MSC",
                             const char* category = "CATEGORY-TITLE", const char* path = "/media/USBDrive1",
                             const char* prepare_data = nullptr);
    qra_error_code_e disconnect();
    qra_error_code_e set_page_style(int mask, int group_index = -1, int rows = 2, int columns = 9);
    /// Requests, and lays the page out once the answer came.
    void open_page(int mask, const char* category = "CATEGORY-TITLE",
                   const std::string& source = "SOURCE_MSC");

    /// Fills the script with items named "item 0", ... of kind `type`, and one group over them.
    void script_items(int count, int type = QRA_MEDIA_TYPE_IMAGE);
    void script_groups(int offset, const std::vector<std::pair<std::string, int>>& groups);

    std::string item(int index);
    std::string text(const char* field);

    static bool on_list(void* self, CQRAAgentHandle* handle, qra_event_e event, int value, const char* data);

    SourceScript script_;
    FakeSource* source_ = nullptr;  ///< the one that was made last
    CQRAAgentHandle* handle_ = nullptr;
    std::vector<ListAnswer> answers_;
    std::function<void()> in_callback_;
};

#endif
