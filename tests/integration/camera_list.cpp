#include "tests/integration/camera_list.h"

#include <chrono>
#include <cstdlib>
#include <memory>

namespace {

constexpr std::chrono::seconds kPatience(120);
constexpr int kFoldersAndMedia = 0x06;

std::string taken(char* text) {
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text != nullptr ? text : "";
}

}  // namespace

CameraList::CameraList(const Request& request) {
    qra_general_param_h param = nullptr;
    qra_create_general_param(&param);
    qra_param_set_general_source(param, "SOURCE_PTP");
    qra_param_set_general_sort_category(param,
                                        request.folder.empty() ? "CATEGORY-TITLE" : "CATEGORY-FOLDER-TITLE");
    qra_param_set_general_content_type(param, request.content_type.c_str());
    qra_param_set_general_folder_id(param, request.folder.c_str());
    qra_param_set_general_extension(param, request.extension.c_str());
    qra_param_set_general_bus_value(param, 1);
    qra_param_set_general_device_value(param, request.device);
    if (qra_request_list_v2(param, &on_list, this, &handle_) != QRA_ERROR_NONE) {
        handle_ = nullptr;
    }
    qra_destroy_general_param(param);
}

void CameraList::disconnect() {
    if (handle_ != nullptr) {
        qra_disconnect_v2(handle_);
        handle_ = nullptr;
    }
}

int CameraList::wait() {
    const int event = wait_for_event();
    qra_page_param_h style = nullptr;
    qra_create_page_param(&style);
    qra_param_set_page_style_mask(style, kFoldersAndMedia);
    qra_param_set_page_style_group_index(style, -1);
    qra_set_page_style_v2(handle_, style);
    qra_destroy_page_param(style);
    return event;
}

int CameraList::wait_for_event() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, kPatience, [this] { return event_ >= 0; });
    return event_;
}

int CameraList::event() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return event_;
}

int CameraList::tiles() const {
    int count = -1;
    qra_get_item_count_v2(handle_, &count);
    return count;
}

std::string CameraList::text(int tile, const char* field) const {
    char* text = nullptr;
    qra_move_to_index_v2(handle_, tile);
    qra_get_item_value_char_v2(handle_, field, &text);
    return taken(text);
}

int CameraList::number(int tile, const char* field) const {
    int number = -1;
    qra_move_to_index_v2(handle_, tile);
    qra_get_item_value_int_v2(handle_, field, &number);
    return number;
}

std::vector<std::string> CameraList::names() const {
    std::vector<std::string> names;
    for (int tile = 0; tile < tiles(); ++tile) {
        names.push_back(text(tile, "DISPLAY_NAME"));
    }
    return names;
}

std::string CameraList::id_of(const std::string& name) const {
    for (int tile = 0; tile < tiles(); ++tile) {
        if (text(tile, "DISPLAY_NAME") == name) {
            return text(tile, "ID_QRA");
        }
    }
    return "";
}

std::string CameraList::item(int tile) const {
    char* text = nullptr;
    qra_get_item_v2(handle_, tile, &text);
    return taken(text);
}

int CameraList::copy_all(const std::string& destination) {
    for (int tile = 0; tile < tiles(); ++tile) {
        qra_toggle_select_v2(handle_, tile);
    }
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        event_ = -1;
    }
    qra_share_param_h param = nullptr;
    qra_share_user_data_param_h user_data = nullptr;
    qra_create_share_param(&param);
    qra_create_share_user_data_param(&user_data);
    qra_param_set_share_source_dev_type(param, QRA_DEV_TYPE_PTP);
    qra_param_set_share_dest_dev_path(param, destination.c_str());
    qra_param_set_share_user_data_udata(user_data, this);
    qra_param_set_share_user_data_cb(user_data, &on_share);
    CQRASendHandle* job = nullptr;
    const qra_error_code_e code =
        qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, param, handle_, user_data, &job);
    qra_destroy_share_param(param);
    qra_destroy_share_user_data_param(user_data);
    if (code != QRA_ERROR_NONE) {
        return -1;
    }
    const int event = wait_for_event();
    return qra_stop_batch_process_v2(job) == QRA_ERROR_NONE ? event : -1;
}

bool CameraList::on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*) {
    auto* list = static_cast<CameraList*>(self);
    const std::lock_guard<std::mutex> lock(list->mutex_);
    list->event_ = event;
    list->changed_.notify_all();
    return true;
}

bool CameraList::on_share(void* self, CQRASendHandle*, qra_event_e event, qra_share_status_info_s*) {
    if (event != QRA_EVENT_BATCH_FAILED && event != QRA_EVENT_BATCH_FINISHED) {
        return true;
    }
    auto* list = static_cast<CameraList*>(self);
    const std::lock_guard<std::mutex> lock(list->mutex_);
    list->event_ = event;
    list->changed_.notify_all();
    return true;
}
