/**
 * @file qra_agent.h
 * List requests: open one, lay its content out as a page of tiles, walk it, read values, keep a selection.
 *
 * @section qra_agent_life The life of a request
 *
 * A client fills a parameter record (qra_param.h) with a source, a path, a content type and a sort category
 * and calls qra_request_list_v2(), which gives it a handle. The call returns as soon as the source has
 * accepted the request; the answer comes later, through the list callback. On QRA_EVENT_LIST_SUCCESS the
 * client calls qra_set_page_style_v2(), which lays out the tiles; before that, item counts and cursor moves
 * answer QRA_ERROR_INVALID_HANDLE. Then it reads tiles as JSON text with qra_get_item_v2(), or moves a cursor
 * and reads single typed values. qra_disconnect_v2() ends the request and destroys everything that belongs to
 * it. There is no initialise function and no global shutdown, and the library reads no configuration file.
 *
 * A handle of the source "SOURCE_MSC" or "SOURCE_DLNA" can be used for another request: qra_request_list_v2()
 * with the variable that holds it keeps the open source and replaces page, page style and selection. A repeat
 * needs no path: where it has none, the last path of this handle is listed again. It has to wait for the
 * answer to the request before it, and between a repeat and its answer nothing may be read through the
 * handle: the source is filling its list anew, without a lock.
 *
 * @section qra_agent_sources Sources
 *
 * "SOURCE_MSC" is USB storage, "SOURCE_PTP" cameras and phones, "SOURCE_DLNA" media servers,
 * "SOURCE_PLAYLIST" playlists on USB storage. Every other name is served by the content engine: the request
 * then names one of the engine's accounts as its plugin. A source that this build does not serve is refused
 * with QRA_ERROR_NOT_SUPPORTED.
 *
 * A list of the engine arrives in sections of the request's prefetch number, each with a list callback of its
 * own; reading an item whose section has not arrived gives QRA_ERROR_WRITE_FAILED. Moves before the first
 * page style go to the second item of such a list instead of being refused. What the engine's lists do not
 * have (rating, bookmarks, expanding, selecting and setting values of groups and items, real numbers and
 * times) answers QRA_ERROR_INTERNAL.
 *
 * A "SOURCE_PLAYLIST" request shows the items of one playlist (qra_playlist.h). It needs a path, a content
 * type, a sort category and a playlist name, reads the drive's playlists first where that was not done, and
 * answers with QRA_EVENT_LIST_FAILED for a playlist without items. Its callback comes after a cancel, too.
 *
 * @section qra_agent_threads Threads and the main loop
 *
 * The functions do their work on the thread that calls them. They take no lock that makes two calls on one
 * handle safe beside each other: a client uses a handle from one thread at a time, and calls nothing on a
 * handle that another of its threads is disconnecting. Different handles may be used on different threads.
 *
 * The list callback comes on a thread of the library, for a source of this process on the worker thread of
 * the source; it never comes from within the call that started the request. It may come more than once: a
 * success, later QRA_EVENT_LIST_UPDATE events. An update is only a notice; the client decides when to lay out
 * the page again. Answers of the content engine come on the thread that runs the client's main loop (the GLib
 * main context in which the library first met the bus): the library has no loop of its own, and without a
 * running one they never come, though every call still answers. The library sets no end to that wait.
 *
 * While the list callback runs, the library holds the lock that orders requests, answers and disconnects. A
 * client must not call qra_request_list_v2(), qra_disconnect_v2() or qra_cancel_request_list_v2() from inside
 * its list callback, on any handle, and must not wait there for a thread that calls one of them: that is a
 * deadlock. All other functions of this header may be called there. After qra_disconnect_v2() has returned,
 * no callback of that handle runs or comes any more.
 *
 * @section qra_agent_memory Who frees what
 *
 * Text that a function hands out (a char** argument) is allocated with malloc and freed by the client with
 * free(). A function that fails leaves the client's variable as it was; so may one that succeeds with an
 * empty text, such as "FORMAT" of a name without an extension: set the variable to null first. Texts handed
 * in are copied or used during the call only; they stay the client's. So do parameter records: they may be
 * destroyed as soon as the call has returned. The one shared memory object that can outlive its request is
 * made by qra_prepare_play_data_v2(), see there.
 *
 * @section qra_agent_handles Handles
 *
 * A handle is an opaque address that is looked up in a registry at each call. A value that is null, was never
 * given out, was disconnected, or belongs to a handle of another kind gives QRA_ERROR_INVALID_HANDLE and is
 * never dereferenced. A failed repeat destroys the handle; the client forgets its value.
 *
 * @section qra_agent_text Text
 *
 * All texts are NUL-terminated UTF-8, with one exception: a path is a sequence of bytes as the file system
 * gives it. A file name that is not valid UTF-8 comes out unchanged as a value; in the JSON text of a tile,
 * which is always valid JSON and valid UTF-8, the bytes that are not UTF-8 are replaced.
 *
 * @section qra_agent_indices The two worlds of indices
 *
 * A list index (also called page index) counts every tile of the page grid from 0, group headers, the
 * up-folder tile and fillers too. A DB index is a position in the source's own result. All functions of this
 * header take and give list indices; group functions take the ordinal of a group. The translation depends on
 * the page style, so a list index means something only until the next qra_set_page_style_v2() or
 * qra_set_expand_mode_v2(). What lasts is the text of the field "ID_QRA", and qra_get_page_index_v2() turns
 * it back into a list index.
 *
 * @section qra_agent_asserts Preconditions that end the process
 *
 * Wrong arguments give a code, with one exception: the group index of qra_set_expand_mode_v2(),
 * qra_select_group_v2() and qra_deselect_group_v2(), and a group index of a page style that is not negative
 * and not below the number of groups where the view is laid out by groups, are not checked against the list,
 * and an index outside it ends the process with an assertion. The number of groups is what a page with group
 * headers (mask bit 0x08) shows; see qra_get_item_count_by_type_v2().
 *
 * @section qra_agent_engine What a missing engine costs
 *
 * After listing a folder of USB storage the library tells the content engine the folder's id, and from the
 * second folder of a handle on it asks the engine for the id first. The engine is started by the system
 * message bus on demand. Without a system bus both fail at once and the folder is listed all the same. With a
 * system bus on which no engine answers, the library waits for it each time, for up to 40 seconds: the answer
 * to a handle's first folder comes that much later, that to each further one twice as much. Install the
 * engine where there is a system bus.
 *
 * @section qra_agent_versions Versions
 *
 * QRA_CONTENT_AGENT_VERSION (qra_types.h) is the version of these headers. Within one major version functions
 * and enumerators are added, never changed or removed; records grow behind their setters without breaking a
 * client. The suffix "_v2" is part of a function's name.
 */
