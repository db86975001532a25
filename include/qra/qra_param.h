/**
 * @file qra_param.h
 * The parameter records of requests: make one, fill it through its setters, hand it over, destroy it.
 *
 * The layouts are the library's own, so that fields can be added without breaking a client. A record belongs
 * to the client: it may be used for several calls, each of which reads it before it returns, and it is
 * destroyed by the client. No function takes a lock; a record belongs to one thread at a time.
 *
 * Setters copy the texts that they are given; a second text takes the place of the first. Getters hand out
 * copies made with malloc(), which the client frees with free(). A function that fails changes nothing.
 *
 * The codes: QRA_ERROR_INVALID_PARAM for a null record, a null output, or a text that is null or empty;
 * QRA_ERROR_NOT_EXIST for a getter of a text that was never set; QRA_ERROR_OUT_OF_MEMORY if a copy could not
 * be made.
 */
#ifndef QRA_QRA_PARAM_H
#define QRA_QRA_PARAM_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name qra_general_s: a list request
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_general_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_general_param(qra_general_param_h* out);

/**
 * Frees a record and its texts.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_general_param(qra_general_param_h handle);

/**
 * Sets the name of the engine's plug-in that serves the request; engine sources only.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_plugin(qra_general_param_h handle, const char* value);

/**
 * Gives the name of the engine's plug-in that serves the request.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_plugin(qra_general_param_h handle, char** out);

/**
 * Sets the source, such as "SOURCE_MSC"; qra_request_list_v2() needs one.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_source(qra_general_param_h handle, const char* value);

/**
 * Gives the source.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_source(qra_general_param_h handle, char** out);

/**
 * Sets the directory to list, as bytes of the file system; "SOURCE_MSC" needs one on its first request. For
 * "SOURCE_DLNA" the id of the device.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_path(qra_general_param_h handle, const char* value);

/**
 * Gives the directory to list.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_path(qra_general_param_h handle, char** out);

/**
 * Sets the id of the folder to list.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_folder_id(qra_general_param_h handle, const char* value);

/**
 * Gives the id of the folder to list.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_folder_id(qra_general_param_h handle, char** out);

/**
 * Sets the content type, such as "CONTENT-IMAGE".
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_content_type(qra_general_param_h handle, const char* value);

/**
 * Gives the content type.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_content_type(qra_general_param_h handle, char** out);

/**
 * Sets the sort category, such as "CATEGORY-FOLDER-TITLE".
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_sort_category(qra_general_param_h handle, const char* value);

/**
 * Gives the sort category.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_sort_category(qra_general_param_h handle, char** out);

/**
 * Sets the value that the list is filtered by.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_filter(qra_general_param_h handle, const char* value);

/**
 * Gives the value that the list is filtered by.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_filter(qra_general_param_h handle, char** out);

/**
 * Sets the data type of the filter's value.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_filter_data_type(qra_general_param_h handle,
                                                                const char* value);

/**
 * Gives the data type of the filter's value.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_filter_data_type(qra_general_param_h handle, char** out);

/**
 * Sets a text that is passed through to the engine.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_user_data(qra_general_param_h handle, const char* value);

/**
 * Gives a text that is passed through to the engine.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_user_data(qra_general_param_h handle, char** out);

/**
 * Sets the JSON text of qra_prepare_play_data_v2(), which brings that selection into the new request.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_prepare_data(qra_general_param_h handle, const char* value);

/**
 * Gives the JSON text of qra_prepare_play_data_v2().
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_prepare_data(qra_general_param_h handle, char** out);

/**
 * Sets the name of the mode.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_mode_name(qra_general_param_h handle, const char* value);

/**
 * Gives the name of the mode.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_mode_name(qra_general_param_h handle, char** out);

/**
 * Sets the word to search for; used by "CATEGORY-KEYWORD-SEARCH".
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_key_word(qra_general_param_h handle, const char* value);

/**
 * Gives the word to search for.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_key_word(qra_general_param_h handle, char** out);

/**
 * Sets the name of the playlist to list.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_playlist_name(qra_general_param_h handle, const char* value);

/**
 * Gives the name of the playlist to list.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_playlist_name(qra_general_param_h handle, char** out);

/**
 * Sets the language.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_lang_id(qra_general_param_h handle, const char* value);

/**
 * Gives the language.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_lang_id(qra_general_param_h handle, char** out);

/**
 * Sets the token for the web service.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_access_token(qra_general_param_h handle, const char* value);

/**
 * Gives the token for the web service.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_access_token(qra_general_param_h handle, char** out);

/**
 * Sets the television's device id.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_duid(qra_general_param_h handle, const char* value);

/**
 * Gives the television's device id.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_duid(qra_general_param_h handle, char** out);

/**
 * Sets the country.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_country(qra_general_param_h handle, const char* value);

/**
 * Gives the country.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_country(qra_general_param_h handle, char** out);

/**
 * Sets the file extensions that make up each content type, as JSON: arrays of lower-case texts without the
 * dot under "param_media_extension_image", "..._video", "..._music", "..._pvr" and "..._uhd". It replaces
 * the built-in lists altogether. Packaged films are in none of the built-in lists and have no array of their
 * own: they are listed where their extensions stand in another one, such as that of the videos, and count as
 * media of that type then. qra_get_item_v2() builds the text of that type for them; what a package tells
 * (TITLE_19, COUNTRY, WIDTH ...) comes from the getters of single values.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_general_extension(qra_general_param_h handle, const char* value);

/**
 * Gives the file extensions that make up each content type.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_general_extension(qra_general_param_h handle, char** out);

/**
 * Sets the number of items that the engine sends at once; engine sources only.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_prefetch_num(qra_general_param_h handle, int value);

/**
 * Gives the number of items that the engine sends at once.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_prefetch_num(qra_general_param_h handle, int* out);

/**
 * Sets the number of items to hold around the cursor; engine sources only.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_window_size(qra_general_param_h handle, int value);

/**
 * Gives the number of items to hold around the cursor.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_window_size(qra_general_param_h handle, int* out);

/**
 * Sets the USB bus number of a PTP device.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_bus_value(qra_general_param_h handle, int value);

/**
 * Gives the USB bus number of a PTP device.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_bus_value(qra_general_param_h handle, int* out);

/**
 * Sets the USB device number of a PTP device.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_device_value(qra_general_param_h handle, int value);

/**
 * Gives the USB device number of a PTP device.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_device_value(qra_general_param_h handle, int* out);

/**
 * Sets whether UHD metadata is requested.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_is_uhd_meta(qra_general_param_h handle, bool value);

/**
 * Gives whether UHD metadata is requested.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_is_uhd_meta(qra_general_param_h handle, bool* out);

/**
 * Sets whether the UHD metadata is brought up to date.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_update_uhd_meta(qra_general_param_h handle, bool value);

/**
 * Gives whether the UHD metadata is brought up to date.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_update_uhd_meta(qra_general_param_h handle, bool* out);

/**
 * Sets the data style; 1 in a fresh record.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_data_style(qra_general_param_h handle, int value);

/**
 * Gives the data style.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_data_style(qra_general_param_h handle, int* out);

/**
 * Sets the DLNA service provider object; null is allowed. The object stays the caller's.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_general_service_provider(qra_general_param_h handle, void* value);

/**
 * Gives the DLNA service provider object.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_general_service_provider(qra_general_param_h handle, void** out);

/** @} */

