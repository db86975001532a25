#include "libqra-agent/agent/src/qra_type.h"

#include <qra/qra_param.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "common/util/qra_log.h"

namespace {

template <class Record>
using TextField = char* Record::*;

// The texts of each record, which the record owns.
constexpr TextField<qra_general_s> kGeneralTexts[] = {
    &qra_general_s::pPluginName,    &qra_general_s::pSource,          &qra_general_s::szPath,
    &qra_general_s::szFolderId,     &qra_general_s::szContentType,    &qra_general_s::szSortCategory,
    &qra_general_s::szFilter,       &qra_general_s::szFilterDataType, &qra_general_s::szUserData,
    &qra_general_s::pPrepareData,   &qra_general_s::szModeName,       &qra_general_s::szKeyWord,
    &qra_general_s::szPlayListName, &qra_general_s::szLangId,         &qra_general_s::szAccessToken,
    &qra_general_s::szDuid,         &qra_general_s::szCountry,        &qra_general_s::szExtension};
constexpr TextField<qra_share_s> kShareTexts[] = {
    &qra_share_s::dest_dev_path,   &qra_share_s::user_id,         &qra_share_s::request_url,
    &qra_share_s::passwd,          &qra_share_s::access_token,    &qra_share_s::access_id,
    &qra_share_s::reserved_text_1, &qra_share_s::reserved_text_2, &qra_share_s::ra_instance_id,
    &qra_share_s::ra_group_id,     &qra_share_s::ra_peer_id,      &qra_share_s::dlna_device_id,
    &qra_share_s::mount_path,      &qra_share_s::playlist_name};
constexpr TextField<qra_playlist_file_s> kPlaylistFileTexts[] = {&qra_playlist_file_s::path,
                                                                 &qra_playlist_file_s::name};
constexpr TextField<qra_playlist_item_s> kPlaylistItemTexts[] = {
    &qra_playlist_item_s::media_id,     &qra_playlist_item_s::title,  &qra_playlist_item_s::path,
    &qra_playlist_item_s::mime_type,    &qra_playlist_item_s::artist, &qra_playlist_item_s::album,
    &qra_playlist_item_s::genre,        &qra_playlist_item_s::year,   &qra_playlist_item_s::thumbnail_path,
    &qra_playlist_item_s::location_tag, &qra_playlist_item_s::format, &qra_playlist_item_s::name};
constexpr TextField<qra_comment_s> kCommentTexts[] = {&qra_comment_s::source, &qra_comment_s::comment,
                                                      &qra_comment_s::user_data};
constexpr TextField<qra_like_s> kLikeTexts[] = {&qra_like_s::source, &qra_like_s::user_data};
constexpr TextField<qra_detail_s> kDetailTexts[] = {&qra_detail_s::source, &qra_detail_s::user_data};

qra_error_code_e invalid_param() {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid param.");
    return QRA_ERROR_INVALID_PARAM;
}

qra_error_code_e out_of_memory() {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Out of memory.");
    return QRA_ERROR_OUT_OF_MEMORY;
}

template <class Record>
qra_error_code_e create(Record** out) {
    if (out == nullptr) {
        return invalid_param();
    }
    Record* record = new (std::nothrow) Record;
    if (record == nullptr) {
        return out_of_memory();
    }
    *out = record;
    return QRA_ERROR_NONE;
}

template <class Record>
qra_error_code_e destroy(Record* record) {
    if (record == nullptr) {
        return invalid_param();
    }
    delete record;
    return QRA_ERROR_NONE;
}

template <class Record, size_t Count>
qra_error_code_e destroy(Record* record, const TextField<Record> (&texts)[Count]) {
    if (record == nullptr) {
        return invalid_param();
    }
    for (const TextField<Record> text : texts) {
        free(record->*text);
    }
    delete record;
    return QRA_ERROR_NONE;
}

template <class Record>
qra_error_code_e set_text(Record* record, TextField<Record> field, const char* value) {
    if (record == nullptr || value == nullptr || *value == '\0') {
        return invalid_param();
    }
    char* copy = strdup(value);
    if (copy == nullptr) {
        return out_of_memory();
    }
    free(record->*field);
    record->*field = copy;
    return QRA_ERROR_NONE;
}

template <class Record>
qra_error_code_e get_text(const Record* record, TextField<Record> field, char** out) {
    if (record == nullptr || out == nullptr) {
        return invalid_param();
    }
    if (record->*field == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "The text was never set.");
        return QRA_ERROR_NOT_EXIST;
    }
    char* copy = strdup(record->*field);
    if (copy == nullptr) {
        return out_of_memory();
    }
    *out = copy;
    return QRA_ERROR_NONE;
}

template <class Record, class Value>
qra_error_code_e set_value(Record* record, Value Record::*field, Value value) {
    if (record == nullptr) {
        return invalid_param();
    }
    record->*field = value;
    return QRA_ERROR_NONE;
}