#ifndef QRA_QRA_AGENT_H
#define QRA_QRA_AGENT_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name Requests
 * @{
 */

/**
 * Starts a list request, on a new handle or as a repeat on an existing one.
 *
 * The answer comes through `cb` on a thread of the library, possibly before this call has delivered its
 * result to the caller's next statement. Must not be called from inside a list callback.
 *
 * @param pParam    the request; stays the client's and may be destroyed after the call. Its source must be
 * set; a first request on "SOURCE_MSC" needs a path. A text from qra_prepare_play_data_v2() as its prepare
 * data brings an earlier selection back
 * @param cb        receives the answer and later updates; null: nobody is told
 * @param pUserData handed to `cb` as it is
 * @param pHandle   in: null (or any value that is no live handle) for a new request, a live list handle for a
 *                  repeat. out, on success only: the handle
 * @retval QRA_ERROR_NONE          the source accepted the request
 * @retval QRA_ERROR_INVALID_PARAM `pParam`, its source or `pHandle` is null; no path in a first "SOURCE_MSC"
 * request; no plugin, or a negative window size or prefetch number, in a request of the engine; the live
 * handle is of another kind, or served by the engine; the source refused the parameters
 * @retval QRA_ERROR_NOT_SUPPORTED this build does not serve the source; or a repeat on a "SOURCE_PTP" or
 *                                 "SOURCE_PLAYLIST" handle, or with another source than the handle's
 * @retval QRA_ERROR_INTERNAL      the source could not be opened, or the earlier selection could not be
 * loaded
 * @retval QRA_ERROR_ENGINE        the content engine cannot be reached (told after up to 40 seconds), or does
 * not know the account
 * @retval QRA_ERROR_PLAYLIST_MAX  no memory for a request of the engine
 *
 * A repeat that fails after it was accepted for this handle (wrong source, refused parameters, selection not
 * loaded) destroys the handle: every later call on it gives QRA_ERROR_INVALID_HANDLE.
 */
QRA_API qra_error_code_e qra_request_list_v2(qra_general_s* pParam, on_list_complete_cb cb, void* pUserData,
                                             qra_agent_handler_h* pHandle);

/**
 * Drops the list callback and asks the source to give a running request up. No callback comes after it has
 * returned. Waits for a list callback that is running: must not be called from inside it.
 *
 * @param hAgent a list handle
 * @retval QRA_ERROR_NONE           the source cancelled the request
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INTERNAL       the source cannot cancel; the callback is dropped all the same, and as
 * nothing tells when the source is done, the handle takes no repeat: disconnect it. Or the list is the
 * engine's, which is never cancelled: disconnect it instead
 */
QRA_API qra_error_code_e qra_cancel_request_list_v2(qra_agent_handler_h hAgent);

/**
 * Ends a request: closes its source, waiting for its thread, and destroys the handle with all it owns. The
 * value is invalid from then on. Must not be called from inside a list callback.
 *
 * @param hAgent a list handle
 * @retval QRA_ERROR_NONE           done; the handle is gone
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INTERNAL       the source does not close; the handle stays alive
 */
QRA_API qra_error_code_e qra_disconnect_v2(qra_agent_handler_h hAgent);

/**
 * Asks the content engine for the details of an item; the answer comes through `cb`. A source of this process
 * answers QRA_ERROR_NONE, does nothing and never calls `cb`.
 *
 * @param hAgent    a list handle
 * @param pParam    what to ask for; stays the client's
 * @param pUserData handed to `cb` as it is
 * @param cb        receives the answer on the main loop's thread
 * @retval QRA_ERROR_NONE           sent, or nothing to do
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `pParam` is null, in a list of the engine
 */
QRA_API qra_error_code_e qra_request_detail_v2(qra_agent_handler_h hAgent, qra_detail_param_h pParam,
                                               void* pUserData, on_detail_complete_cb cb);

/**
 * Gives detail requests up. A source of this process answers QRA_ERROR_NONE and does nothing.
 *
 * @param hAgent a list handle
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 */
QRA_API qra_error_code_e qra_cancel_detail_request_v2(qra_agent_handler_h hAgent);

/** @} */
/**
 * @name The page
 * @{
 */

/**
 * Lays the list out as a page of tiles. The earlier page is gone, list indices start anew, and the cursor
 * goes to 0 where there was a page before.
 *
 * The mask says what the page shows: 0x02 folders, 0x04 media, 0x08 group headers, 0x10 playlists, 0x20 the
 * up-folder tile, 0x40 the selected items alone, 0x80 fillers that pad a group to full columns. The views of
 * one folder ("CATEGORY-FOLDER-TITLE", "-DATE", "-CHANNEL_NAME", "-CHANNEL_NUM",
 * "CATEGORY-UHD-FOLDER-WITHUPFOLDER") refuse 0x08 with 0x04, all others 0x08 with 0x02, and 0x40 goes with no
 * other bit (all views). With 0x40 the selected items become the content of the page, in the order of the
 * list, and the selection is empty afterwards. A source of this process lays its tiles out in columns,
 * whatever order the style asks for.
 *
 * @param hAgent a list handle, after its request has succeeded
 * @param pParam the style; its fields are copied, the record stays the client's. Rows and columns are above
 * 0. The group index is negative for all groups; the views of one folder ignore an index that is too large
 *               and show no group, in all other views it must be below the number of groups, where there are
 * any
 * @retval QRA_ERROR_NONE           the page is there
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or its source has no groups to give
 * @retval QRA_ERROR_INVALID_PARAM  `pParam` is null, a row or column number is 0, or the mask is refused
 * @retval QRA_ERROR_INTERNAL       nothing could be laid out, as with a negative row or column number
 */
QRA_API qra_error_code_e qra_set_page_style_v2(qra_agent_handler_h hAgent, qra_page_param_h pParam);

/**
 * Expands or collapses one group and lays the page out again with the headers of all groups and the items of
 * the expanded ones, as the mask of the last style asks. The cursor stays where it is.
 *
 * @param hAgent      a list handle with a page style
 * @param nGroupIndex ordinal of the group. Not checked: an ordinal outside the list's groups ends the process
 * @param bExpand     true to expand
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  the mask of the style is refused
 * @retval QRA_ERROR_NOT_EXIST      on a "SOURCE_MSC" handle always: the playlists are asked for under a mount
 * path that no request sets. The page is gone then
 * @retval QRA_ERROR_INTERNAL       nothing could be laid out
 */
QRA_API qra_error_code_e qra_set_expand_mode_v2(qra_agent_handler_h hAgent, int nGroupIndex, bool bExpand);

/**
 * Number of groups of a list that the engine serves: those of its section as long as only one has arrived,
 * else one.
 *
 * @param hAgent  a list handle
 * @param pnCount receives the number
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `pnCount` is null, in a list of the engine
 * @retval QRA_ERROR_INTERNAL       the list comes from a source of this process, which does not answer this
 */
QRA_API qra_error_code_e qra_get_group_count_v2(qra_agent_handler_h hAgent, int* pnCount);

/**
 * Number of tiles that the cursor can walk: all tiles of the page, or the selected items in
 * QRA_NAVIGATION_TYPE_SELECTED.
 *
 * @param hAgent      a list handle with a page style
 * @param pnItemCount receives the number
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  `pnItemCount` is null
 */
QRA_API qra_error_code_e qra_get_item_count_v2(qra_agent_handler_h hAgent, int* pnItemCount);

/**
 * Number of items of one kind: folders, media, recordings, UHD and SCSA titles in the whole list, playlists
 * of the storage, and up-folder and empty tiles of the page. QRA_MEDIA_TYPE_GROUP is answered for the sort
 * category "CATEGORY-GROUP" alone; otherwise the variable stays as it is, and always in a list of the engine.
 *
 * @param hAgent      a list handle with a page style, in QRA_NAVIGATION_TYPE_ALL
 * @param eMediaType  the kind; an unknown one leaves the variable as it is and gives QRA_ERROR_NONE
 * @param pnItemCount receives the number
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  `pnItemCount` is null, or the navigation is QRA_NAVIGATION_TYPE_SELECTED
 * @retval QRA_ERROR_INTERNAL       the source could not count
 */
QRA_API qra_error_code_e qra_get_item_count_by_type_v2(qra_agent_handler_h hAgent,
                                                       qra_media_type_e eMediaType, int* pnItemCount);

/**
 * All values of one tile as one line of JSON with a line end. Each kind of item ("MEDIA_TYPE") has its fixed
 * set of keys; a value that the source does not know is "", 0 or false. The cursor moves to the tile. An item
 * of the engine gives the engine's own text, empty if it cannot be read.
 *
 * @param hAgent a list handle with a page style
 * @param nIndex list index of the tile
 * @param ppItem receives the text; the caller frees it
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `ppItem` is null, or there is no such tile: no page style, or the index is
 *                                  outside the page; the cursor stays
 * @retval QRA_ERROR_WRITE_FAILED   the item's section of the engine's list has not arrived; the cursor stays
 * @retval QRA_ERROR_INTERNAL       the source cannot tell the item's kind
 */
QRA_API qra_error_code_e qra_get_item_v2(qra_agent_handler_h hAgent, int nIndex, char** ppItem);

/**
 * The list index at which an item stands: the way back from the text of its field "ID_QRA". Where the page
 * shows the selected items alone, and in QRA_NAVIGATION_TYPE_SELECTED, the answer is 0.
 *
 * @param hAgent      a list handle with a page style
 * @param pMediaId    the id; only read
 * @param pnPageIndex receives the list index
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  an argument is null, or the list or the page does not hold the item
 * @retval QRA_ERROR_NOT_EXIST      the id is a playlist's, and no such playlist is known on a drive that was
 * read for playlists (qra_playlist.h)
 */
QRA_API qra_error_code_e qra_get_page_index_v2(qra_agent_handler_h hAgent, char* pMediaId, int* pnPageIndex);

/** @} */
/**
 * @name The cursor
 * @{
 */

/**
 * Chooses what the cursor walks: the page, or the selection alone.
 *
 * @param hAgent      a list handle
 * @param eNavigation the domain
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 */
QRA_API qra_error_code_e qra_set_navigation_v2(qra_agent_handler_h hAgent, qra_navigation_e eNavigation);

/**
 * What the cursor walks.
 *
 * @param hAgent       a list handle
 * @param peNavigation receives the domain
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `peNavigation` is null
 */
QRA_API qra_error_code_e qra_get_navigation_v2(qra_agent_handler_h hAgent, qra_navigation_e* peNavigation);

/**
 * Moves the cursor one tile on. The kind of the tile at list index 0 decides how: where it is an item of the
 * source, the source's own position moves along, otherwise the page's cursor alone does. A client that walks
 * a page with mixed tiles moves with qra_move_to_index_v2().
 *
 * @param hAgent a list handle with a page style
 * @retval QRA_ERROR_NONE           moved
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  the cursor would leave the page
 * @retval QRA_ERROR_INVALID_INDEX  the end of the selection (QRA_NAVIGATION_TYPE_SELECTED)
 * @retval QRA_ERROR_INTERNAL       the source is at its end, or the page is empty
 */
QRA_API qra_error_code_e qra_move_to_next_v2(qra_agent_handler_h hAgent);

/**
 * Moves the cursor one tile back. Otherwise as qra_move_to_next_v2().
 *
 * @param hAgent a list handle with a page style
 * @retval QRA_ERROR_NONE           moved
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  the cursor would leave the page
 * @retval QRA_ERROR_INVALID_INDEX  the start of the selection (QRA_NAVIGATION_TYPE_SELECTED)
 * @retval QRA_ERROR_INTERNAL       the source is at its start, or the page is empty
 */
QRA_API qra_error_code_e qra_move_to_previous_v2(qra_agent_handler_h hAgent);

/**
 * Moves the cursor to a tile, or to a selected item in QRA_NAVIGATION_TYPE_SELECTED.
 *
 * @param hAgent a list handle with a page style
 * @param nIndex list index, or the rank in the selection
 * @retval QRA_ERROR_NONE           moved
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_INDEX  no such rank (QRA_NAVIGATION_TYPE_SELECTED)
 * @retval QRA_ERROR_INTERNAL       no such tile, or the source does not have the item any more
 *
 * A cursor that could not be moved stays where it was.
 *
 * A move to a packaged film reads the package, once in the life of the process, which may take long. It fails
 * with QRA_ERROR_INTERNAL if the package cannot be read, as does qra_get_item_v2() with
 * QRA_ERROR_INVALID_PARAM. The reading ends with libxml2's xmlCleanupParser(): no other thread of the process
 * may be parsing XML with libxml2 meanwhile, unless it takes turns by the platform's xml_turn.h. The
 * library's own threads and the host's services do.
 */
QRA_API qra_error_code_e qra_move_to_index_v2(qra_agent_handler_h hAgent, int nIndex);

/** @} */
/**
 * @name Values at the cursor
 *
 * Fields are upper-case texts such as "TITLE", "FILE_PATH", "MEDIA_TYPE", "ID_QRA". Each form converts a
 * number to the type asked for: a number that is too large is clamped, a bool is 0 or 1. A text field as a
 * number, or a number as a text, gives QRA_ERROR_INTERNAL. On a tile that the source knows nothing of (empty,
 * up-folder, group header, playlist) a field that the tile does not have gives QRA_ERROR_NONE and leaves the
 * variable as it is.
 * @{
 */

/**
 * A text value at the cursor.
 *
 * @param hAgent  a list handle with a page style
 * @param pField  the field
 * @param ppValue receives the text; the caller frees it
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  an argument is null
 * @retval QRA_ERROR_INTERNAL       the source does not know the value, or there is no tile at the cursor
 * @retval QRA_ERROR_NOT_EXIST      the playlist of a playlist tile is not known (any more)
 */
QRA_API qra_error_code_e qra_get_item_value_char_v2(qra_agent_handler_h hAgent, const char* pField,
                                                    char** ppValue);

/**
 * A number at the cursor; codes as qra_get_item_value_char_v2().
 *
 * @param hAgent a list handle with a page style
 * @param pField the field
 * @param pValue receives the number
 * @return the codes of qra_get_item_value_char_v2()
 */
QRA_API qra_error_code_e qra_get_item_value_int_v2(qra_agent_handler_h hAgent, const char* pField,
                                                   int* pValue);

/**
 * A flag at the cursor; codes as qra_get_item_value_char_v2().
 *
 * @param hAgent a list handle with a page style
 * @param pField the field
 * @param pValue receives the flag
 * @return the codes of qra_get_item_value_char_v2()
 */
QRA_API qra_error_code_e qra_get_item_value_bool_v2(qra_agent_handler_h hAgent, const char* pField,
                                                    bool* pValue);

/**
 * A real number at the cursor; codes as qra_get_item_value_char_v2().
 *
 * @param hAgent a list handle with a page style
 * @param pField the field
 * @param pValue receives the number
 * @return the codes of qra_get_item_value_char_v2()
 */
QRA_API qra_error_code_e qra_get_item_value_double_v2(qra_agent_handler_h hAgent, const char* pField,
                                                      double* pValue);

/**
 * A time at the cursor, in seconds since 1970; codes as qra_get_item_value_char_v2().
 *
 * @param hAgent a list handle with a page style
 * @param pField the field
 * @param pValue receives the time
 * @return the codes of qra_get_item_value_char_v2()
 */
QRA_API qra_error_code_e qra_get_item_value_time_v2(qra_agent_handler_h hAgent, const char* pField,
                                                    time_t* pValue);

/**
 * A 64-bit number at the cursor, such as "SIZE" (bytes) or "DURATION" (milliseconds); codes as
 * qra_get_item_value_char_v2().
 *
 * @param hAgent a list handle with a page style
 * @param pField the field
 * @param pValue receives the number
 * @return the codes of qra_get_item_value_char_v2()
 */
QRA_API qra_error_code_e qra_get_item_value_lint_v2(qra_agent_handler_h hAgent, const char* pField,
                                                    unsigned long long* pValue);

/**
 * Stores a time with the item on which the source stands. Unlike the readers it does not ask what kind of
 * tile the cursor is on: move to an item of the source first.
 *
 * @param hAgent a list handle
 * @param pField the field, such as "PLAYED_TIME"
 * @param nValue the time, above 0
 * @retval QRA_ERROR_NONE           stored
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `pField` is null
 * @retval QRA_ERROR_INTERNAL       the source does not store this field, or could not
 */
QRA_API qra_error_code_e qra_set_item_value_time_v2(qra_agent_handler_h hAgent, const char* pField,
                                                    time_t nValue);

/**
 * Stores a number with the item on which the source stands; see qra_set_item_value_time_v2().
 *
 * @param hAgent a list handle
 * @param pField the field, such as "PLAYED_COUNT"
 * @param nValue the number
 * @return the codes of qra_set_item_value_time_v2()
 */
QRA_API qra_error_code_e qra_set_item_value_int_v2(qra_agent_handler_h hAgent, const char* pField,
                                                   int nValue);

/**
 * Stores a text with the item on which the source stands; see qra_set_item_value_time_v2().
 *
 * @param hAgent a list handle
 * @param pField the field
 * @param pValue the text; only read. Null gives QRA_ERROR_INVALID_PARAM
 * @return the codes of qra_set_item_value_time_v2()
 */
QRA_API qra_error_code_e qra_set_item_value_char_v2(qra_agent_handler_h hAgent, const char* pField,
                                                    char* pValue);

/**
 * The resume position of the item at the source's position, from its server. The source decides whether `cb`
 * is called within this call or later on a thread of the source.
 *
 * @param hAgent    a list handle
 * @param cb        receives the position
 * @param pUserData handed to `cb` as it is
 * @retval QRA_ERROR_NONE           asked
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INTERNAL       the source has no such thing
 */
QRA_API qra_error_code_e qra_get_book_mark_v2(qra_agent_handler_h hAgent, on_get_dlna_bookmark_cb cb,
                                              void* pUserData);

/**
 * The parental rating of the item at the source's position.
 *
 * @param hAgent   a list handle
 * @param ppRating receives the text; the caller frees it
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `ppRating` is null
 * @retval QRA_ERROR_INTERNAL       the source has none
 */
QRA_API qra_error_code_e qra_get_rating_info_v2(qra_agent_handler_h hAgent, char** ppRating);

/** @} */
/**
 * @name The selection
 *
 * A selection holds tiles of one kind at a time: items of the source, or playlists.
 * @{
 */

/**
 * Selects a tile, or takes it out of the selection.
 *
 * @param hAgent     a list handle with a page style
 * @param nListIndex list index of the tile
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  a group header, or no such tile. The selection has taken the header's kind
 * then: call qra_deselect_all_v2() before selecting something else
 * @retval QRA_ERROR_NOT_SUPPORTED  an empty or up-folder tile, or a kind that differs from what is selected
 */
QRA_API qra_error_code_e qra_toggle_select_v2(qra_agent_handler_h hAgent, int nListIndex);

/**
 * Whether a tile is selected.
 *
 * @param hAgent     a list handle with a page style
 * @param nListIndex list index of the tile
 * @param pSelected  receives the answer; a tile of another kind than what is selected is not
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  `pSelected` is null, or the tile has no position in the source
 */
QRA_API qra_error_code_e qra_get_selected_state_v2(qra_agent_handler_h hAgent, int nListIndex,
                                                   bool* pSelected);

/**
 * Number of selected items.
 *
 * @param hAgent  a list handle
 * @param pnCount receives the number
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `pnCount` is null
 */
QRA_API qra_error_code_e qra_get_selection_count_v2(qra_agent_handler_h hAgent, int* pnCount);

/**
 * Empties the selection.
 *
 * @param hAgent a list handle
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 */
QRA_API qra_error_code_e qra_deselect_all_v2(qra_agent_handler_h hAgent);

/**
 * Selects all items of a group.
 *
 * @param hAgent      a list handle with a page style
 * @param nGroupIndex ordinal of the group. Not checked: an ordinal outside the list's groups ends the process
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_NOT_SUPPORTED  items of another kind are selected
 */
QRA_API qra_error_code_e qra_select_group_v2(qra_agent_handler_h hAgent, int nGroupIndex);

/**
 * Takes all items of a group out of the selection.
 *
 * @param hAgent      a list handle with a page style
 * @param nGroupIndex ordinal of the group. Not checked: an ordinal outside the list's groups ends the
 * process, where items are selected
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_NOT_SUPPORTED  nothing is selected, or items of another kind
 */
QRA_API qra_error_code_e qra_deselect_group_v2(qra_agent_handler_h hAgent, int nGroupIndex);

/**
 * Hands the selection to another process or a later request: writes it to a shared memory object and gives a
 * JSON text that names it. The text goes into a later request with qra_param_set_general_prepare_data(),
 * which loads the selection and removes the object. A text that is never used leaves its object behind until
 * the system restarts. Two threads may call this at once on different handles. The objects are counted from 1
 * in each process ("qra_selectedlist_1"): two processes that hand on selections write over each other's, and
 * an object that cannot be made, as the other's belongs to another user or there is no room, ends the
 * process.
 *
 * @param hAgent a list handle
 * @param ppData receives the text; the caller frees it. {"qra_has_selected_item":false} when nothing is
 * selected
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle
 * @retval QRA_ERROR_INVALID_PARAM  `ppData` is null
 */
QRA_API qra_error_code_e qra_prepare_play_data_v2(qra_agent_handler_h hAgent, char** ppData);

/** @} */
/**
 * @name Items of the content engine
 * @{
 */

/**
 * Sends a comment on an item to the engine's source.
 *
 * @param hAgent    a list handle
 * @param pParam    the comment; stays the client's
 * @param nIndex    list index of the item, to which the cursor moves
 * @param pUserData handed to `cb` as it is
 * @param cb        receives the answers, one or more, on the main loop's thread
 * @retval QRA_ERROR_NONE           sent; without the item where its section has not arrived
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  `pParam` is null, or there is no such tile
 * @retval QRA_ERROR_INTERNAL       the list comes from a source of this process
 */
QRA_API qra_error_code_e qra_upload_comment_v2(qra_agent_handler_h hAgent, qra_comment_param_h pParam,
                                               int nIndex, void* pUserData, on_detail_complete_cb cb);

/**
 * Sends a like of an item to the engine's source.
 *
 * @param hAgent    a list handle
 * @param pParam    the like; stays the client's
 * @param nIndex    list index of the item, to which the cursor moves
 * @param pUserData handed to `cb` as it is
 * @param cb        receives the answers, one or more, on the main loop's thread
 * @retval QRA_ERROR_NONE           sent; without the item where its section has not arrived
 * @retval QRA_ERROR_INVALID_HANDLE no live list handle, or no page style was set
 * @retval QRA_ERROR_INVALID_PARAM  `pParam` is null, or there is no such tile
 * @retval QRA_ERROR_INTERNAL       the list comes from a source of this process
 */
QRA_API qra_error_code_e qra_set_like_v2(qra_agent_handler_h hAgent, qra_like_param_h pParam, int nIndex,
                                         void* pUserData, on_detail_complete_cb cb);

/** @} */
/**
 * @name Without a request
 * @{
 */

/**
 * The media database's id of the storage on which a path lies. Needs no open request.
 *
 * @param pPath       a path on attached storage; only read
 * @param ppStorageId receives the id; the caller frees it
 * @retval QRA_ERROR_NONE          done
 * @retval QRA_ERROR_INVALID_PARAM an argument is null
 * @retval QRA_ERROR_INTERNAL      the path lies on no known storage, or the database cannot be reached
 */
QRA_API qra_error_code_e qra_get_storage_id_v2(char* pPath, char** ppStorageId);

/**
 * Stores a number with an item of the media database.
 *
 * @param pId    the item's id ("ID_QRA")
 * @param pField the field, such as "PLAYED_COUNT"
 * @param nValue the number
 * @retval QRA_ERROR_NONE          stored
 * @retval QRA_ERROR_INVALID_PARAM an argument is null
 * @retval QRA_ERROR_INTERNAL      no such item, not a field that can be stored, or the database cannot be
 * reached
 */
QRA_API qra_error_code_e qra_set_item_value_int_mcf(const char* pId, const char* pField, int nValue);

/**
 * A number of an item of the media database.
 *
 * @param pId     the item's id ("ID_QRA")
 * @param pField  the field
 * @param pnValue receives the number
 * @retval QRA_ERROR_NONE          done
 * @retval QRA_ERROR_INVALID_PARAM an argument is null
 * @retval QRA_ERROR_INTERNAL      no such item or field, or the database cannot be reached
 */
QRA_API qra_error_code_e qra_get_item_value_int_mcf(const char* pId, const char* pField, int* pnValue);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