/**
 * @name qra_page_style_s: the style of a page
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_page_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_page_param(qra_page_param_h* out);

/**
 * Frees a record.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_page_param(qra_page_param_h handle);

/**
 * Sets what the page shows, as a sum: 0x02 folders, 0x04 media, 0x08 group headers, 0x10 playlists, 0x20
 * the up-folder tile, 0x40 the selected items alone, 0x80 empty tiles up to the end of a group's column.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_page_style_mask(qra_page_param_h handle, int value);

/**
 * Gives what the page shows.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_page_style_mask(qra_page_param_h handle, int* out);

/**
 * Sets the order in which tiles fill the page; sources of this process always fill columns.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_page_style_order(qra_page_param_h handle, qra_page_order_e value);

/**
 * Gives the order in which tiles fill the page.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_page_style_order(qra_page_param_h handle, qra_page_order_e* out);

/**
 * Sets the group to show, negative for all; 0 in a fresh record. A number beyond the last group shows no
 * media.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_page_style_group_index(qra_page_param_h handle, int value);

/**
 * Gives the group to show.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_page_style_group_index(qra_page_param_h handle, int* out);

/**
 * Sets the rows of a page; 2 in a fresh record.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_page_style_row(qra_page_param_h handle, int value);

/**
 * Gives the rows of a page.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_page_style_row(qra_page_param_h handle, int* out);

/**
 * Sets the columns of a page; 9 in a fresh record.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_page_style_column(qra_page_param_h handle, int value);

/**
 * Gives the columns of a page.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_page_style_column(qra_page_param_h handle, int* out);

/**
 * Sets whether lines are padded; kept with the style, and read by nothing.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_page_style_padding(qra_page_param_h handle, bool value);

/**
 * Gives whether lines are padded.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_page_style_padding(qra_page_param_h handle, bool* out);

/** @} */

