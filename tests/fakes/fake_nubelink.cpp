#include "tests/fakes/fake_nubelink.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <utility>

struct nbl_device_s {
    FakeNubelink::Device device;
};
struct nbl_provider_s {};
struct nbl_item_s {
    FakeNubelink::Item item;
    std::atomic<int> references{1};
};
struct nbl_searchcriteria_s {
    std::string keyword;
    std::vector<int> types;
};
struct nbl_container_s {
    std::string id;
};
struct nbl_feature_s {
    std::string name;
    std::vector<nbl_container_s> containers;
    std::vector<nbl_container_t> handles;
};

std::atomic<int> FakeNubelink::items_alive{0};

namespace {

FakeNubelink* fake = nullptr;
nbl_provider_s the_provider;
char the_service;
char the_finder;

std::string text(const char* value) {
    return value != nullptr ? value : "(null)";
}

int copy_out(const std::optional<std::string>& value, const char** out) {
    *out = value.has_value() ? value->c_str() : nullptr;
    return NBL_ERROR_NONE;
}

}  // namespace

nbl_item_t FakeNubelink::make_item(const Item& item) {
    ++items_alive;
    auto* handle = new nbl_item_s;
    handle->item = item;
    return handle;
}

struct FakeNubelink::Calls {
    /// Notes a call; the code that it is to be refused with, or 0.
    static int note(const std::string& function, const std::vector<std::string>& arguments = {}) {
        const std::lock_guard<std::mutex> lock(fake->mutex_);
        std::string line = function;
        for (const std::string& argument : arguments) {
            line += " " + argument;
        }
        fake->calls_.push_back(line);
        const auto it = fake->refuse.find(function);
        return it != fake->refuse.end() ? it->second : NBL_ERROR_NONE;
    }

    static int start(Request request, int* token) {
        {
            const std::lock_guard<std::mutex> lock(fake->mutex_);
            request.token = *token = ++fake->last_token_;
            fake->open_.push_back(request);
            fake->changed_.notify_all();
            if (fake->hold) {
                return NBL_ERROR_NONE;
            }
        }
        fake->post([request] { fake->answer(request); });
        return NBL_ERROR_NONE;
    }

    static void start(Transfer transfer, int* token) {
        const std::lock_guard<std::mutex> lock(fake->mutex_);
        transfer.token = *token = ++fake->last_token_;
        fake->last_transfer_ = std::move(transfer);
    }

    /// Lets a job run on the service's thread, and returns when it has begun.
    static void begin(const std::function<void()>& job) {
        const auto begun = std::make_shared<std::atomic<bool>>(false);
        fake->post([job, begun] {
            *begun = true;
            {
                const std::lock_guard<std::mutex> lock(fake->mutex_);
                fake->changed_.notify_all();
            }
            job();
        });
        std::unique_lock<std::mutex> lock(fake->mutex_);
        fake->changed_.wait(lock, [&] { return begun->load(); });
    }

    static void watch(nbl_devicefinder_event_cb callback, void* user_data) {
        const std::lock_guard<std::mutex> lock(fake->mutex_);
        fake->event_cb_ = callback;
        fake->event_data_ = user_data;
    }

    static const std::vector<nbl_device_t>& list() {
        for (const nbl_device_t device : std::exchange(fake->listed_, {})) {
            delete device;
        }
        for (const Device& device : fake->devices) {
            fake->listed_.push_back(new nbl_device_s{device});
        }
        fake->listed_.push_back(nullptr);
        return fake->listed_;
    }

    static int get_text(const char* name, nbl_item_t item, char** out) {
        const auto it = item->item.texts.find(name);
        *out = it != item->item.texts.end() ? strdup(it->second.c_str()) : nullptr;
        return *out != nullptr ? NBL_ERROR_NONE : NBL_ERROR_NO_DATA;
    }

    template <class Number>
    static int get_number(const char* name, nbl_item_t item, Number* out) {
        const auto it = item->item.numbers.find(name);
        if (it == item->item.numbers.end()) {
            return NBL_ERROR_NO_DATA;
        }
        *out = static_cast<Number>(it->second);
        return NBL_ERROR_NONE;
    }
};

FakeNubelink::FakeNubelink() {
    fake = this;
    thread_ = std::thread([this] { work(); });
}

