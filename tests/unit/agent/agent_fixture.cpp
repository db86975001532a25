#include "tests/unit/agent/agent_fixture.h"

#include <cstdlib>

#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "tests/fakes/fake_playlist_manager.h"
#include "tests/fakes/fake_source_factory.h"

AgentTest::AgentTest() {
    FakeFactory::make_source = [this](const std::string&) {
        auto source = std::make_unique<FakeSource>(script_);
        source_ = source.get();
        return source;
    };
}

AgentTest::~AgentTest() {
    script_.close_works = true;
    if (CQRAHandlerMgr::GetInstance()->Exists(reinterpret_cast<qra_handle_value_t>(handle_)))
        disconnect();
    FakeFactory::make_source = nullptr;
    FakeFactory::make_other_agent = nullptr;
    FakePlaylists::playlists.clear();
    FakePlaylists::scanned.clear();
}

qra_error_code_e AgentTest::request(const std::string& source, const char* category, const char* path,
                                    const char* prepare_data) {
    qra_general_s param;
    param.pSource = const_cast<char*>(source.c_str());
    param.szSortCategory = const_cast<char*>(category);
    param.szPath = const_cast<char*>(path);
    param.pPrepareData = const_cast<char*>(prepare_data);
    char content_type[] = "CONTENT-MUSIC";
    char playlist[] = "Blues";
    param.szContentType = content_type;
    param.szPlayListName = playlist;
    return qra_request_list_v2(&param, &on_list, this, &handle_);
}

qra_error_code_e AgentTest::disconnect() {
    return qra_disconnect_v2(handle_);
}

qra_error_code_e AgentTest::set_page_style(int mask, int group_index, int rows, int columns) {
    qra_page_style_s style;
    style.mask = mask;
    style.group_index = group_index;
    style.row = rows;
    style.column = columns;
    return qra_set_page_style_v2(handle_, &style);
}

void AgentTest::open_page(int mask, const char* category, const std::string& source) {
    ASSERT_EQ(request(source, category), QRA_ERROR_NONE);
    ASSERT_TRUE(source_->complete(QRA_EVENT_LIST_SUCCESS));
    ASSERT_EQ(set_page_style(mask), QRA_ERROR_NONE);
}

void AgentTest::script_items(int count, int type) {
    script_.items.clear();
    for (int i = 0; i < count; ++i) {
        SourceScript::Item item;
        item.texts = {{"TITLE", "item " + std::to_string(i)}, {"ID_QRA", "id-" + std::to_string(i)}};
        item.numbers = {{"MEDIA_TYPE", type}};
        script_.items.push_back(item);
    }
    script_groups(0, {{"all", count}});
}

void AgentTest::script_groups(int offset, const std::vector<std::pair<std::string, int>>& groups) {
    script_.groups = CQRAGroupInfo();
    script_.groups->SetStartDBIndexOffset(offset);
    for (const auto& [name, count] : groups)
        script_.groups->AddGroup(name, count);
}

std::string AgentTest::item(int index) {
    char* value = nullptr;
    EXPECT_EQ(qra_get_item_v2(handle_, index, &value), QRA_ERROR_NONE);
    const std::string copy = value != nullptr ? value : "";
    free(value);
    return copy;
}

std::string AgentTest::text(const char* field) {
    char* value = nullptr;
    EXPECT_EQ(qra_get_item_value_char_v2(handle_, field, &value), QRA_ERROR_NONE);
    const std::string copy = value != nullptr ? value : "";
    free(value);
    return copy;
}

bool AgentTest::on_list(void* self, CQRAAgentHandle* handle, qra_event_e event, int value, const char* data) {
    auto* test = static_cast<AgentTest*>(self);
    test->answers_.push_back({event, value, data, handle});
    if (test->in_callback_)
        test->in_callback_();
    return true;
}
