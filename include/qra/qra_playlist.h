/**
 * @file qra_playlist.h
 * Playlist files: test, make, open, edit, save and remove one.
 *
 * @section qra_playlist_where Where a playlist lies
 *
 * A path that begins with the media root and "/USBDrive" or "/usb" is on USB, everything else is internal
 * storage. The path of a playlist on USB is the drive's mount path: playlists lie in the drive's top
 * directory. The library knows the playlists of a drive by their display names. It reads them once, at the
 * first qra_playlist_create_v2() or qra_playlist_open_v2() on the drive or the first list request for one of
 * its playlists, and forgets them when the drive is unmounted; a drive has room for 5. Paths are compared as
 * they are, but for slashes at the end, which do not count.
 *
 * On internal storage a playlist is a file of its own. qra_playlist_create_v2() makes one whose name is a
 * number, while qra_playlist_open_v2() and qra_playlist_exist_v2() look for the display name with ".m3u"
 * behind it: only a playlist of the name ".bgm" is found again by its name there.
 *
 * @section qra_playlist_life The life of a handle
 *
 * qra_playlist_open_v2() gives a handle; qra_playlist_close_v2() ends it, and the handle is not to be used
 * again. Items that are added or deleted are in the handle's playlist at once and in its file after
 * qra_playlist_flush_v2(). A rename is saved at once. All handles of one playlist on USB share it, with all
 * that was not saved yet, which also stays when they are closed; a handle of a playlist on internal storage
 * has its own copy, which goes with it.
 *
 * A write is not atomic. One that fails (a full disk, a drive that is pulled) removes the file, so that the
 * drive holds what the last good write left, or nothing.
 *
 * The items of a playlist on USB are shown as tiles by a list request (qra_agent.h) with the source
 * "SOURCE_PLAYLIST", the mount path, the playlist's name, a content type and a sort category, all of them.
 * A playlist without items answers with QRA_EVENT_LIST_FAILED there.
 *
 * @section qra_playlist_threads Threads
 *
 * The functions do their work on the calling thread and may wait for a drive. They may be called from any
 * thread, but a playlist belongs to one at a time: neither two handles of one playlist on USB, nor a handle
 * and a list request or a batch job that is at work on the playlist, may be used at the same time. There are
 * no callbacks.
 *
 * @section qra_playlist_text What the file keeps
 *
 * Texts are bytes, and nothing is escaped. A text loses its colons when it is read again; one with a "|" or a
 * line feed breaks the record of its item. Of a year the file keeps the number's low byte. A duration is
 * rounded to the precision of a 32-bit float. Times are 32 bits wide. An item of a playlist on USB whose path
 * does not lie below the drive's present mount path is taken to lie beside the playlist, which is where the
 * file is when the drive has moved. docs/playlist-format.md tells the format byte for byte.
 *
 * Texts that are handed in are copied. A null, unknown or closed handle, or one of another kind, gives
 * QRA_ERROR_INVALID_HANDLE.
 */
#ifndef QRA_QRA_PLAYLIST_H
#define QRA_QRA_PLAYLIST_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Tells whether a playlist is there. Reads no drive: on one whose playlists have not been read yet the answer
 * is no, whatever it holds.
 *
 * @param pParam directory and name of the playlist; both are needed
 * @retval QRA_ERROR_NONE          it is there
 * @retval QRA_ERROR_NOT_EXIST     it is not, or the drive has not been read
 * @retval QRA_ERROR_INVALID_PARAM the record, its directory or its name is null
 */
QRA_API qra_error_code_e qra_playlist_exist_v2(qra_playlist_file_param_h pParam);

/**
 * Makes an empty playlist and its file. The name has at most 256 bytes and no "/". The most items that it
 * may hold is not checked: a list of 0 or fewer takes none.
 *
 * @param pParam directory, name and largest number of items; directory and name are needed
 * @retval QRA_ERROR_NONE          done
 * @retval QRA_ERROR_ALREADY_EXIST the drive has a playlist of this name
 * @retval QRA_ERROR_PLAYLIST_MAX  the drive has 5 playlists
 * @retval QRA_ERROR_CREATE_FAILED the name is refused, or the file could not be made (USB)
 * @retval QRA_ERROR_NOT_EXIST     the path lies below a drive's top directory, or the drive went meanwhile.
 * On a drive whose own name has fewer than 6 characters ("usb1") a path below its top directory is instead
 * taken for a drive of its own, which is not forgotten at the unmount: name the top directory
 * @retval QRA_ERROR_INTERNAL      the drive cannot be read; or, on internal storage, the playlist could not
 * be made
 * @retval QRA_ERROR_INVALID_PARAM the record, its directory or its name is null
 */