template <class Record, class Value>
qra_error_code_e get_value(const Record* record, Value Record::*field, Value* out) {
    if (record == nullptr || out == nullptr) {
        return invalid_param();
    }
    *out = record->*field;
    return QRA_ERROR_NONE;
}

}  // namespace

qra_error_code_e qra_create_general_param(qra_general_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_general_param(qra_general_param_h handle) {
    return destroy(handle, kGeneralTexts);
}

qra_error_code_e qra_create_page_param(qra_page_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_page_param(qra_page_param_h handle) {
    return destroy(handle);
}

qra_error_code_e qra_create_share_param(qra_share_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_share_param(qra_share_param_h handle) {
    return destroy(handle, kShareTexts);
}

qra_error_code_e qra_create_share_user_data_param(qra_share_user_data_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_share_user_data_param(qra_share_user_data_param_h handle) {
    return destroy(handle);
}

qra_error_code_e qra_create_playlist_file_param(qra_playlist_file_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_playlist_file_param(qra_playlist_file_param_h handle) {
    return destroy(handle, kPlaylistFileTexts);
}

qra_error_code_e qra_create_playlist_item_param(qra_playlist_item_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_playlist_item_param(qra_playlist_item_param_h handle) {
    return destroy(handle, kPlaylistItemTexts);
}

qra_error_code_e qra_create_comment_param(qra_comment_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_comment_param(qra_comment_param_h handle) {
    return destroy(handle, kCommentTexts);
}

qra_error_code_e qra_create_like_param(qra_like_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_like_param(qra_like_param_h handle) {
    return destroy(handle, kLikeTexts);
}

qra_error_code_e qra_create_detail_param(qra_detail_param_h* out) {
    return create(out);
}

qra_error_code_e qra_destroy_detail_param(qra_detail_param_h handle) {
    return destroy(handle, kDetailTexts);
}

// Each of these defines a field's setter and getter as qra_param.h declares them.

#define QRA_TEXT_FIELD(record, suffix, member)                                                        \
    qra_error_code_e qra_param_set_##record##_##suffix(qra_##record##_s* handle, const char* value) { \
        return set_text(handle, &qra_##record##_s::member, value);                                    \
    }                                                                                                 \
    qra_error_code_e qra_param_get_##record##_##suffix(qra_##record##_s* handle, char** out) {        \
        return get_text(handle, &qra_##record##_s::member, out);                                      \
    }

#define QRA_VALUE_FIELD(record, suffix, type, member)                                          \
    qra_error_code_e qra_param_set_##record##_##suffix(qra_##record##_s* handle, type value) { \
        return set_value(handle, &qra_##record##_s::member, value);                            \
    }                                                                                          \
    qra_error_code_e qra_param_get_##record##_##suffix(qra_##record##_s* handle, type* out) {  \
        return get_value(handle, &qra_##record##_s::member, out);                              \
    }

// Accepts everything and does nothing.
#define QRA_IGNORED_FIELD(record, suffix, in_type, out_type)                          \
    qra_error_code_e qra_param_set_##record##_##suffix(qra_##record##_s*, in_type) {  \
        return QRA_ERROR_NONE;                                                        \
    }                                                                                 \
    qra_error_code_e qra_param_get_##record##_##suffix(qra_##record##_s*, out_type) { \
        return QRA_ERROR_NONE;                                                        \
    }

QRA_TEXT_FIELD(general, plugin, pPluginName)
QRA_TEXT_FIELD(general, source, pSource)
QRA_TEXT_FIELD(general, path, szPath)
QRA_TEXT_FIELD(general, folder_id, szFolderId)
QRA_TEXT_FIELD(general, content_type, szContentType)
QRA_TEXT_FIELD(general, sort_category, szSortCategory)
QRA_TEXT_FIELD(general, filter, szFilter)
QRA_TEXT_FIELD(general, filter_data_type, szFilterDataType)
QRA_TEXT_FIELD(general, user_data, szUserData)
QRA_TEXT_FIELD(general, prepare_data, pPrepareData)
QRA_TEXT_FIELD(general, mode_name, szModeName)
QRA_TEXT_FIELD(general, key_word, szKeyWord)
QRA_TEXT_FIELD(general, playlist_name, szPlayListName)
QRA_TEXT_FIELD(general, lang_id, szLangId)
QRA_TEXT_FIELD(general, access_token, szAccessToken)
QRA_TEXT_FIELD(general, duid, szDuid)
QRA_TEXT_FIELD(general, country, szCountry)
QRA_TEXT_FIELD(general, extension, szExtension)
QRA_VALUE_FIELD(general, prefetch_num, int, nPrefectchNum)
QRA_VALUE_FIELD(general, window_size, int, nWindowSize)
QRA_VALUE_FIELD(general, bus_value, int, nBusValue)
QRA_VALUE_FIELD(general, device_value, int, nDeviceValue)
QRA_VALUE_FIELD(general, is_uhd_meta, bool, bIsUHDMeta)
QRA_VALUE_FIELD(general, update_uhd_meta, bool, bUpdateUHDMeta)
QRA_VALUE_FIELD(general, data_style, int, nDataStyle)
QRA_VALUE_FIELD(general, service_provider, void*, pServiceProvider)

QRA_VALUE_FIELD(page_style, mask, int, mask)
QRA_VALUE_FIELD(page_style, order, qra_page_order_e, order)
QRA_VALUE_FIELD(page_style, group_index, int, group_index)
QRA_VALUE_FIELD(page_style, row, int, row)
QRA_VALUE_FIELD(page_style, column, int, column)
QRA_VALUE_FIELD(page_style, padding, bool, padding)

QRA_VALUE_FIELD(share, source_dev_type, qra_dev_type_e, source_dev_type)
QRA_VALUE_FIELD(share, dest_dev_type, qra_dev_type_e, dest_dev_type)
QRA_TEXT_FIELD(share, dest_dev_path, dest_dev_path)
QRA_TEXT_FIELD(share, user_id, user_id)
QRA_TEXT_FIELD(share, request_url, request_url)
QRA_TEXT_FIELD(share, passwd, passwd)
QRA_TEXT_FIELD(share, access_token, access_token)
QRA_TEXT_FIELD(share, access_id, access_id)
QRA_TEXT_FIELD(share, ra_instance_id, ra_instance_id)
QRA_TEXT_FIELD(share, ra_group_id, ra_group_id)
QRA_TEXT_FIELD(share, ra_peer_id, ra_peer_id)
QRA_TEXT_FIELD(share, dlna_device_id, dlna_device_id)

qra_error_code_e qra_param_set_share_dlna_service_provider(qra_share_param_h handle, void* value) {
    return value != nullptr ? set_value(handle, &qra_share_s::dlna_service_provider, value) : invalid_param();
}

qra_error_code_e qra_param_get_share_dlna_service_provider(qra_share_param_h handle, void** out) {
    return get_value(handle, &qra_share_s::dlna_service_provider, out);
}

QRA_TEXT_FIELD(share, mount_path, mount_path)
QRA_TEXT_FIELD(share, playlist_name, playlist_name)
QRA_VALUE_FIELD(share, lock, bool, lock)

qra_error_code_e qra_param_set_share_user_data_udata(qra_share_user_data_param_h handle, void* value) {
    return set_value(handle, &qra_share_user_data_s::udata, value);
}

qra_error_code_e qra_param_set_share_user_data_cb(qra_share_user_data_param_h handle, qra_share_cb value) {
    return set_value(handle, &qra_share_user_data_s::cb, value);
}

QRA_TEXT_FIELD(playlist_file, path, path)
QRA_TEXT_FIELD(playlist_file, name, name)
QRA_VALUE_FIELD(playlist_file, max_item_count, int, max_item_count)

QRA_TEXT_FIELD(playlist_item, media_id, media_id)
QRA_TEXT_FIELD(playlist_item, title, title)
QRA_TEXT_FIELD(playlist_item, path, path)
QRA_TEXT_FIELD(playlist_item, mime_type, mime_type)
QRA_TEXT_FIELD(playlist_item, artist, artist)
QRA_TEXT_FIELD(playlist_item, album, album)
QRA_TEXT_FIELD(playlist_item, genre, genre)
QRA_TEXT_FIELD(playlist_item, year, year)
QRA_TEXT_FIELD(playlist_item, thumbnail_path, thumbnail_path)
QRA_TEXT_FIELD(playlist_item, location_tag, location_tag)
QRA_TEXT_FIELD(playlist_item, format, format)
QRA_TEXT_FIELD(playlist_item, name, name)
QRA_VALUE_FIELD(playlist_item, duration, unsigned long long, duration)
QRA_VALUE_FIELD(playlist_item, size, unsigned long long, size)
QRA_VALUE_FIELD(playlist_item, addtime, time_t, addtime)
QRA_VALUE_FIELD(playlist_item, modtime, time_t, modtime)
QRA_VALUE_FIELD(playlist_item, playcount, int, playcount)
QRA_VALUE_FIELD(playlist_item, samplerate, int, samplerate)
QRA_VALUE_FIELD(playlist_item, bit_resolution, int, bit_resolution)
QRA_VALUE_FIELD(playlist_item, bit_rate, int, bit_rate)
QRA_VALUE_FIELD(playlist_item, media_type, int, media_type)
QRA_VALUE_FIELD(playlist_item, drm, bool, drm)

QRA_IGNORED_FIELD(comment, source, const char*, char**)
QRA_IGNORED_FIELD(comment, comment, const char*, char**)
QRA_IGNORED_FIELD(comment, user_data, const char*, char**)

QRA_IGNORED_FIELD(like, source, const char*, char**)
QRA_IGNORED_FIELD(like, user_data, const char*, char**)
QRA_IGNORED_FIELD(like, is_like, bool, bool*)

QRA_IGNORED_FIELD(detail, source, const char*, char**)
QRA_IGNORED_FIELD(detail, user_data, const char*, char**)
QRA_IGNORED_FIELD(detail, page_index, int, int*)
