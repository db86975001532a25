/**
 * @file qra_types.h
 * The numbers, opaque handles and callback types that all areas of the QRA content agent share.
 */
#ifndef QRA_QRA_TYPES_H
#define QRA_QRA_TYPES_H

#include <stdbool.h>
#include <time.h>

/**
 * @name The version of these headers
 * @{
 */
#define QRA_CONTENT_AGENT_VERSION_MAJOR 1 /**< changes when a client has to be changed */
#define QRA_CONTENT_AGENT_VERSION_MINOR 0 /**< changes when something is added */
#define QRA_CONTENT_AGENT_VERSION_PATCH 0 /**< changes with each correction */
/** The version as one number, for comparisons: 0xMMmmpp. */
#define QRA_CONTENT_AGENT_VERSION                                                       \
    ((QRA_CONTENT_AGENT_VERSION_MAJOR << 16) | (QRA_CONTENT_AGENT_VERSION_MINOR << 8) | \
     QRA_CONTENT_AGENT_VERSION_PATCH)
/** @} */

/** Marks what the shared library exports. */
#define QRA_API __attribute__((visibility("default")))

/** Lets an enumeration take every int in C++ too: a client may pass a number that no enumerator has. */
#ifdef __cplusplus
#define QRA_ENUM_BASE : int
#else
#define QRA_ENUM_BASE
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What every exported function answers, but for the few that say otherwise. */
typedef enum QRA_ENUM_BASE {
    QRA_ERROR_NONE = 0,
    QRA_ERROR_INVALID_HANDLE = 1, /**< no live handle, or one of another kind */
    QRA_ERROR_INVALID_PARAM = 2,
    QRA_ERROR_INVALID_INDEX = 3,
    QRA_ERROR_READ_FAILED = 4,
    QRA_ERROR_WRITE_FAILED = 5, /**< also: a valid index whose section of the list has not arrived yet */
    QRA_ERROR_NO_FOLDER_ID = 6,
    QRA_ERROR_ENGINE = 8, /**< the content engine cannot be reached, or did not answer */
    QRA_ERROR_PLAYLIST_MAX = 13,
    QRA_ERROR_OUT_OF_MEMORY = 16,
    QRA_ERROR_NOT_EXIST = 18,
    QRA_ERROR_ALREADY_EXIST = 19,
    QRA_ERROR_NOT_SUPPORTED = 20,
    QRA_ERROR_THREAD_FAILED = 21,
    QRA_ERROR_CREATE_FAILED = 22,
    QRA_ERROR_INTERNAL = 23
} qra_error_code_e;

/** The event of a client callback. */
typedef enum QRA_ENUM_BASE {
    QRA_EVENT_LIST_SUCCESS = 0, /**< the list request finished; its content is there */
    QRA_EVENT_LIST_FAILED = 1,
    QRA_EVENT_LIST_EMPTY = 2,  /**< the engine answered with an empty list */
    QRA_EVENT_LIST_UPDATE = 3, /**< the source's content changed; the list stays open */
    QRA_EVENT_DETAIL_SUCCESS = 4,
    QRA_EVENT_DETAIL_FAILED = 5,
    QRA_EVENT_DETAIL_EMPTY = 6,
    QRA_EVENT_ACT_SUCCESS = 7,
    QRA_EVENT_ACT_FAILED = 8,
    QRA_EVENT_ACT_UPDATE = 9,
    QRA_EVENT_BATCH_FAILED = 14,
    QRA_EVENT_BATCH_FILE_DONE = 18,
    QRA_EVENT_BATCH_FINISHED = 19,
    QRA_EVENT_BATCH_PROGRESS = 20, /**< at most once each 300 ms */
    QRA_EVENT_METADATA_SUCCESS = 21,
    QRA_EVENT_METADATA_FAILED = 22,
    QRA_EVENT_METADATA_LATEST = 23,
    QRA_EVENT_DLNA_ITEM_NOT_EXIST = 28
} qra_event_e;

