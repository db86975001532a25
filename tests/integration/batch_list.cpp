#include "tests/integration/batch_list.h"

#include <cstdlib>

BatchList::BatchList(const std::string& path, int mask) {
    qra_general_param_h request = nullptr;
    qra_create_general_param(&request);
    qra_param_set_general_source(request, "SOURCE_MSC");
    qra_param_set_general_path(request, path.c_str());
    qra_param_set_general_content_type(request, "CONTENT-FOLDER");
    qra_param_set_general_sort_category(request, "CATEGORY-FOLDER-TITLE");
    const qra_error_code_e code = qra_request_list_v2(request, &on_list, this, &handle_);
    qra_destroy_general_param(request);
    if (code != QRA_ERROR_NONE || wait() != QRA_EVENT_LIST_SUCCESS) {
        return;
    }
    qra_page_param_h style = nullptr;
    qra_create_page_param(&style);
    qra_param_set_page_style_mask(style, mask);
    qra_param_set_page_style_group_index(style, -1);
    qra_set_page_style_v2(handle_, style);
    qra_destroy_page_param(style);
}

BatchList::~BatchList() {
    if (handle_ != nullptr) {
        qra_disconnect_v2(handle_);
    }
}

int BatchList::tiles() const {
    int count = 0;
    qra_get_item_count_v2(handle_, &count);
    return count;
}

std::string BatchList::name_of(int tile) const {
    char* name = nullptr;
    if (qra_move_to_index_v2(handle_, tile) == QRA_ERROR_NONE) {
        qra_get_item_value_char_v2(handle_, "DISPLAY_NAME", &name);
    }
    const std::string copy = name != nullptr ? name : "";
    free(name);
    return copy;
}

std::vector<std::string> BatchList::names() const {
    std::vector<std::string> names;
    for (int tile = 0; tile < tiles(); ++tile) {
        names.push_back(name_of(tile));
    }
    return names;
}

bool BatchList::select(const std::string& name) const {
    for (int tile = 0; tile < tiles(); ++tile) {
        if (name_of(tile) == name) {
            return qra_toggle_select_v2(handle_, tile) == QRA_ERROR_NONE;
        }
    }
    return false;
}

void BatchList::select_all() const {
    for (int tile = 0; tile < tiles(); ++tile) {
        qra_toggle_select_v2(handle_, tile);
    }
}

int BatchList::run(qra_processor_type_e type, const std::string& destination, const Watch& watch) {
    return start(type, destination, watch) ? finish() : -1;
}

int BatchList::finish() {
    const int event = wait();
    return stop() ? event : -1;
}

bool BatchList::stop() {
    return qra_stop_batch_process_v2(job_) == QRA_ERROR_NONE;
}

bool BatchList::start(qra_processor_type_e type, const std::string& destination, const Watch& watch) {
    watch_ = watch;
    event_ = -1;
    qra_share_param_h param = nullptr;
    qra_share_user_data_param_h user_data = nullptr;
    qra_create_share_param(&param);
    qra_create_share_user_data_param(&user_data);
    qra_param_set_share_dest_dev_path(param, destination.c_str());
    qra_param_set_share_user_data_udata(user_data, this);
    qra_param_set_share_user_data_cb(user_data, &on_share);
    const qra_error_code_e code = qra_batch_process_v2(type, param, handle_, user_data, &job_);
    qra_destroy_share_param(param);
    qra_destroy_share_user_data_param(user_data);
    return code == QRA_ERROR_NONE;
}

bool BatchList::on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*) {
    auto* list = static_cast<BatchList*>(self);
    const std::lock_guard<std::mutex> lock(list->mutex_);
    if (list->event_ < 0) {
        list->event_ = event;
    }
    list->changed_.notify_all();
    return true;
}

bool BatchList::on_share(void* self, CQRASendHandle*, qra_event_e event, qra_share_status_info_s* status) {
    auto* list = static_cast<BatchList*>(self);
    if (list->watch_) {
        list->watch_(event, *status);
    }
    if (event == QRA_EVENT_BATCH_FAILED || event == QRA_EVENT_BATCH_FINISHED) {
        const std::lock_guard<std::mutex> lock(list->mutex_);
        list->event_ = event;
        list->changed_.notify_all();
    }
    return true;
}

int BatchList::wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, patience_, [this] { return event_ >= 0; });
    return event_;
}