/**
 * @name qra_share_s: a batch job
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_share_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_share_param(qra_share_param_h* out);

/**
 * Frees a record and its texts.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_share_param(qra_share_param_h handle);

/**
 * Sets the kind of the source device.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_share_source_dev_type(qra_share_param_h handle, qra_dev_type_e value);

/**
 * Gives the kind of the source device.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_share_source_dev_type(qra_share_param_h handle, qra_dev_type_e* out);

/**
 * Sets the kind of the target device.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_share_dest_dev_type(qra_share_param_h handle, qra_dev_type_e value);

/**
 * Gives the kind of the target device.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_share_dest_dev_type(qra_share_param_h handle, qra_dev_type_e* out);

/**
 * Sets the path of the target.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_dest_dev_path(qra_share_param_h handle, const char* value);

/**
 * Gives the path of the target.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_dest_dev_path(qra_share_param_h handle, char** out);

/**
 * Sets the user's id.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_user_id(qra_share_param_h handle, const char* value);

/**
 * Gives the user's id.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_user_id(qra_share_param_h handle, char** out);

/**
 * Sets the address of a remote target.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_request_url(qra_share_param_h handle, const char* value);

/**
 * Gives the address of a remote target.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_request_url(qra_share_param_h handle, char** out);

/**
 * Sets the password for a remote target.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_passwd(qra_share_param_h handle, const char* value);

/**
 * Gives the password for a remote target.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_passwd(qra_share_param_h handle, char** out);

/**
 * Sets the token for a remote target.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_access_token(qra_share_param_h handle, const char* value);

/**
 * Gives the token for a remote target.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_access_token(qra_share_param_h handle, char** out);

/**
 * Sets the access id for a remote target.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_access_id(qra_share_param_h handle, const char* value);

/**
 * Gives the access id for a remote target.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_access_id(qra_share_param_h handle, char** out);

/**
 * Sets the instance id of a remote access.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_ra_instance_id(qra_share_param_h handle, const char* value);

/**
 * Gives the instance id of a remote access.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_ra_instance_id(qra_share_param_h handle, char** out);

/**
 * Sets the group id of a remote access.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_ra_group_id(qra_share_param_h handle, const char* value);

/**
 * Gives the group id of a remote access.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_ra_group_id(qra_share_param_h handle, char** out);

/**
 * Sets the peer id of a remote access.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_ra_peer_id(qra_share_param_h handle, const char* value);

/**
 * Gives the peer id of a remote access.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_ra_peer_id(qra_share_param_h handle, char** out);

/**
 * Sets the id of the target DLNA device.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_dlna_device_id(qra_share_param_h handle, const char* value);

/**
 * Gives the id of the target DLNA device.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_dlna_device_id(qra_share_param_h handle, char** out);

/**
 * Sets the DLNA service provider object, which stays the caller's; null is refused.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_share_dlna_service_provider(qra_share_param_h handle, void* value);

/**
 * Gives the DLNA service provider object.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_share_dlna_service_provider(qra_share_param_h handle, void** out);

/**
 * Sets the mount path of the drive.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_mount_path(qra_share_param_h handle, const char* value);

/**
 * Gives the mount path of the drive.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_mount_path(qra_share_param_h handle, char** out);

/**
 * Sets the name of the playlist.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_share_playlist_name(qra_share_param_h handle, const char* value);

/**
 * Gives the name of the playlist.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_share_playlist_name(qra_share_param_h handle, char** out);

/**
 * Sets whether to lock (true) or unlock recordings.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_share_lock(qra_share_param_h handle, bool value);

/**
 * Gives whether to lock (true) or unlock recordings.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_share_lock(qra_share_param_h handle, bool* out);

/** @} */

/**
 * @name qra_share_user_data_s: a batch job's callback
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_share_user_data_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_share_user_data_param(qra_share_user_data_param_h* out);

/**
 * Frees a record.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_share_user_data_param(qra_share_user_data_param_h handle);

/**
 * Sets the pointer that the callback gets back; the object stays the caller's.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_share_user_data_udata(qra_share_user_data_param_h handle, void* value);

/**
 * Sets the callback of a batch job; null is allowed.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_share_user_data_cb(qra_share_user_data_param_h handle,
                                                          qra_share_cb value);

/** @} */