FakeNubelink::~FakeNubelink() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        end_ = true;
        changed_.notify_all();
    }
    thread_.join();
    for (const nbl_device_t device : listed_) {
        delete device;
    }
    fake = nullptr;
}

void FakeNubelink::work() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return end_ || !jobs_.empty(); });
        if (jobs_.empty()) {
            return;
        }
        const std::function<void()> job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

void FakeNubelink::post(const std::function<void()>& job) {
    const std::lock_guard<std::mutex> lock(mutex_);
    jobs_.push_back(job);
    changed_.notify_all();
}

void FakeNubelink::run(const std::function<void()>& job) {
    bool done = false;
    post([&] {
        job();
        const std::lock_guard<std::mutex> lock(mutex_);
        done = true;
        changed_.notify_all();
    });
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return done; });
}

std::vector<std::string> FakeNubelink::calls() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return calls_;
}

int FakeNubelink::count(const std::string& start) const {
    const std::vector<std::string> all = calls();
    return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const std::string& call) {
        return call.compare(0, start.size(), start) == 0;
    }));
}

std::vector<FakeNubelink::Request> FakeNubelink::open() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return open_;
}

bool FakeNubelink::wait_for_open(std::size_t count) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return open_.size() >= count; });
}

FakeNubelink::Transfer FakeNubelink::last_transfer() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return last_transfer_;
}

bool FakeNubelink::has_event_callback() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return event_cb_ != nullptr;
}

void FakeNubelink::answer(const Request& request) {
    const auto folder = folders.find(request.id);
    answer(request, request.kind == "search" || request.kind == "features" ? 0
                    : folder == folders.end()                              ? NBL_ERROR_ITEM_NOT_EXIST
                                                                           : folder->second.error);
}

void FakeNubelink::answer(const Request& request, int error) {
    if (std::this_thread::get_id() != thread_.get_id()) {
        run([&] { answer(request, error); });
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto it = std::find_if(open_.begin(), open_.end(),
                                     [&](const Request& other) { return other.token == request.token; });
        if (it == open_.end()) {
            return;  // cancelled, and answered for
        }
        open_.erase(it);
    }
    if (request.kind == "features") {
        answer_features(request, error);
    } else if (error != NBL_ERROR_NONE) {
        answer_items(request, {}, error, 1);
    } else if (request.kind == "search") {
        const std::vector<std::vector<Item>>& answers = finds[request.id];
        for (std::size_t i = 0; i < answers.size(); ++i) {
            answer_items(request, answers[i], 0, i + 1 == answers.size() ? 1 : 0);
        }
    } else if (request.kind == "item") {
        const Folder& folder = folders[request.id];
        Item item{request.id, request.id, NBL_ITEM_TYPE_FOLDER, {}, {}};
        item.numbers["child_count"] =
            folder.said.has_value() ? *folder.said : static_cast<int>(folder.children.size());
        answer_items(request, {item}, 0, 1);
    } else {
        const std::vector<Item>& children = folders[request.id].children;
        const int size = static_cast<int>(children.size());
        const auto first = children.begin() + std::min(size, request.start);
        const auto last = children.begin() + std::min(size, request.start + request.count);
        answer_items(request, {first, last}, 0, 1);
    }
}

void FakeNubelink::answer_items(const Request& request, const std::vector<Item>& items, int error, int end) {
    std::vector<nbl_item_t> handles;
    for (const Item& item : items) {
        handles.push_back(make_item(item));
    }
    nbl_response response{request.token,
                          handles.empty() ? nullptr : handles.data(),
                          static_cast<int>(handles.size()),
                          end,
                          request.start,
                          0};
    request.cb(nullptr, &response, error, request.user_data);
    for (const nbl_item_t handle : handles) {
        nbl_item_free(handle);
    }
}

void FakeNubelink::answer_features(const Request& request, int error) {
    std::vector<std::unique_ptr<nbl_feature_s>> owned;
    std::vector<nbl_feature_t> handles;
    for (const auto& feature : features) {
        owned.push_back(std::make_unique<nbl_feature_s>());
        owned.back()->name = feature.first;
        for (const std::string& id : feature.second) {
            owned.back()->containers.push_back({id});
        }
        for (nbl_container_s& container : owned.back()->containers) {
            owned.back()->handles.push_back(&container);
        }
        handles.push_back(owned.back().get());
    }
    nbl_feature_response response{request.token, handles.empty() ? nullptr : handles.data(),
                                  static_cast<int>(handles.size()), NBL_FEATURE_SOURCE_SERVER};
    if (error != NBL_ERROR_NONE) {
        response.features = nullptr;
        response.length = 0;
    }
    request.feature_cb(nullptr, &response, error, request.user_data);
}