/** The item field "MEDIA_TYPE". */
typedef enum QRA_ENUM_BASE {
    QRA_MEDIA_TYPE_FOLDER = 1,
    QRA_MEDIA_TYPE_IMAGE = 2,
    QRA_MEDIA_TYPE_VIDEO = 3,
    QRA_MEDIA_TYPE_MUSIC = 5,
    QRA_MEDIA_TYPE_PVR = 6,
    QRA_MEDIA_TYPE_PLAYLIST = 7,
    QRA_MEDIA_TYPE_GROUP = 9,
    QRA_MEDIA_TYPE_UHD = 10,
    QRA_MEDIA_TYPE_SCSA = 11,
    QRA_MEDIA_TYPE_UPFOLDER = 13,
    QRA_MEDIA_TYPE_EMPTY = 14,
    QRA_MEDIA_TYPE_IMAGE_EXT = 15, /**< a 360-degree image */
    QRA_MEDIA_TYPE_VIDEO_EXT = 16  /**< a 360-degree video */
} qra_media_type_e;

/** What the cursor walks. */
typedef enum QRA_ENUM_BASE {
    QRA_NAVIGATION_TYPE_ALL = 0,     /**< the page */
    QRA_NAVIGATION_TYPE_SELECTED = 1 /**< the selection */
} qra_navigation_e;

/** Whether tiles fill a page row by row or column by column. */
typedef enum QRA_ENUM_BASE { QRA_PAGE_ORDER_ROW = 0, QRA_PAGE_ORDER_COLUMN = 1 } qra_page_order_e;

/** What stands at a position of the page. */
typedef enum QRA_ENUM_BASE {
    QRA_PG_ITEM_NONE = 0,
    QRA_PG_ITEM_EMPTY = 1,
    QRA_PG_ITEM_CONTENTS = 2,
    QRA_PG_ITEM_CLUSTER = 3, /**< a group header */
    QRA_PG_ITEM_PLAYLIST = 4,
    QRA_PG_ITEM_UPFOLDER = 5
} qra_page_item_type_e;

/** What a batch job does. */
typedef enum QRA_ENUM_BASE {
    QRA_PROCESSOR_TYPE_DELETE = 1,
    QRA_PROCESSOR_TYPE_COPY = 2,
    QRA_PROCESSOR_TYPE_DLNA = 4,
    QRA_PROCESSOR_TYPE_RESERVED = 16,
    QRA_PROCESSOR_TYPE_LOCK = 32,
    QRA_PROCESSOR_TYPE_PLAYLIST_DELETE = 48,
    QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_DELETE = 49,
    QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_ADD = 50
} qra_processor_type_e;

/** What becomes of a file that a stopped batch job has copied in part. */
typedef enum QRA_ENUM_BASE {
    QRA_STOP_TYPE_REMOVE = 0,
    QRA_STOP_TYPE_KEEP = 1 /**< any other value removes it */
} qra_stop_type_e;

/** The kind of a batch job's device. */
typedef enum QRA_ENUM_BASE {
    QRA_DEV_TYPE_DEFAULT = 0,
    QRA_DEV_TYPE_DLNA = 2,
    QRA_DEV_TYPE_PTP = 3,
    QRA_DEV_TYPE_DLNA_EXT = 4
} qra_dev_type_e;

/**
 * @name Handles
 * Opaque addresses, checked at each use.
 * @{
 */