/**
 * @name qra_playlist_file_s: a playlist file
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_playlist_file_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_playlist_file_param(qra_playlist_file_param_h* out);

/**
 * Frees a record and its texts.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_playlist_file_param(qra_playlist_file_param_h handle);

/**
 * Sets the directory of the playlist.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_file_path(qra_playlist_file_param_h handle,
                                                          const char* value);

/**
 * Gives the directory of the playlist.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_file_path(qra_playlist_file_param_h handle, char** out);

/**
 * Sets the name of the playlist, without its extension.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_file_name(qra_playlist_file_param_h handle,
                                                          const char* value);

/**
 * Gives the name of the playlist.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_file_name(qra_playlist_file_param_h handle, char** out);

/**
 * Sets the number of items that the playlist may have.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_file_max_item_count(qra_playlist_file_param_h handle,
                                                                    int value);

/**
 * Gives the number of items that the playlist may have.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_file_max_item_count(qra_playlist_file_param_h handle,
                                                                    int* out);

/** @} */

/**
 * @name qra_playlist_item_s: an item of a playlist
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_playlist_item_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_playlist_item_param(qra_playlist_item_param_h* out);

/**
 * Frees a record and its texts.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_playlist_item_param(qra_playlist_item_param_h handle);

/**
 * Sets the media id.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_media_id(qra_playlist_item_param_h handle,
                                                              const char* value);

/**
 * Gives the media id.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_media_id(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the title.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_title(qra_playlist_item_param_h handle,
                                                           const char* value);

/**
 * Gives the title.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_title(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the path of the file, as bytes of the file system.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_path(qra_playlist_item_param_h handle,
                                                          const char* value);

/**
 * Gives the path of the file.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_path(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the MIME type.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_mime_type(qra_playlist_item_param_h handle,
                                                               const char* value);

/**
 * Gives the MIME type.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_mime_type(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the artist.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_artist(qra_playlist_item_param_h handle,
                                                            const char* value);

/**
 * Gives the artist.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_artist(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the album.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_album(qra_playlist_item_param_h handle,
                                                           const char* value);

/**
 * Gives the album.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_album(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the genre.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_genre(qra_playlist_item_param_h handle,
                                                           const char* value);

/**
 * Gives the genre.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_genre(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the year.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_year(qra_playlist_item_param_h handle,
                                                          const char* value);

/**
 * Gives the year.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_year(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the path of the thumbnail.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_thumbnail_path(qra_playlist_item_param_h handle,
                                                                    const char* value);

/**
 * Gives the path of the thumbnail.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_thumbnail_path(qra_playlist_item_param_h handle,
                                                                    char** out);

/**
 * Sets the place where it was recorded.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_location_tag(qra_playlist_item_param_h handle,
                                                                  const char* value);

/**
 * Gives the place where it was recorded.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_location_tag(qra_playlist_item_param_h handle,
                                                                  char** out);

/**
 * Sets the format.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_format(qra_playlist_item_param_h handle,
                                                            const char* value);

/**
 * Gives the format.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_format(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the name to show.
 * @param handle the record
 * @param value copied; neither null nor empty
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_name(qra_playlist_item_param_h handle,
                                                          const char* value);

/**
 * Gives the name to show.
 * @param handle the record
 * @param out receives a copy, which the caller frees with free()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM; QRA_ERROR_NOT_EXIST; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_name(qra_playlist_item_param_h handle, char** out);

/**
 * Sets the duration in milliseconds.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_duration(qra_playlist_item_param_h handle,
                                                              unsigned long long value);

/**
 * Gives the duration in milliseconds.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_duration(qra_playlist_item_param_h handle,
                                                              unsigned long long* out);

/**
 * Sets the size in bytes.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_size(qra_playlist_item_param_h handle,
                                                          unsigned long long value);

/**
 * Gives the size in bytes.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_size(qra_playlist_item_param_h handle,
                                                          unsigned long long* out);

/**
 * Sets the time when it was added, in seconds since 1970.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_addtime(qra_playlist_item_param_h handle, time_t value);

/**
 * Gives the time when it was added.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_addtime(qra_playlist_item_param_h handle, time_t* out);

/**
 * Sets the time when it was last changed, in seconds since 1970.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_modtime(qra_playlist_item_param_h handle, time_t value);

/**
 * Gives the time when it was last changed.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_modtime(qra_playlist_item_param_h handle, time_t* out);

/**
 * Sets how often it was played.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_playcount(qra_playlist_item_param_h handle, int value);

/**
 * Gives how often it was played.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_playcount(qra_playlist_item_param_h handle, int* out);

/**
 * Sets the sample rate in Hz.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_samplerate(qra_playlist_item_param_h handle, int value);

/**
 * Gives the sample rate in Hz.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_samplerate(qra_playlist_item_param_h handle, int* out);

/**
 * Sets the bits per sample.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_bit_resolution(qra_playlist_item_param_h handle,
                                                                    int value);

/**
 * Gives the bits per sample.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_bit_resolution(qra_playlist_item_param_h handle,
                                                                    int* out);

/**
 * Sets the bit rate in bit/s.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_bit_rate(qra_playlist_item_param_h handle, int value);

/**
 * Gives the bit rate in bit/s.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_bit_rate(qra_playlist_item_param_h handle, int* out);

/**
 * Sets the media type, one of qra_media_type_e.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_media_type(qra_playlist_item_param_h handle, int value);

/**
 * Gives the media type.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_media_type(qra_playlist_item_param_h handle, int* out);

/**
 * Sets whether the content is protected.
 * @param handle the record
 * @param value the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_set_playlist_item_drm(qra_playlist_item_param_h handle, bool value);

/**
 * Gives whether the content is protected.
 * @param handle the record
 * @param out receives the value
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM
 */
