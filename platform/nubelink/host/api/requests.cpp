// Browsing, searching, and what a server can do.
#include <new>

#include "nubelink.h"
#include "platform/nubelink/host/browse_request.h"
#include "platform/nubelink/host/feature_request.h"
#include "platform/nubelink/host/search_criteria.h"
#include "platform/nubelink/host/service.h"
#include "platform/nubelink/host/view_request.h"

using nbl::Service;

namespace {

constexpr char kRootFolder[] = "0";
constexpr int kMostAtOnce = 1000;

int folder_item(const char* id, nbl_provider_t provider, nbl_item_t* item) {
    nbl::ItemBuilder builder;
    builder.add("@id", id);
    *item = builder.build(NBL_ITEM_TYPE_FOLDER, provider).release();
    return NBL_ERROR_NONE;
}

bool is_wrong_range(int start, int count) {
    return start < 0 || count < 1;
}

}  // namespace

int nbl_provider_get_root_folder(nbl_provider_t provider, nbl_item_t* item) {
    if (provider == nullptr || item == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    return folder_item(kRootFolder, provider, item);
}

int nbl_item_create_provider_item(const char* id, nbl_item_t* item) {
    if (id == nullptr || *id == '\0' || item == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    return folder_item(id, nullptr, item);
}

int nbl_provider_browse(nbl_provider_t provider, nbl_item_t item, int start, int count,
                        nbl_provider_cb callback, void* user_data, int* token) {
    if (provider == nullptr || item == nullptr || callback == nullptr || token == nullptr ||
        is_wrong_range(start, count)) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    const int most = std::min(count, kMostAtOnce);
    const nbl::ItemClient client{callback, user_data};
    if (nbl::view_of(item->text("@id")) != nullptr) {
        return Service::instance().start(
            std::make_unique<nbl::ViewBrowseRequest>(provider, *item, start, most, client), token);
    }
    return Service::instance().start(
        std::make_unique<nbl::BrowseRequest>(provider, *item, start, most, client), token);
}

int nbl_provider_browse_item(nbl_provider_t provider, const char* id, nbl_provider_cb callback,
                             void* user_data, int* token) {
    if (provider == nullptr || id == nullptr || callback == nullptr || token == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    const nbl::ItemClient client{callback, user_data};
    if (nbl::view_of(id) != nullptr) {
        return Service::instance().start(std::make_unique<nbl::ViewItemRequest>(provider, id, client), token);
    }
    return Service::instance().start(std::make_unique<nbl::BrowseItemRequest>(provider, id, client), token);
}

int nbl_provider_search(nbl_provider_t provider, nbl_searchcriteria_t criteria, int start, int count,
                        nbl_provider_cb callback, void* user_data, int* token) {
    if (provider == nullptr || criteria == nullptr || callback == nullptr || token == nullptr ||
        is_wrong_range(start, count)) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    auto request = std::make_unique<nbl::SearchRequest>(provider, nbl::search_text(*criteria), start,
                                                        std::min(count, kMostAtOnce),
                                                        nbl::ItemClient{callback, user_data});
    return Service::instance().start(std::move(request), token);
}

int nbl_searchcriteria_create(const char* keyword, nbl_searchcriteria_t* criteria) {
    if (keyword == nullptr || criteria == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *criteria = new nbl_searchcriteria_s{keyword};
    return NBL_ERROR_NONE;
}

int nbl_searchcriteria_add_item_type(nbl_searchcriteria_t criteria, int type) {
    const bool known =
        type == NBL_ITEM_TYPE_IMAGE || type == NBL_ITEM_TYPE_MUSIC || type == NBL_ITEM_TYPE_VIDEO;
    if (criteria == nullptr || !known) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    criteria->types |= type;
    return NBL_ERROR_NONE;
}

void nbl_searchcriteria_free(nbl_searchcriteria_t criteria) {
    delete criteria;
}

int nbl_provider_get_feature_list(nbl_provider_t provider, nbl_feature_cb callback, void* user_data,
                                  int* token) {
    if (provider == nullptr || callback == nullptr || token == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    auto request = std::make_unique<nbl::FeatureRequest>(provider, nbl::FeatureClient{callback, user_data});
    return Service::instance().start(std::move(request), token);
}

int nbl_feature_get_details(nbl_feature_t feature, const char** name, int* container_count) {
    if (feature == nullptr || name == nullptr || container_count == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *name = feature->name.c_str();
    *container_count = static_cast<int>(feature->containers.size());
    return NBL_ERROR_NONE;
}

int nbl_feature_get_container_list(nbl_feature_t feature, nbl_container_t** containers, int* count) {
    if (feature == nullptr || containers == nullptr || count == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *count = static_cast<int>(feature->container_list.size());
    *containers = *count > 0 ? feature->container_list.data() : nullptr;
    return NBL_ERROR_NONE;
}

int nbl_container_get_details(nbl_container_t container, const char** id) {
    if (container == nullptr || id == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *id = container->id.c_str();
    return NBL_ERROR_NONE;
}

int nbl_provider_cancel_async_action(int token) {
    return Service::instance().cancel(token);
}
