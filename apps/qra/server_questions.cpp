#include "apps/qra/server_questions.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "apps/qra/interrupt.h"
#include "apps/qra/list_request.h"

namespace {

constexpr char kTop[] = "/";
constexpr char kSearch[] = "CATEGORY-KEYWORD-SEARCH";
constexpr char kRootId[] = "0";
constexpr int kPage = 200;

struct FreeCriteria {
    void operator()(nbl_searchcriteria_s* criteria) const { nbl_searchcriteria_free(criteria); }
};
struct FreeItem {
    void operator()(nbl_item_s* item) const { nbl_item_free(item); }
};

/// The running service; null if it cannot be had. Asked for again, it tells who it is.
nbl_serviceprovider_t running_service() {
    struct Told {
        std::mutex mutex;
        std::condition_variable changed;
        bool told = false;
        nbl_serviceprovider_t service = nullptr;
    } told;
    const auto on_state = [](nbl_serviceprovider_t provider, int, void* data) {
        auto* to = static_cast<Told*>(data);
        const std::lock_guard<std::mutex> lock(to->mutex);
        to->service = provider;
        to->told = true;
        to->changed.notify_one();
    };
    if (nbl_serviceconnector_connect(on_state, &told) != NBL_ERROR_NONE) {
        return nullptr;
    }
    std::unique_lock<std::mutex> lock(told.mutex);
    told.changed.wait(lock, [&told] { return told.told; });
    return told.service;
}

/// One question, on the thread that asks it; answers come on one of the service.
class Question {
public:
    /// `start` gives the service a callback of this class, with the question as its user data.
    using Start = std::function<int(Question* self, int* token)>;

    /// An nbl_error_e. Of a search the first answer counts, the rest is not waited for.
    int ask(const Start& start) {
        int token = 0;
        const int code = start(this, &token);
        if (code != NBL_ERROR_NONE) {
            return code;
        }
        const interrupt::Reaction cancel_on_signal([token] { nbl_provider_cancel_async_action(token); });
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return error_.has_value(); });
        nbl_provider_cancel_async_action(token);
        changed_.wait(lock, [this] { return has_ended_; });
        return *error_;
    }

    static void on_items(nbl_device_t, nbl_response* response, int error, void* self) {
        auto* question = static_cast<Question*>(self);
        if (response->length > 0) {
            nbl_item_get_type(response->items[0], &question->type.emplace());
        }
        question->tell(error, response->end != 0);
    }
    static void on_features(nbl_device_t, nbl_feature_response* response, int error, void* self) {
        auto* question = static_cast<Question*>(self);
        question->source = response->source;
        question->tell(error, true);
    }

    // Of the answer.
    int source = NBL_FEATURE_SOURCE_NONE;  ///< of features
    std::optional<int> type;               ///< of the first item

private:
    void tell(int error, bool end) {
        const std::lock_guard<std::mutex> lock(mutex_);
        error_ = error_.value_or(error);
        has_ended_ = end;
        changed_.notify_one();
    }

    std::mutex mutex_;  // covers what follows
    std::condition_variable changed_;
    std::optional<int> error_;
    bool has_ended_ = false;
};

/// NBL_ERROR_NO_DATA for something else than a folder, where only a folder will do.
int ask_item(nbl_provider_t provider, const std::string& id, bool only_folder) {
    Question question;
    const int error = question.ask([&](Question* self, int* token) {
        return nbl_provider_browse_item(provider, id.c_str(), &Question::on_items, self, token);
    });
    if (error == NBL_ERROR_NONE && !question.type) {
        return NBL_ERROR_BAD_ANSWER;
    }
    const bool is_wrong = only_folder && question.type != NBL_ITEM_TYPE_FOLDER;
    return error == NBL_ERROR_NONE && is_wrong ? NBL_ERROR_NO_DATA : error;
}

int ask_children(nbl_provider_t provider, const std::string& id) {
    nbl_item_t raw = nullptr;
    nbl_item_create_provider_item(id.c_str(), &raw);
    const std::unique_ptr<nbl_item_s, FreeItem> folder(raw);
    return Question().ask([&](Question* self, int* token) {
        return nbl_provider_browse(provider, folder.get(), 0, kPage, &Question::on_items, self, token);
    });
}