QRA_API qra_error_code_e qra_param_get_playlist_item_drm(qra_playlist_item_param_h handle, bool* out);

/** @} */

/**
 * @name qra_comment_s: a comment
 * Its setters and getters accept everything and do nothing at all; the record is only made and freed.
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_comment_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_comment_param(qra_comment_param_h* out);

/**
 * Frees a record and its texts.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_comment_param(qra_comment_param_h handle);

/**
 * Does nothing; meant for the source of the commented item.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_comment_source(qra_comment_param_h handle, const char* value);

/**
 * Does nothing; meant for the source of the commented item.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_comment_source(qra_comment_param_h handle, char** out);

/**
 * Does nothing; meant for the comment.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_comment_comment(qra_comment_param_h handle, const char* value);

/**
 * Does nothing; meant for the comment.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_comment_comment(qra_comment_param_h handle, char** out);

/**
 * Does nothing; meant for a text that is passed through.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_comment_user_data(qra_comment_param_h handle, const char* value);

/**
 * Does nothing; meant for a text that is passed through.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_comment_user_data(qra_comment_param_h handle, char** out);

/** @} */

/**
 * @name qra_like_s: a like
 * Its setters and getters accept everything and do nothing at all; the record is only made and freed.
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_like_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_like_param(qra_like_param_h* out);

/**
 * Frees a record and its texts.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_like_param(qra_like_param_h handle);

/**
 * Does nothing; meant for the source of the liked item.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_like_source(qra_like_param_h handle, const char* value);

/**
 * Does nothing; meant for the source of the liked item.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_like_source(qra_like_param_h handle, char** out);

/**
 * Does nothing; meant for a text that is passed through.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_like_user_data(qra_like_param_h handle, const char* value);

/**
 * Does nothing; meant for a text that is passed through.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_like_user_data(qra_like_param_h handle, char** out);

/**
 * Does nothing; meant for whether it is liked.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_like_is_like(qra_like_param_h handle, bool value);

/**
 * Does nothing; meant for whether it is liked.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_like_is_like(qra_like_param_h handle, bool* out);

/** @} */

/**
 * @name qra_detail_s: a detail request
 * Its setters and getters accept everything and do nothing at all; the record is only made and freed.
 * @{
 */

/**
 * Makes a record with its defaults.
 * @param out receives the record; the caller frees it with qra_destroy_detail_param()
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null out; QRA_ERROR_OUT_OF_MEMORY
 */
QRA_API qra_error_code_e qra_create_detail_param(qra_detail_param_h* out);

/**
 * Frees a record and its texts.
 * @param handle the record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_destroy_detail_param(qra_detail_param_h handle);

/**
 * Does nothing; meant for the source of the item.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_detail_source(qra_detail_param_h handle, const char* value);

/**
 * Does nothing; meant for the source of the item.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_detail_source(qra_detail_param_h handle, char** out);

/**
 * Does nothing; meant for a text that is passed through.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_detail_user_data(qra_detail_param_h handle, const char* value);

/**
 * Does nothing; meant for a text that is passed through.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_detail_user_data(qra_detail_param_h handle, char** out);

/**
 * Does nothing; meant for the list index of the item.
 * @param handle not looked at
 * @param value not looked at
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_set_detail_page_index(qra_detail_param_h handle, int value);

/**
 * Does nothing; meant for the list index of the item.
 * @param handle not looked at
 * @param out left as it is
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_param_get_detail_page_index(qra_detail_param_h handle, int* out);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
