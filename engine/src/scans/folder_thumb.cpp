#include "engine/src/scans/folder_thumb.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <vector>

#include "common/util/json_value.h"
#include "common/util/qra_extensionlist.h"
#include "common/util/qra_util.h"
#include "engine/src/engine_log.h"
#include "engine/src/glib_ptr.h"
#include "libqra-agent/source/local-source/qra_filter_factory.h"
#include "libqra-agent/source/local-source/qra_filter_product.h"
#include "libqra-agent/source/local-source/qra_mcf_convert.h"
#include "media_content.h"
#include "media_content_admin.h"
#include "qra/qra_types.h"

namespace engine {

namespace {

enum class Shows { kMedia = 0, kFolders = 1, kNothing = 2 };

using FilterPtr = std::unique_ptr<filter_s, Release<media_filter_destroy>>;

struct Items {
    std::vector<std::string> paths;
    std::vector<std::string> types;
};

bool succeeded(int error, const char* what) {
    if (error != MEDIA_CONTENT_ERROR_NONE) {
        ENGINE_WARNING("%s failed: error %d", what, error);
    }
    return error == MEDIA_CONTENT_ERROR_NONE;
}

/// The media type that clients know, for a row's type in the database.
int client_type(int row_type) {
    switch (row_type) {
        case MEDIA_CONTENT_TYPE_IMAGE:
            return QRA_MEDIA_TYPE_IMAGE;
        case MEDIA_CONTENT_TYPE_VIDEO:
            return QRA_MEDIA_TYPE_VIDEO;
        case MEDIA_CONTENT_TYPE_SOUND:
        case MEDIA_CONTENT_TYPE_MUSIC:
            return QRA_MEDIA_TYPE_MUSIC;
        case MEDIA_CONTENT_TYPE_PVR:
            return QRA_MEDIA_TYPE_PVR;
        case MEDIA_CONTENT_TYPE_UHD:
            return QRA_MEDIA_TYPE_UHD;
        case MEDIA_CONTENT_TYPE_SCSA:
            return QRA_MEDIA_TYPE_SCSA;
        default:
            return row_type;
    }
}

/// One folder's questions to the media database.
class FolderQuestions {
public:
    FolderQuestions(const std::string& path, const std::string& content_type) {
        extensions_.SetDefaultExtension();
        param_.strContentType = content_type;
        param_.strPath = CQRAUtil::AddQuoteInPath(CQRAUtil::RemoveForwardSlashInPath(path));
        param_.pExtensionList = &extensions_;
        media_content_admin_foreach_drive(&FolderQuestions::on_drive, this);
    }

    /// False if the folder is not in the database.
    bool find_folder() {
        const FilterPtr filter = make_filter(Filter_FolderID);
        return !param_.strStorageId.empty() && filter &&
               succeeded(media_folder_foreach_folder_from_db(filter.get(), &FolderQuestions::on_folder, this),
                         "finding a folder") &&
               !param_.strFolderId.empty();
    }

    int media_count() {
        int count = 0;
        const FilterPtr filter = make_filter(Filter_FolderThumbMediaCount);
        if (filter) {
            succeeded(media_folder_get_media_count_from_db(param_.strFolderId.c_str(), filter.get(), &count),
                      "counting a folder's media");
        }
        return count;
    }

    int folder_count() {
        int count = 0;
        const FilterPtr filter = make_filter(Filter_FolderThumbFolderCount);
        if (filter) {
            succeeded(media_folder_get_folder_count_from_db(filter.get(), &count), "counting folders");
        }
        return count;
    }

    bool first_media(unsigned count, Items& items) {
        const FilterPtr filter = make_filter(Filter_FolderThumbMediaList);
        return filter &&
               succeeded(media_filter_set_offset(filter.get(), 0,
                                                 static_cast<int>(std::min<unsigned>(count, INT_MAX))),
                         "limiting a list") &&
               succeeded(media_folder_foreach_media_from_db(param_.strFolderId.c_str(), filter.get(),
                                                            &FolderQuestions::on_media, &items),
                         "listing a folder's media");
    }

private:
    FilterPtr make_filter(int kind) {
        const std::unique_ptr<CQRAFilterProductBase> product(CQRAFilterFactory().CreateProduct(kind));
        filter_h filter = nullptr;
        const bool made = product && product->InitParam(&param_) && product->CreateAndSetFilter(filter);
        return FilterPtr(made ? filter : nullptr);
    }

    static bool on_drive(const media_content_drive_s* drive, void* self) {
        auto& param = static_cast<FolderQuestions*>(self)->param_;
        const std::string link = CQRAUtil::AddQuoteInPath(drive->link_path);
        const bool holds = param.strPath.compare(0, link.size(), link) == 0 &&
                           (param.strPath.size() == link.size() || param.strPath[link.size()] == '/');
        if (holds) {
            param.strStorageId = drive->id;
        }
        return !holds;
    }

    static bool on_folder(media_folder_h folder, void* self) {
        char* id = nullptr;
        if (succeeded(media_folder_get_folder_id(folder, &id), "reading a folder's id")) {
            static_cast<FolderQuestions*>(self)->param_.strFolderId = CMallocText(id).get();
        }
        return false;
    }

    static bool on_media(media_info_h media, void* items) {
        char* path = nullptr;
        int type = MEDIA_CONTENT_TYPE_OTHERS;
        if (succeeded(media_info_get_file_path(media, &path), "reading a path")) {
            const CMallocText owned(path);
            if (succeeded(media_info_get_media_type(media, &type), "reading a media type")) {
                static_cast<Items*>(items)->paths.emplace_back(path);
                static_cast<Items*>(items)->types.push_back(std::to_string(client_type(type)));
            }
        }
        return true;
    }

    CQRAExtensionList extensions_;
    _SFilterParam param_;
};

std::string thumb_text(Shows shows, const Items* items) {
    CJsonValue json;
    json.Set("qra_folder_thumbnail_error_code", 0);
    json.Set("qra_folder_thumbnail_type", static_cast<int>(shows));
    if (items != nullptr) {
        json.Set("qra_folder_thumbnail_items", items->paths);
        json.Set("qra_folder_thumbnail_itemstype", items->types);
    }
    return json.ToString();
}

}  // namespace

std::string failed_folder_thumb_text() {
    CJsonValue json;
    json.Set("qra_folder_thumbnail_error_code", 1);
    return json.ToString();
}

std::string folder_thumb_text(const std::string& path, const std::string& content_type, unsigned count) {
    FolderQuestions folder(path, content_type);
    if (!folder.find_folder()) {
        return failed_folder_thumb_text();
    }
    if (folder.media_count() == 0) {
        return thumb_text(folder.folder_count() > 0 ? Shows::kFolders : Shows::kNothing, nullptr);
    }
    Items items;
    return folder.first_media(count, items) ? thumb_text(Shows::kMedia, &items) : failed_folder_thumb_text();
}

}  // namespace engine