int ask_search(nbl_provider_t provider, const std::string& keyword) {
    nbl_searchcriteria_t raw = nullptr;
    nbl_searchcriteria_create(keyword.c_str(), &raw);
    const std::unique_ptr<nbl_searchcriteria_s, FreeCriteria> criteria(raw);
    for (const int type : {NBL_ITEM_TYPE_IMAGE, NBL_ITEM_TYPE_MUSIC, NBL_ITEM_TYPE_VIDEO}) {
        nbl_searchcriteria_add_item_type(criteria.get(), type);
    }
    return Question().ask([&](Question* self, int* token) {
        return nbl_provider_search(provider, criteria.get(), 0, kPage, &Question::on_items, self, token);
    });
}

/// A view of a whole server is the server's own, or made of what a search finds.
int ask_view(nbl_provider_t provider) {
    Question question;
    const int error = question.ask([&](Question* self, int* token) {
        return nbl_provider_get_feature_list(provider, &Question::on_features, self, token);
    });
    if (error != NBL_ERROR_NONE || question.source == NBL_FEATURE_SOURCE_SERVER) {
        return error;
    }
    return question.source == NBL_FEATURE_SOURCE_NONE ? NBL_ERROR_NOT_SUPPORTED : ask_search(provider, "");
}

bool is_search(const ListOptions& options) {
    return options.sort_category == kSearch;
}

bool is_view(const ListOptions& options) {
    return options.folder_id == kTop && options.sort_category.find("FOLDER") == std::string::npos;
}

int ask_list(nbl_provider_t provider, const ListOptions& options) {
    if (is_search(options)) {
        return ask_search(provider, options.keyword);
    }
    if (is_view(options)) {
        return ask_view(provider);
    }
    const std::string id = options.folder_id == kTop ? kRootId : options.folder_id;
    const int error = ask_item(provider, id, true);
    return error == NBL_ERROR_NONE ? ask_children(provider, id) : error;
}

std::string failure_text(int error) {
    switch (error) {
        case NBL_ERROR_OUT_OF_MEMORY:
            return "what lists of media servers may hold is used up (QRA_DLNA_MEMORY)";
        case NBL_ERROR_NO_DATA:
            return "that is no folder";
        case NBL_ERROR_NOT_SUPPORTED:
            return "the server does not know such a request";
        case NBL_ERROR_ITEM_NOT_EXIST:
            return "the server has no such folder or file";
        case NBL_ERROR_TIMEOUT:
            return "the server does not answer";
        case NBL_ERROR_CANCELLED:
            return "interrupted";
        case NBL_ERROR_NOT_CONNECTED:
        case NBL_ERROR_DEVICE_GONE:
            return "the server is gone";
        case NBL_ERROR_NETWORK:
            return "the server cannot be reached, or breaks off";
        case NBL_ERROR_BAD_ANSWER:
            return "the server's answer cannot be understood";
        case NBL_ERROR_REFUSED:
            return "the server refuses the request";
        default:
            return "the home network service gives error " + std::to_string(error);
    }
}

}  // namespace

int find_provider(const std::string& server_id, nbl_provider_t& provider) {
    nbl_devicefinder_t finder = nullptr;
    const int code = nbl_serviceprovider_get_devicefinder(running_service(), &finder);
    return code == NBL_ERROR_NONE ? nbl_devicefinder_get_device(finder, NBL_DEVICE_CLASS_MEDIA_SERVER,
                                                                server_id.c_str(), &provider)
                                  : code;
}

std::string list_failure(const std::string& server_id, const ListOptions& options) {
    nbl_provider_t provider = nullptr;
    int error = find_provider(server_id, provider);
    if (error == NBL_ERROR_NONE) {
        error = ask_list(provider, options);
    }
    if (error == NBL_ERROR_NONE) {
        return "the server answers by now: try again";
    }
    if (error == NBL_ERROR_NOT_SUPPORTED && is_search(options)) {
        return "the server cannot search";
    }
    if (error == NBL_ERROR_NOT_SUPPORTED && is_view(options)) {
        return "the server neither sorts what it has nor can search it";
    }
    return failure_text(error);
}

std::string item_failure(const std::string& server_id, const std::string& item_id) {
    nbl_provider_t provider = nullptr;
    int error = find_provider(server_id, provider);
    if (error == NBL_ERROR_NONE) {
        error = ask_item(provider, item_id, false);
    }
    return error != NBL_ERROR_NONE ? failure_text(error) : "";
}
