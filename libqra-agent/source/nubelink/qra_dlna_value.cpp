#include "libqra-agent/source/nubelink/qra_dlna_value.h"

#include <qra/qra_types.h>

#include <charconv>
#include <cstring>
#include <string_view>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"

namespace {

constexpr struct {
    std::string_view field;
    int (*get)(nbl_item_t, char**);
} TEXT_FIELDS[] = {
    {"ID_QRA", nbl_item_get_content_id},     {"URL", nbl_item_get_uri},
    {"MTA_URL", nbl_item_get_mta_uri},       {"MIME_TYPE", nbl_item_get_mimetype},
    {"ALBUM", nbl_item_get_album_title},     {"ARTIST", nbl_item_get_artist},
    {"DATE_TAKEN", nbl_item_get_date},       {"EXTENSION", nbl_item_get_extension},
    {"GENRE", nbl_item_get_genre},           {"LOCATION_TAG", nbl_item_get_location},
    {"RESOLUTION", nbl_item_get_resolution}, {"RESOLUTION_DLNA", nbl_item_get_resolution},
    {"SUBTITLE", nbl_item_get_subtitle},     {"THUMBNAIL_PATH", nbl_item_get_thumbnail},
    {"TITLE", nbl_item_get_title},
};

constexpr struct {
    std::string_view field;
    int (*get)(nbl_item_t, int*);
} INT_FIELDS[] = {
    {"WIDTH", nbl_item_get_width},
    {"HEIGHT", nbl_item_get_height},
    {"SEEK_MODE", nbl_item_get_seek_mode},
};

constexpr struct {
    std::string_view field;
    int (*get)(nbl_item_t, unsigned long long*);
    const char* szFailure;
} NUMBER_FIELDS[] = {
    {"SIZE", nbl_item_get_file_size, "DLNA-SOURCE: fail get dlna file size"},
    {"DURATION", nbl_item_get_duration, "DLNA-SOURCE: fail get dlna duration"},
};

constexpr std::string_view CREATION_DATE = "CREATIONDATE=";

bool is_null(const _stDLNAMediaItem& item) {
    if (!item.pItem) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Null nbl_item_t");
        return true;
    }
    return false;
}

bool not_supported(const std::string& strField) {
    QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: do not support get field: %s", strField.c_str());
    return false;
}

/// What people see of an item: its title, with the extension if it is a file that has one.
bool read_display_name(const _stDLNAMediaItem& item, bool bFolderView, std::string& strName) {
    if (!qra_dlna_read_text(nbl_item_get_title, item.pItem, strName)) {
        return false;
    }
    const bool bFolder = item.eType == NBL_ITEM_TYPE_FOLDER && bFolderView;
    if (!bFolder && !item.strExtension.empty()) {
        strName += "." + item.strExtension;
    }
    return true;
}

bool read_format(const _stDLNAMediaItem& item, std::string& strFormat) {
    if (!qra_dlna_read_text(nbl_item_get_mimetype, item.pItem, strFormat)) {
        return false;
    }
    strFormat.erase(0, strFormat.find_last_of("/\\") + 1);
    return true;
}

bool read_text(const _stDLNAMediaItem& item, const std::string& strField, bool bFolderView,
               std::string& strText) {
    if (strField == "DISPLAY_NAME") {
        return read_display_name(item, bFolderView, strText);
    }
    if (strField == "FORMAT") {
        return read_format(item, strText);
    }
    for (const auto& text : TEXT_FIELDS) {
        if (text.field == strField) {
            return qra_dlna_read_text(text.get, item.pItem, strText);
        }
    }
    return not_supported(strField);
}

bool get_media_type(int nItemType, bool bFolderView, int* pValue) {
    switch (nItemType) {
        case NBL_ITEM_TYPE_IMAGE:
            *pValue = QRA_MEDIA_TYPE_IMAGE;
            break;
        case NBL_ITEM_TYPE_VIDEO:
            *pValue = QRA_MEDIA_TYPE_VIDEO;
            break;
        case NBL_ITEM_TYPE_MUSIC:
            *pValue = QRA_MEDIA_TYPE_MUSIC;
            break;
        default:
            if (!bFolderView) {
                *pValue = 0;
            } else if (nItemType == NBL_ITEM_TYPE_FOLDER) {
                *pValue = QRA_MEDIA_TYPE_FOLDER;
            }
            break;
    }
    return true;
}

bool get_played_count(const CQRADlnaItem& item, int* pValue) {
    std::string strCount;
    if (!qra_dlna_read_property(item, "upnp:playbackCount", strCount)) {
        return false;
    }
    *pValue = CQRAUtil::str2int(strCount);
    return true;
}

bool get_added_time(const CQRADlnaItem& item, unsigned long long* pValue) {
    std::string strInfo;
    if (!qra_dlna_read_property(item, "kvr:dcmInfo", strInfo)) {
        return false;
    }
    const size_t nAt = strInfo.find(CREATION_DATE);
    if (nAt == std::string::npos) {
        return false;
    }
    const size_t nStart = nAt + CREATION_DATE.size();
    const std::string strDate = strInfo.substr(nStart, strInfo.find(',', nStart) - nStart);
    unsigned long long nDate = 0;
    if (std::from_chars(strDate.data(), strDate.data() + strDate.size(), nDate).ec != std::errc()) {
        return false;
    }
    *pValue = nDate;
    return true;
}

}  // namespace

bool qra_dlna_get_text(const _stDLNAMediaItem& item, const std::string& strField, bool bFolderView,
                       char** ppValue) {
    std::string strText;
    if (is_null(item) || ppValue == nullptr || !read_text(item, strField, bFolderView, strText)) {
        return false;
    }
    char* const szText = strdup(strText.c_str());
    if (szText == nullptr) {
        return false;
    }
    *ppValue = szText;
    return true;
}

bool qra_dlna_get_int(const _stDLNAMediaItem& item, const std::string& strField, bool bFolderView,
                      int* pValue) {
    if (is_null(item) || pValue == nullptr) {
        return false;
    }
    if (strField == "MEDIA_TYPE") {
        return get_media_type(item.eType, bFolderView, pValue);
    }
    if (strField == "PLAYED_COUNT") {
        return get_played_count(item.pItem, pValue);
    }
    for (const auto& number : INT_FIELDS) {
        if (number.field == strField) {
            return number.get(item.pItem.Get(), pValue) == NBL_ERROR_NONE;
        }
    }
    return not_supported(strField);
}

bool qra_dlna_get_number(const _stDLNAMediaItem& item, const std::string& strField,
                         unsigned long long* pValue) {
    if (is_null(item) || pValue == nullptr) {
        return false;
    }
    if (strField == "ADDED_TIME") {
        return get_added_time(item.pItem, pValue);
    }
    for (const auto& number : NUMBER_FIELDS) {
        if (number.field != strField) {
            continue;
        }
        if (number.get(item.pItem.Get(), pValue) != NBL_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_DLNA, "%s", number.szFailure);
            return false;
        }
        return true;
    }
    return not_supported(strField);
}
