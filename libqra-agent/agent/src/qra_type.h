#ifndef QRA_AGENT_AGENT_SRC_QRA_TYPE_H
#define QRA_AGENT_AGENT_SRC_QRA_TYPE_H

#include <qra/qra_types.h>

#include <ctime>

// The parameter records that clients fill through the functions of qra_param.h. A record is made with new and
// owns its texts, which are malloc'ed; the defaults here are what a fresh record holds.

struct qra_general_s {
    char* pPluginName = nullptr;
    char* pSource = nullptr;
    char* szPath = nullptr;
    char* szFolderId = nullptr;
    char* szContentType = nullptr;
    char* szSortCategory = nullptr;
    char* szFilter = nullptr;
    char* szFilterDataType = nullptr;
    char* szUserData = nullptr;
    char* pPrepareData = nullptr;
    char* szModeName = nullptr;
    char* szKeyWord = nullptr;
    char* szPlayListName = nullptr;
    char* szLangId = nullptr;
    char* szAccessToken = nullptr;
    char* szDuid = nullptr;
    char* szCountry = nullptr;
    char* szExtension = nullptr;
    int nPrefectchNum = 0;
    int nWindowSize = 0;
    int nBusValue = 0;
    int nDeviceValue = 0;
    bool bIsUHDMeta = false;
    bool bUpdateUHDMeta = false;
    int nDataStyle = 1;
    void* pServiceProvider = nullptr;
};

struct qra_page_style_s {
    int mask = 0;
    qra_page_order_e order = QRA_PAGE_ORDER_ROW;
    int group_index = 0;
    int row = 2;
    int column = 9;
    bool padding = false;
};

struct qra_share_s {
    qra_dev_type_e source_dev_type = QRA_DEV_TYPE_DEFAULT;
    qra_dev_type_e dest_dev_type = QRA_DEV_TYPE_DEFAULT;
    char* dest_dev_path = nullptr;
    char* user_id = nullptr;
    char* request_url = nullptr;
    char* passwd = nullptr;
    char* access_token = nullptr;
    char* access_id = nullptr;
    char* reserved_text_1 = nullptr;
    char* reserved_text_2 = nullptr;
    char* ra_instance_id = nullptr;
    char* ra_group_id = nullptr;
    char* ra_peer_id = nullptr;
    char* dlna_device_id = nullptr;
    void* dlna_service_provider = nullptr;
    char* mount_path = nullptr;
    char* playlist_name = nullptr;
    bool lock = false;
};

struct qra_share_user_data_s {
    void* udata = nullptr;
    qra_share_cb cb = nullptr;
};

struct qra_playlist_file_s {
    char* path = nullptr;
    char* name = nullptr;
    int max_item_count = 0;
};

struct qra_playlist_item_s {
    char* media_id = nullptr;
    char* title = nullptr;
    char* path = nullptr;
    char* mime_type = nullptr;
    char* artist = nullptr;
    char* album = nullptr;
    char* genre = nullptr;
    char* year = nullptr;
    char* thumbnail_path = nullptr;
    char* location_tag = nullptr;
    char* format = nullptr;
    char* name = nullptr;
    unsigned long long duration = 0;
    unsigned long long size = 0;
    time_t addtime = 0;
    time_t modtime = 0;
    int playcount = 0;
    int samplerate = 0;
    int bit_resolution = 0;
    int bit_rate = 0;
    int media_type = 0;
    bool drm = false;
};

struct qra_comment_s {
    char* source = nullptr;
    char* comment = nullptr;
    char* user_data = nullptr;
};

struct qra_like_s {
    char* source = nullptr;
    char* user_data = nullptr;
    bool is_like = false;
};

struct qra_detail_s {
    char* source = nullptr;
    char* user_data = nullptr;
    int page_index = 0;
};

#endif