void FakeNubelink::send_event(int event, const Device& device) {
    run([&] {
        nbl_device_s handle{device};
        nbl_device_event record{event, &handle};
        event_cb_(&record, 0, NBL_ERROR_NONE, event_data_);
    });
}

void FakeNubelink::send_null_event() {
    run([&] { event_cb_(nullptr, 0, NBL_ERROR_NONE, event_data_); });
}

using Calls = FakeNubelink::Calls;

int nbl_serviceconnector_connect(nbl_serviceconnector_cb callback, void* user_data) {
    const int code = Calls::note(__func__);
    if (code != NBL_ERROR_NONE) {
        return code;
    }
    const auto tell = [callback, user_data] {
        const bool enabled = fake->connect_state == NBL_SERVICECONNECTOR_ENABLED;
        callback(enabled ? &the_service : nullptr, fake->connect_state, user_data);
    };
    if (fake->connect_inside) {
        tell();
    } else {
        fake->post(tell);
    }
    return NBL_ERROR_NONE;
}

int nbl_serviceconnector_disconnect(nbl_serviceconnector_cb callback, void* user_data) {
    const int code = Calls::note(__func__);
    if (code == NBL_ERROR_NONE) {
        Calls::watch(nullptr, nullptr);
        if (callback != nullptr) {
            fake->post([=] { callback(nullptr, NBL_SERVICECONNECTOR_DISABLED, user_data); });
        }
    }
    return code;
}

int nbl_serviceprovider_get_service_state(nbl_serviceprovider_t, int* state) {
    *state = fake->service_state;
    return Calls::note(__func__);
}