#ifdef __cplusplus
class CQRAAgentHandle;
class CQRAM3UHandle;
class CQRASendHandle;
class CQRADeviceCheckHandle;
class CQRAFolderThumbHandle;
#else
typedef struct CQRAAgentHandle CQRAAgentHandle;             /**< a list request */
typedef struct CQRAM3UHandle CQRAM3UHandle;                 /**< an open playlist */
typedef struct CQRASendHandle CQRASendHandle;               /**< a batch job */
typedef struct CQRADeviceCheckHandle CQRADeviceCheckHandle; /**< a device check */
typedef struct CQRAFolderThumbHandle CQRAFolderThumbHandle; /**< a request for a folder's thumbnail */
#endif
typedef CQRAAgentHandle* qra_agent_handler_h;              /**< a list request's handle */
typedef CQRAM3UHandle* qra_playlist_handler_h;             /**< an open playlist's handle */
typedef CQRADeviceCheckHandle* qra_device_check_handler_h; /**< a device check's handle */
/** @} */

/**
 * @name Parameter records
 * See qra_param.h.
 * @{
 */
typedef struct qra_general_s qra_general_s;                 /**< a list request */
typedef struct qra_page_style_s qra_page_style_s;           /**< the style of a page */
typedef struct qra_share_s qra_share_s;                     /**< a batch job */
typedef struct qra_share_user_data_s qra_share_user_data_s; /**< a batch job's callback */
typedef struct qra_playlist_file_s qra_playlist_file_s;     /**< a playlist file */
typedef struct qra_playlist_item_s qra_playlist_item_s;     /**< an item of a playlist */
typedef struct qra_comment_s qra_comment_s;                 /**< a comment */
typedef struct qra_like_s qra_like_s;                       /**< a like */
typedef struct qra_detail_s qra_detail_s;                   /**< a detail request */
typedef qra_general_s* qra_general_param_h;                 /**< a qra_general_s */
typedef qra_page_style_s* qra_page_param_h;                 /**< a qra_page_style_s */
typedef qra_share_s* qra_share_param_h;                     /**< a qra_share_s */
typedef qra_share_user_data_s* qra_share_user_data_param_h; /**< a qra_share_user_data_s */
typedef qra_playlist_file_s* qra_playlist_file_param_h;     /**< a qra_playlist_file_s */
typedef qra_playlist_item_s* qra_playlist_item_param_h;     /**< a qra_playlist_item_s */
typedef qra_comment_s* qra_comment_param_h;                 /**< a qra_comment_s */
typedef qra_like_s* qra_like_param_h;                       /**< a qra_like_s */
typedef qra_detail_s* qra_detail_param_h;                   /**< a qra_detail_s */
/** @} */

/** State of a batch job, handed to qra_share_cb; see qra_batch.h. */
typedef struct qra_share_status_info_s qra_share_status_info_s;

/**
 * Answers a list request.
 * @param pUserData what the client gave with the request
 * @param pHandle   the request's handle
 * @param eEvent    what happened
 * @param nValue    1 for a source of this process; the handle's id for one that the engine serves
 * @param pData     "" for a source of this process and for a section that arrived; why a list of the engine
 *                  failed, if the engine tells it; valid during the call only
 * @return not looked at
 */
typedef bool (*on_list_complete_cb)(void* pUserData, CQRAAgentHandle* pHandle, qra_event_e eEvent, int nValue,
                                    const char* pData);
/** Answers a detail, comment or like request. */
typedef bool (*on_detail_complete_cb)(void* pUserData, CQRAAgentHandle* pHandle, int nValue,
                                      qra_event_e eEvent, const char* pData);
/** Answers a bookmark request. */
typedef bool (*on_get_dlna_bookmark_cb)(void* pUserData, int nBookMark);
/**
 * Tells how a batch job goes; runs on the job's thread. See qra_batch.h.
 * @param pUserData what the client gave with the job
 * @param pHandle   the job
 * @param eEvent    one of the QRA_EVENT_BATCH events
 * @param pStatus   how far the job is; valid during the call only
 * @return not looked at
 */
typedef bool (*qra_share_cb)(void* pUserData, CQRASendHandle* pHandle, qra_event_e eEvent,
                             qra_share_status_info_s* pStatus);

#ifdef __cplusplus
}
#endif

#endif
