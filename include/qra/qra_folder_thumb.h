/**
 * @file qra_folder_thumb.h
 * Folder thumbnails: which media the tile of a folder shows.
 *
 * The answer comes from the media database where the folder has been scanned; else the content engine scans
 * it first. Requests for the same path, content type and count share one question and one scan, and the
 * extension text of the first of them.
 *
 * @section qra_folder_thumb_answer The answer
 *
 * The callback gets a JSON object. "qra_folder_thumbnail_error_code" is 0, or 1 where the folder could not be
 * read or scanned. "qra_folder_thumbnail_type" is 0 for a folder with media, 1 for one with no media but
 * folders, 2 for an empty one. With type 0, "qra_folder_thumbnail_items" is an array of file paths, as many
 * as asked for at most, and "qra_folder_thumbnail_itemstype" an array of their media types (qra_media_type_e)
 * as decimal texts.
 *
 * @section qra_folder_thumb_threads Threads and the main loop
 *
 * All functions may be called from any thread, but not from inside a callback of this header. The callback
 * comes on the library's thread "qra-folder-thumb-source", or, where the engine had to scan, on the thread
 * that runs the default GLib main context: without that loop running such an answer never comes.
 *
 * The callback runs with the locks of the list of requests held, so that all other requests wait for it. A
 * client must not call a function of this header from inside it, and must not wait there for a thread that
 * does: that is a deadlock. When a cancel function has returned, no callback of the requests that it ended
 * runs or comes any more.
 *
 * Requests wait in turn; a scan that the engine starts and never reports is waited for without end, and a
 * later request for the same folder waits with it. A client that has waited long enough cancels.
 *
 * @section qra_folder_thumb_handles Handles
 *
 * A request ends with its one answer or with its cancel. The client keeps no right to the handle from then
 * on, that is from the callback's return, and the library frees it as soon as nothing in it refers to the
 * handle any more. The answer may come before the request function has returned; the handle is stored by
 * then.
 */
#ifndef QRA_QRA_FOLDER_THUMB_H
#define QRA_QRA_FOLDER_THUMB_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Answers a request for a folder's thumbnail, once.
 *
 * @param pUserData what the client gave with the request
 * @param pHandle   the request's handle
 * @param pPath     the answer, a JSON text; valid during the call only
 * @return not looked at
 */
typedef bool (*qra_folder_thumb_cb)(void* pUserData, CQRAFolderThumbHandle* pHandle, const char* pPath);

/**
 * Asks what the tile of a folder shows, with the built-in file extensions. Does not wait.
 *
 * @param pPath         the folder, below the media root; stays the client's
 * @param pContentType  a content type such as "CONTENT-IMAGE"; stays the client's
 * @param nRequestCount how many media the tile shows at most; above 0
 * @param cb            receives the answer
 * @param pUserData     handed to `cb` as it is; not null
 * @param ppHandle      receives the request's handle, before the answer can come; left as it was on failure
 * @retval QRA_ERROR_NONE          the request waits for its answer
 * @retval QRA_ERROR_INVALID_PARAM an argument is null, or the count is not above 0
 * @retval QRA_ERROR_INTERNAL      the library's thread could not be started
 */
QRA_API qra_error_code_e qra_request_folder_thumbnail_path(char* pPath, char* pContentType, int nRequestCount,
                                                           qra_folder_thumb_cb cb, void* pUserData,
                                                           CQRAFolderThumbHandle** ppHandle);

/**
 * As qra_request_folder_thumbnail_path(), with file extensions of the client's.
 *
 * @param pPath         the folder
 * @param pContentType  a content type
 * @param pExtension    the extensions of each content type as JSON, as in a list request; null: the built-in
 *                      ones. Stays the client's
 * @param nRequestCount how many media at most
 * @param cb            receives the answer
 * @param pUserData     handed to `cb` as it is
 * @param ppHandle      receives the request's handle
 * @return as with qra_request_folder_thumbnail_path()
 */
QRA_API qra_error_code_e qra_request_folder_thumbnail_path_v2(char* pPath, char* pContentType,
                                                              char* pExtension, int nRequestCount,
                                                              qra_folder_thumb_cb cb, void* pUserData,
                                                              CQRAFolderThumbHandle** ppHandle);

/**
 * Takes a request back that was made without extensions. Path, content type and count are those of the
 * request. The last request for a folder that is taken back stops the folder's scan, for which the library
 * may wait for the engine. Waits for an answer that is being delivered.
 *
 * @param pPath         the request's folder
 * @param pContentType  its content type
 * @param nRequestCount its count
 * @param pHandle       its handle
 * @retval QRA_ERROR_NONE           taken back
 * @retval QRA_ERROR_INVALID_HANDLE no request that waits: it was answered or taken back before
 * @retval QRA_ERROR_INVALID_PARAM  an argument is null, or the count is not above 0: the request stays
 * @retval QRA_ERROR_INTERNAL       the request has other values, or was answered meanwhile; no callback comes
 *                                  any more all the same
 */
QRA_API qra_error_code_e qra_cancel_request_folder_thumbnail_path(char* pPath, char* pContentType,
                                                                  int nRequestCount,
                                                                  CQRAFolderThumbHandle* pHandle);

/**
 * As qra_cancel_request_folder_thumbnail_path(), for a request with extensions.
 *
 * @param pPath         the request's folder
 * @param pContentType  its content type
 * @param pExtension    its extensions
 * @param nRequestCount its count
 * @param pHandle       its handle
 * @return as with qra_cancel_request_folder_thumbnail_path()
 */
QRA_API qra_error_code_e qra_cancel_request_folder_thumbnail_path_v2(char* pPath, char* pContentType,
                                                                     char* pExtension, int nRequestCount,
                                                                     CQRAFolderThumbHandle* pHandle);

/**
 * Takes all requests of the process back and stops their scans.
 *
 * @retval QRA_ERROR_NONE     done
 * @retval QRA_ERROR_INTERNAL done, but the engine could not be told to stop a scan
 */
QRA_API qra_error_code_e qra_cancel_all_request_folder_thumbnail_path(void);

#ifdef __cplusplus
}
#endif

#endif
