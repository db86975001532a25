#include "apps/qra/list_request.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string_view>

#include "apps/qra/camera.h"
#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/request_error.h"
#include "apps/qra/request_params.h"
#include "apps/qra/server_questions.h"
#include "apps/qra/terminal_text.h"

namespace {

GeneralParam list_param(const ListOptions& options, const std::string& path) {
    GeneralParam param = general_param({
        {qra_param_set_general_source, options.source},
        {qra_param_set_general_path, path},
        {qra_param_set_general_content_type, options.content_type},
        {qra_param_set_general_sort_category, options.sort_category},
        {qra_param_set_general_key_word, options.keyword},
        {qra_param_set_general_extension, options.extension},
        {qra_param_set_general_folder_id, options.folder_id},
        {qra_param_set_general_playlist_name, options.playlist},
    });
    check("list", qra_param_set_general_bus_value(param.get(), options.bus));
    check("list", qra_param_set_general_device_value(param.get(), options.device));
    check("list", qra_param_set_general_is_uhd_meta(param.get(), options.uhd));
    return param;
}

/// What a list that failed was to be. The library tells no more than that it failed.
[[noreturn]] void fail_list(const ListOptions& options, const std::string& path) {
    if (options.source == kPlaylistSource) {
        throw CommandError(ExitStatus::RequestFailed, "no such playlist, or it is empty");
    }
    std::string reason;
    if (options.source == kServerSource) {
        reason = list_failure(path, options);
    } else if (options.source == kCameraSource) {
        CameraService().find(options.bus, options.device);  // throws where there is none
        reason = "the camera does not give it";
    } else {
        reason = options.sort_category + " with " + options.content_type + " of " + printable_text(path) +
                 " (QRA_LOG=warning tells why)";
    }
    throw CommandError(ExitStatus::RequestFailed, "the list request failed: " + reason);
}

}  // namespace

bool is_content_type(const std::string& name) {
    constexpr std::string_view kTypes[] = {
        "CONTENT-FOLDER", "CONTENT-IMAGE",         "CONTENT-VIDEO",        "CONTENT-MUSIC",
        "CONTENT-PVR",    "CONTENT-PVR-SCHEDULED", "CONTENT-360IMAGE",     "CONTENT-360VIDEO",
        "CONTENT-UHD",    "CONTENT-SCSA",          "CONTENT-PVR-UNWATCHED"};
    return std::find(std::begin(kTypes), std::end(kTypes), name) != std::end(kTypes);
}

bool is_source_of_this_machine(const std::string& source) {
    constexpr std::string_view kSources[] = {kDriveSource, kCameraSource, kServerSource, kPlaylistSource};
    return std::find(std::begin(kSources), std::end(kSources), source) != std::end(kSources);
}

ListRequest::ListRequest(const ListOptions& options, const std::string& path) {
    try {
        send(options, path);
        const qra_event_e event = wait_for_answer();
        if (event == QRA_EVENT_DLNA_ITEM_NOT_EXIST) {
            throw CommandError(ExitStatus::RequestFailed, "the server has no such folder");
        }
        if (event == QRA_EVENT_LIST_FAILED) {
            fail_list(options, path);
        }
        lay_out(options);
    } catch (...) {
        qra_disconnect_v2(handle_);
        throw;
    }
}

ListRequest::~ListRequest() {
    qra_disconnect_v2(handle_);
}

void ListRequest::send(const ListOptions& options, const std::string& path) {
    const GeneralParam param = list_param(options, path);
    check("list request", qra_request_list_v2(param.get(), on_list_complete, this, &handle_));
}

bool ListRequest::on_list_complete(void* user_data, CQRAAgentHandle*, qra_event_e event, int, const char*) {
    auto* request = static_cast<ListRequest*>(user_data);
    const std::lock_guard<std::mutex> lock(request->mutex_);
    if (!request->event_) {
        request->event_ = event;
        request->answered_.notify_one();
    }
    return true;
}

qra_event_e ListRequest::wait_for_answer() {
    const interrupt::Reaction wake([this] {
        const std::lock_guard<std::mutex> lock(mutex_);
        interrupted_ = true;
        answered_.notify_one();
    });
    std::unique_lock<std::mutex> lock(mutex_);
    answered_.wait(lock, [this] { return event_.has_value() || interrupted_; });
    if (!event_) {
        throw CommandError(ExitStatus::RequestFailed, "interrupted");
    }
    return *event_;
}

void ListRequest::lay_out(const ListOptions& options) {
    if (options.group >= 0) {
        check_group(options);
    }
    apply(options);
}

int ListRequest::group_count(const ListOptions& options) {
    ListOptions headers_only = options;
    headers_only.mask = kGroupHeaders;
    headers_only.group = -1;
    apply(headers_only);
    const int count = tile_count_;
    apply(options);
    return count;
}

void ListRequest::check_group(const ListOptions& options) {
    ListOptions all_groups = options;
    all_groups.group = -1;
    const int count = group_count(all_groups);
    if (count > 0 && options.group >= count) {
        throw CommandError(ExitStatus::RequestFailed, "there is no group " + std::to_string(options.group) +
                                                          ": the list has " + std::to_string(count));
    }
}

void ListRequest::apply(const ListOptions& options) {
    const PageParam style = page_param(options);
    check("page style", qra_set_page_style_v2(handle_, style.get()));
    check("item count", qra_get_item_count_v2(handle_, &tile_count_));
}

int ListRequest::count_of(qra_media_type_e type) const {
    int count = 0;
    return qra_get_item_count_by_type_v2(handle_, type, &count) == QRA_ERROR_NONE ? count : 0;
}

std::optional<std::string> ListRequest::item(int index) {
    char* text = nullptr;
    if (qra_get_item_v2(handle_, index, &text) != QRA_ERROR_NONE) {
        return std::nullopt;
    }
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text;
}

bool ListRequest::reach(int index) {
    return qra_move_to_index_v2(handle_, index) == QRA_ERROR_NONE;
}

bool ListRequest::step() {
    return qra_move_to_next_v2(handle_) == QRA_ERROR_NONE;
}

void ListRequest::move_to(int index) {
    check("tile " + std::to_string(index), qra_move_to_index_v2(handle_, index));
}