int nbl_serviceprovider_get_devicefinder(nbl_serviceprovider_t provider, nbl_devicefinder_t* finder) {
    const int code = Calls::note(__func__);
    if (provider == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *finder = &the_finder;
    return code;
}

int nbl_devicefinder_set_event_callback(nbl_devicefinder_t, int device_class,
                                        nbl_devicefinder_event_cb callback, void* user_data) {
    const int code = Calls::note(__func__, {std::to_string(device_class)});
    if (code == NBL_ERROR_NONE) {
        Calls::watch(callback, user_data);
    }
    return code;
}

int nbl_devicefinder_refresh(nbl_devicefinder_t) {
    return Calls::note(__func__);
}

int nbl_devicefinder_get_device_list(nbl_devicefinder_t, int device_class, nbl_device_t** list, int* count) {
    const int code = Calls::note(__func__, {std::to_string(device_class)});
    if (code == NBL_ERROR_NONE && !fake->null_device_list) {
        const std::vector<nbl_device_t>& devices = Calls::list();
        *list = const_cast<nbl_device_t*>(devices.data());
        *count = static_cast<int>(devices.size()) - 1;
    }
    return code;
}

int nbl_devicefinder_get_device(nbl_devicefinder_t, int device_class, const char* id,
                                nbl_provider_t* provider) {
    const int code = Calls::note(__func__, {std::to_string(device_class), text(id)});
    if (code == NBL_ERROR_NONE) {
        *provider = &the_provider;
    }
    return code;
}

int nbl_device_get_id(nbl_device_t device, const char** id) {
    return copy_out(device->device.id, id);
}

int nbl_device_get_ip_address(nbl_device_t device, const char** address) {
    return copy_out(device->device.ip, address);
}

int nbl_device_get_name(nbl_device_t device, const char** name) {
    return copy_out(device->device.name, name);
}

int nbl_device_get_manufacturer_name(nbl_device_t device, const char** name) {
    return copy_out(device->device.maker, name);
}

int nbl_provider_get_root_folder(nbl_provider_t, nbl_item_t* item) {
    return nbl_item_create_provider_item("0", item);
}

int nbl_item_create_provider_item(const char* id, nbl_item_t* item) {
    const int code = Calls::note(__func__, {text(id)});
    if (code == NBL_ERROR_NONE) {
        *item = FakeNubelink::make_item({id, "", NBL_ITEM_TYPE_FOLDER, {}, {}});
    }
    return code;
}

int nbl_provider_browse(nbl_provider_t, nbl_item_t item, int start, int count, nbl_provider_cb callback,
                        void* user_data, int* token) {
    const int code = Calls::note(__func__, {item->item.id, std::to_string(start), std::to_string(count)});
    return code != NBL_ERROR_NONE
               ? code
               : Calls::start({"browse", item->item.id, start, count, 0, callback, nullptr, user_data},
                              token);
}

int nbl_provider_browse_item(nbl_provider_t, const char* id, nbl_provider_cb callback, void* user_data,
                             int* token) {
    const int code = Calls::note(__func__, {text(id)});
    return code != NBL_ERROR_NONE ? code
                                  : Calls::start({"item", id, 0, 1, 0, callback, nullptr, user_data}, token);
}

int nbl_provider_search(nbl_provider_t, nbl_searchcriteria_t criteria, int start, int count,
                        nbl_provider_cb callback, void* user_data, int* token) {
    std::vector<std::string> arguments{criteria->keyword, std::to_string(start), std::to_string(count)};
    for (const int type : criteria->types) {
        arguments.push_back(std::to_string(type));
    }
    const int code = Calls::note(__func__, arguments);
    return code != NBL_ERROR_NONE
               ? code
               : Calls::start({"search", criteria->keyword, start, count, 0, callback, nullptr, user_data},
                              token);
}

int nbl_searchcriteria_create(const char* keyword, nbl_searchcriteria_t* criteria) {
    const int code = Calls::note(__func__, {text(keyword)});
    if (code == NBL_ERROR_NONE) {
        *criteria = new nbl_searchcriteria_s{keyword, {}};
    }
    return code;
}

int nbl_searchcriteria_add_item_type(nbl_searchcriteria_t criteria, int type) {
    const int code = Calls::note(__func__, {std::to_string(type)});
    if (code == NBL_ERROR_NONE) {
        criteria->types.push_back(type);
    }
    return code;
}

void nbl_searchcriteria_free(nbl_searchcriteria_t criteria) {
    delete criteria;
}

int nbl_provider_get_feature_list(nbl_provider_t, nbl_feature_cb callback, void* user_data, int* token) {
    const int code = Calls::note(__func__);
    return code != NBL_ERROR_NONE
               ? code
               : Calls::start({"features", "", 0, 0, 0, nullptr, callback, user_data}, token);
}

int nbl_feature_get_details(nbl_feature_t feature, const char** name, int* container_count) {
    *name = feature->name.c_str();
    *container_count = static_cast<int>(feature->containers.size());
    return NBL_ERROR_NONE;
}

int nbl_feature_get_container_list(nbl_feature_t feature, nbl_container_t** containers, int* count) {
    *containers = feature->handles.empty() ? nullptr : feature->handles.data();
    *count = static_cast<int>(feature->handles.size());
    return Calls::note(__func__);
}

int nbl_container_get_details(nbl_container_t container, const char** id) {
    *id = container->id.c_str();
    return NBL_ERROR_NONE;
}

int nbl_provider_cancel_async_action(int token) {
    const int code = Calls::note(__func__, {std::to_string(token)});
    if (fake->on_cancel) {
        fake->on_cancel(token);
    }
    if (code != NBL_ERROR_NONE) {
        return code;
    }
    for (const FakeNubelink::Request& request : fake->open()) {
        if (request.token == token) {
            fake->post([request] { fake->answer(request, NBL_ERROR_CANCELLED); });
        }
    }
    return NBL_ERROR_NONE;
}

int nbl_provider_set_bookmark(nbl_provider_t, nbl_item_t item, int seconds, nbl_bookmark_cb callback,
                              int tag) {
    const int code = Calls::note(__func__, {item->item.id, std::to_string(seconds), std::to_string(tag)});
    if (code == NBL_ERROR_NONE && callback != nullptr) {
        fake->post([=] { callback(nullptr, NBL_ERROR_NONE, tag); });
    }
    return code;
}

int nbl_provider_download(const char* uri, const char* mimetype, const char* path, int interval_ms,
                          nbl_download_cb callback, void* user_data, int* token) {
    const std::vector<std::string> arguments{text(uri), text(mimetype), text(path),
                                             std::to_string(interval_ms)};
    const int code = Calls::note(__func__, arguments);
    if (code != NBL_ERROR_NONE) {
        return code;
    }
    Calls::start(FakeNubelink::Transfer{arguments, 0, callback, {}, user_data}, token);
    if (fake->transfers_end_at_once) {
        Calls::begin([=, number = *token] {
            nbl_transfer_info info{NBL_DOWNLOAD_STATE_COMPLETE, 0, 10, 10};
            callback(number, &info, user_data);
        });
    }
    return NBL_ERROR_NONE;
}

int nbl_provider_cancel_download(int token) {
    return Calls::note(__func__, {std::to_string(token)});
}

int nbl_provider_receive(nbl_provider_t, nbl_item_t item, const nbl_provider_receive_handler* handlers,
                         void* user_data, int* id) {
    const int code = Calls::note(__func__, {item->item.title});
    if (code != NBL_ERROR_NONE) {
        *id = -1;
        return code;
    }
    const nbl_provider_receive_handler copy = *handlers;
    Calls::start(FakeNubelink::Transfer{{item->item.title}, 0, nullptr, copy, user_data}, id);
    if (fake->transfers_end_at_once) {
        Calls::begin([=, number = *id] { copy.completed(number, nullptr, NBL_ERROR_NONE, user_data); });
    }
    return NBL_ERROR_NONE;
}

int nbl_provider_cancel_receive(nbl_provider_t, int id, nbl_receive_cancelled_cb, void*) {
    return Calls::note(__func__, {std::to_string(id)});
}

int nbl_item_copy(nbl_item_t item, nbl_item_t* copy) {
    ++item->references;
    *copy = item;
    return NBL_ERROR_NONE;
}

void nbl_item_free(nbl_item_t item) {
    if (item != nullptr && --item->references == 0) {
        --FakeNubelink::items_alive;
        delete item;
    }
}

int nbl_item_get_local_content(const char* path, const char* mimetype, nbl_item_t* item) {
    const int code = Calls::note(__func__, {text(path), text(mimetype)});
    if (code == NBL_ERROR_NONE) {
        *item = FakeNubelink::make_item({"", path, NBL_ITEM_TYPE_OTHER, {}, {}});
    }
    return code;
}

int nbl_item_get_live_content(const char* name, const char* mimetype, const char* fifo, nbl_item_t* item) {
    const int code = Calls::note(__func__, {text(name), text(mimetype), text(fifo)});
    if (code == NBL_ERROR_NONE) {
        *item = FakeNubelink::make_item({"", name, NBL_ITEM_TYPE_OTHER, {}, {}});
    }
    return code;
}

int nbl_item_get_title(nbl_item_t item, char** out) {
    *out = strdup(item->item.title.c_str());
    return NBL_ERROR_NONE;
}

int nbl_item_get_content_id(nbl_item_t item, char** out) {
    const int code = Calls::note(__func__);
    *out = code == NBL_ERROR_NONE ? strdup(item->item.id.c_str()) : nullptr;
    return code;
}

int nbl_item_get_type(nbl_item_t item, int* number) {
    *number = item->item.type;
    return NBL_ERROR_NONE;
}

#define FAKE_TEXT(name)                                    \
    int nbl_item_get_##name(nbl_item_t item, char** out) { \
        return Calls::get_text(#name, item, out);          \
    }
FAKE_TEXT(extension)
FAKE_TEXT(uri)
FAKE_TEXT(mta_uri)
FAKE_TEXT(mimetype)
FAKE_TEXT(album_title)
FAKE_TEXT(artist)
FAKE_TEXT(date)
FAKE_TEXT(genre)
FAKE_TEXT(location)
FAKE_TEXT(resolution)
FAKE_TEXT(subtitle)
FAKE_TEXT(thumbnail)

int nbl_item_get_property_value_by_name(nbl_item_t item, const char* name, char** out) {
    return Calls::get_text(name, item, out);
}

#define FAKE_NUMBER(name, Number)                           \
    int nbl_item_get_##name(nbl_item_t item, Number* out) { \
        return Calls::get_number(#name, item, out);         \
    }
FAKE_NUMBER(child_count, int)
FAKE_NUMBER(width, int)
FAKE_NUMBER(height, int)
FAKE_NUMBER(seek_mode, int)
FAKE_NUMBER(file_size, unsigned long long)
FAKE_NUMBER(duration, unsigned long long)
FAKE_NUMBER(bookmark, int)
