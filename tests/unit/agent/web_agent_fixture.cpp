#include "tests/unit/agent/web_agent_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

bool run_loop_until(const std::function<bool()>& condition) {
    const gint64 deadline = g_get_monotonic_time() + 20 * G_TIME_SPAN_SECOND;
    GMainContext* const context = g_main_context_get_thread_default();
    GSource* const wake_up = g_timeout_source_new(10);
    g_source_set_callback(
        wake_up, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr, nullptr);
    g_source_attach(wake_up, context);
    while (!condition() && g_get_monotonic_time() < deadline)
        g_main_context_iteration(context, TRUE);
    g_source_destroy(wake_up);
    g_source_unref(wake_up);
    return condition();
}

bool take_list_event(void* events, CQRAAgentHandle* handle, qra_event_e event, int id, const char* text) {
    static_cast<ClientEvents*>(events)->push_back({handle, event, id, text, std::this_thread::get_id()});
    return true;
}

bool take_item_event(void* events, CQRAAgentHandle* handle, int id, qra_event_e event, const char* text) {
    return take_list_event(events, handle, event, id, text);
}

std::string RemoteList::item(int index) {
    return R"({"TITLE":"item )" + std::to_string(index) + R"(","MEDIA_TYPE":2,"LIKED":true,"SIZE":)" +
           std::to_string(5000000000 + index) + "}";
}

const std::string& RemoteList::write(int section) {
    ResultListObject list;
    BlockObject block;
    list.start_index = block.start_index = section * section_size_;
    list.section_index = section;
    list.total_count = block.total_count = total_;
    list.groups = groups;
    for (int i = list.start_index; i < std::min(list.start_index + section_size_, total_); ++i) {
        list.items.emplace_back(0, i - list.start_index);
        block.texts.push_back(item(i));
    }
    files_.push_back(std::make_unique<ShmFile>(block.bytes()));
    list.block_names = {files_.back()->name()};
    files_.push_back(std::make_unique<ShmFile>(list.bytes()));
    return files_.back()->name();
}

WebAgentTest::WebAgentTest() {
    start_engine();
    param_.pPluginName = strdup("account");
    param_.pSource = strdup("CloudSource");
    param_.nPrefectchNum = 4;
}

WebAgentTest::~WebAgentTest() {
    if (handle_ != nullptr)
        disconnect();
    for (char* text : {param_.pPluginName, param_.pSource, param_.szUserData, param_.pPrepareData})
        free(text);
}

void WebAgentTest::start_engine() {
    engine_.emplace();
    engine_->answer("start_server", {"('QRA_SERVER_START_SUCCESS',)"});
    engine_->answer("connect", {"(uint32 7,)"});
}

qra_error_code_e WebAgentTest::request() {
    return qra_request_list_v2(&param_, take_list_event, &events_, &handle_);
}

qra_error_code_e WebAgentTest::disconnect() {
    CQRAAgentHandle* const handle = handle_;
    handle_ = nullptr;
    return qra_disconnect_v2(handle);
}

void WebAgentTest::open_list() {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    complete_section(0);
    ASSERT_TRUE(wait_for_events(1));
    events_.clear();
}

qra_error_code_e WebAgentTest::lay_out(int mask) {
    qra_page_style_s style;
    style.mask = mask;
    style.group_index = -1;
    return qra_set_page_style_v2(handle_, &style);
}

void WebAgentTest::complete(Json::Value answer) {
    if (!answer.isMember("qra_handle_id"))
        answer["qra_handle_id"] = kId;
    emit(Json::FastWriter().write(answer));
}

void WebAgentTest::complete_section(int section) {
    Json::Value answer;
    answer["qra_event_type"] = 0;
    answer["qra_result_list_block_name"] = list_.write(section);
    complete(answer);
}

void WebAgentTest::emit(const std::string& payload) {
    GVariant* const parameters = g_variant_ref_sink(g_variant_new("(s)", payload.c_str()));
    gchar* const text = g_variant_print(parameters, TRUE);
    engine_->emit("qra_request_normal_complete", text);
    g_free(text);
    g_variant_unref(parameters);
}

bool WebAgentTest::wait_for_log(const std::string& part) {
    return run_loop_until([&] { return log_.contains(part); });
}

bool WebAgentTest::wait_for_events(size_t count) {
    return run_loop_until([&] { return events_.size() >= count; });
}

std::vector<std::string> WebAgentTest::calls_of(const std::string& method, size_t count) {
    std::vector<std::string> arguments;
    const bool there = run_loop_until([&] { return static_cast<size_t>(engine_->count(method)) >= count; });
    EXPECT_TRUE(there) << method;
    for (const FakeEngine::Call& call : engine_->calls()) {
        if (call.method == method)
            arguments.push_back(call.arguments);
    }
    return arguments;
}

Json::Value WebAgentTest::json_of(const std::string& arguments) {
    GVariant* const call = g_variant_parse(nullptr, arguments.c_str(), nullptr, nullptr, nullptr);
    GVariant* const last = g_variant_get_child_value(call, g_variant_n_children(call) - 1);
    Json::Value value;
    EXPECT_TRUE(Json::Reader().parse(g_variant_get_string(last, nullptr), value)) << arguments;
    g_variant_unref(last);
    g_variant_unref(call);
    return value;
}

std::string WebAgentTest::item(int index) {
    char* text = nullptr;
    const qra_error_code_e code = qra_get_item_v2(handle_, index, &text);
    const std::string result = code == QRA_ERROR_NONE ? text : "code " + std::to_string(code);
    free(text);
    return result;
}