QRA_API qra_error_code_e qra_playlist_create_v2(qra_playlist_file_param_h pParam);

/**
 * Opens a playlist.
 *
 * @param pParam  directory and name of the playlist; the number of items is not looked at
 * @param pHandle receives the handle; the caller closes it with qra_playlist_close_v2()
 * @retval QRA_ERROR_NONE          open
 * @retval QRA_ERROR_NOT_EXIST     the drive has no such playlist, or is not there (USB)
 * @retval QRA_ERROR_INTERNAL      there is no such file, or it cannot be read (internal storage)
 * @retval QRA_ERROR_INVALID_PARAM the record, its directory, its name or `pHandle` is null
 */
QRA_API qra_error_code_e qra_playlist_open_v2(qra_playlist_file_param_h pParam,
                                              qra_playlist_handler_h* pHandle);

/**
 * Closes a handle. Saves nothing.
 *
 * @param hPlaylist an open playlist
 * @retval QRA_ERROR_NONE           closed
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_close_v2(qra_playlist_handler_h hPlaylist);

/**
 * Removes a playlist: its file, and its items. The handle stays valid, and has to be closed.
 *
 * @param hPlaylist an open playlist
 * @retval QRA_ERROR_NONE           removed; also if the file was gone before
 * @retval QRA_ERROR_NOT_EXIST      the drive was unmounted, or the playlist was removed before (USB)
 * @retval QRA_ERROR_INTERNAL       the file could not be removed
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_remove_v2(qra_playlist_handler_h hPlaylist);

/**
 * Gives a playlist another name and saves it, with all other changes. Its file keeps its own name.
 *
 * @param hPlaylist an open playlist
 * @param szNewName at most 256 bytes, without "/"
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_NOT_EXIST      the drive was unmounted, or the playlist was removed (USB)
 * @retval QRA_ERROR_ALREADY_EXIST  the drive has a playlist of the new name, be it this one
 * @retval QRA_ERROR_INTERNAL       the name is refused, or the file could not be written
 * @retval QRA_ERROR_INVALID_PARAM  the name is null
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_rename_v2(qra_playlist_handler_h hPlaylist, const char* szNewName);

/**
 * Adds a copy of an item at the end. Not saved yet.
 *
 * @param hPlaylist an open playlist
 * @param szItem    the item; its media id and its path are needed, other texts may be missing
 * @retval QRA_ERROR_NONE           added
 * @retval QRA_ERROR_INTERNAL       the playlist is full
 * @retval QRA_ERROR_INVALID_PARAM  the record, its media id or its path is null
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_add_v2(qra_playlist_handler_h hPlaylist,
                                             qra_playlist_item_param_h szItem);

/**
 * Deletes an item. Not saved yet.
 *
 * @param hPlaylist an open playlist
 * @param nIndex    its position, from 0
 * @retval QRA_ERROR_NONE           deleted
 * @retval QRA_ERROR_INVALID_PARAM  there is no such item
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_delete_v2(qra_playlist_handler_h hPlaylist, int nIndex);

/**
 * Counts the items.
 *
 * @param hPlaylist an open playlist
 * @param pnCount   receives the number
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INVALID_PARAM  `pnCount` is null
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_get_count_v2(qra_playlist_handler_h hPlaylist, int* pnCount);

/**
 * Copies an item to a record.
 *
 * @param hPlaylist an open playlist
 * @param nIndex    its position, from 0
 * @param szItem    a new record of qra_create_playlist_item_param(), which the caller frees, with its texts,
 *                  with qra_destroy_playlist_item_param(). Texts that it holds already are not freed here
 * @retval QRA_ERROR_NONE           done
 * @retval QRA_ERROR_INTERNAL       there is no such item
 * @retval QRA_ERROR_INVALID_PARAM  the record is null
 * @retval QRA_ERROR_OUT_OF_MEMORY  a copy could not be made; those that could are in the record
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_get_item_v2(qra_playlist_handler_h hPlaylist, int nIndex,
                                                  qra_playlist_item_param_h szItem);

/**
 * Saves a playlist to its file, which has to be there still.
 *
 * @param hPlaylist an open playlist
 * @retval QRA_ERROR_NONE           saved
 * @retval QRA_ERROR_INTERNAL       the file is gone, or could not be written and was removed
 * @retval QRA_ERROR_INVALID_HANDLE no open playlist
 */
QRA_API qra_error_code_e qra_playlist_flush_v2(qra_playlist_handler_h hPlaylist);

#ifdef __cplusplus
}
#endif

#endif
