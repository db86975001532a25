#include "apps/qra/remote_list.h"

#include <json/reader.h>
#include <json/value.h>

#include <cstdlib>
#include <memory>
#include <utility>

#include "apps/qra/exit_status.h"
#include "apps/qra/item_act.h"
#include "apps/qra/json_text.h"
#include "apps/qra/output.h"
#include "apps/qra/request_error.h"
#include "apps/qra/request_params.h"
#include "apps/qra/terminal_text.h"

namespace {

/// A grid of usual size has far fewer, so that it shows with the first section; and a large folder does not
/// come in very many.
constexpr int kItemsOfSection = 200;

std::string with_line_feed(std::string text) {
    if (text.empty() || text.back() != '\n') {
        text += '\n';
    }
    return text;
}

/// Why a detail failed, as its answer tells.
std::string reason_of(const std::string& answer) {
    const Json::Value value = read_json_object(answer);
    const Json::Value& reason = value["ERROR_TEXT"];
    return reason.isString() ? printable_text(reason.asString()) : "the service gave no reason";
}

}  // namespace

RemoteList::RemoteList(const ListOptions& options, const RemoteFolder& folder,
                       std::chrono::seconds longest_wait)
    : longest_wait_(longest_wait) {
    try {
        send(options, folder);
        const Event first = next_event();
        if (first.event == QRA_EVENT_LIST_SUCCESS) {
            lay_out(options);
        }
    } catch (...) {
        end();
        throw;
    }
}

RemoteList::~RemoteList() {
    end();
}

void RemoteList::end() {
    engine_watch_.reset();
    qra_disconnect_v2(handle_);
}

void RemoteList::send(const ListOptions& options, const RemoteFolder& folder) {
    const GeneralParam param = general_param({
        {qra_param_set_general_source, options.source},
        {qra_param_set_general_plugin, folder.plugin},
        {qra_param_set_general_user_data, folder.container},
        {qra_param_set_general_content_type, options.content_type},
        {qra_param_set_general_sort_category, options.sort_category},
        {qra_param_set_general_filter, options.keyword},
    });
    check("list request", qra_param_set_general_prefetch_num(param.get(), kItemsOfSection));
    check("list request", qra_param_set_general_window_size(param.get(), kItemsOfSection));
    const qra_error_code_e code = qra_request_list_v2(param.get(), on_list, this, &handle_);
    if (code == QRA_ERROR_ENGINE && engine_runs()) {
        fail_refused_account(folder.plugin);
    }
    check("list request", code);
    engine_watch_.emplace(answers_);
}

void RemoteList::lay_out(const ListOptions& options) {
    const PageParam style = page_param(options);
    check("page style", qra_set_page_style_v2(handle_, style.get()));
    check("item count", qra_get_item_count_v2(handle_, &count_));
}

bool RemoteList::on_list(void* list, CQRAAgentHandle*, qra_event_e event, int, const char* text) {
    static_cast<RemoteList*>(list)->answers_.give(Event{event, text != nullptr ? text : ""});
    return true;
}

RemoteList::Event RemoteList::next_event() {
    Answer answer = answers_.next_within(longest_wait_);
    while (const EngineState* const state = std::get_if<EngineState>(&answer)) {
        if (*state != EngineState::Running) {
            throw CommandError(ExitStatus::ServiceMissing,
                               "the content engine ended before its answer was complete");
        }
        answer = answers_.next_within(longest_wait_);
    }
    Event event = std::get<Event>(std::move(answer));
    if (event.event == QRA_EVENT_LIST_FAILED) {
        throw CommandError(ExitStatus::RequestFailed,
                           event.text.empty() ? "the list request failed" : printable_text(event.text));
    }
    return event;
}

void RemoteList::wait_for_section() {
    flush_output();
    next_event();
}

template <typename Call>
void RemoteList::once_arrived(int index, Call call) {
    qra_error_code_e code = call();
    while (code == QRA_ERROR_WRITE_FAILED) {
        wait_for_section();
        code = call();
    }
    check("item " + std::to_string(index), code);
}

std::string RemoteList::item(int index) {
    char* text = nullptr;
    once_arrived(index, [&] { return qra_get_item_v2(handle_, index, &text); });
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return with_line_feed(text);
}

void RemoteList::move_to(int index) {
    once_arrived(index, [&] { return qra_move_to_index_v2(handle_, index); });
}

bool RemoteList::on_detail(void* list, CQRAAgentHandle*, int, qra_event_e event, const char* text) {
    static_cast<RemoteList*>(list)->answers_.give(Event{event, text != nullptr ? text : ""});
    return true;
}

std::string RemoteList::detail_of_first() {
    qra_detail_param_h raw = nullptr;
    check("detail", qra_create_detail_param(&raw));
    // As it is made, it asks for the list's first item.
    const std::unique_ptr<qra_detail_s, decltype(&qra_destroy_detail_param)> param(raw,
                                                                                   &qra_destroy_detail_param);
    check("detail", qra_request_detail_v2(handle_, raw, this, on_detail));
    for (;;) {
        const Event answer = next_event();
        if (answer.event == QRA_EVENT_DETAIL_SUCCESS) {
            return with_line_feed(answer.text);
        }
        if (answer.event == QRA_EVENT_DETAIL_EMPTY) {
            throw CommandError(ExitStatus::RequestFailed, "the service tells nothing of it");
        }
        if (answer.event == QRA_EVENT_DETAIL_FAILED) {
            throw CommandError(ExitStatus::RequestFailed, "the detail failed: " + reason_of(answer.text));
        }
    }
}
