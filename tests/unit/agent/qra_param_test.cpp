#include <gtest/gtest.h>
#include <qra/qra_param.h>

#include <cstdlib>
#include <string>

#include "libqra-agent/agent/src/qra_type.h"
#include "tests/fakes/dlog_capture.h"

namespace {

/// A record between its create and its destroy function.
template <class Record>
class Owned {
public:
    using Create = qra_error_code_e (*)(Record**);
    using Destroy = qra_error_code_e (*)(Record*);

    Owned(Create create, Destroy destroy) : destroy_(destroy) { EXPECT_EQ(create(&record_), QRA_ERROR_NONE); }
    ~Owned() { EXPECT_EQ(destroy_(record_), QRA_ERROR_NONE); }
    operator Record*() const { return record_; }
    Record* operator->() const { return record_; }

private:
    Record* record_ = nullptr;
    Destroy destroy_;
};

/// A record of each kind, fresh for each test.
class QraParam : public testing::Test {
protected:
    const Owned<qra_general_s>& general() const { return general_; }
    const Owned<qra_page_style_s>& page() const { return page_; }
    const Owned<qra_share_s>& share() const { return share_; }
    const Owned<qra_playlist_file_s>& playlist_file() const { return playlist_file_; }
    const Owned<qra_playlist_item_s>& playlist_item() const { return playlist_item_; }

private:
    const Owned<qra_general_s> general_{qra_create_general_param, qra_destroy_general_param};
    const Owned<qra_page_style_s> page_{qra_create_page_param, qra_destroy_page_param};
    const Owned<qra_share_s> share_{qra_create_share_param, qra_destroy_share_param};
    const Owned<qra_playlist_file_s> playlist_file_{qra_create_playlist_file_param,
                                                    qra_destroy_playlist_file_param};
    const Owned<qra_playlist_item_s> playlist_item_{qra_create_playlist_item_param,
                                                    qra_destroy_playlist_item_param};
};

/// Takes a text field through everything that its setter and getter promise.
template <class Record>
void check_text(Record* record, char* Record::*field, qra_error_code_e (*set)(Record*, const char*),
                qra_error_code_e (*get)(Record*, char**), const char* name) {
    SCOPED_TRACE(name);
    LogCapture log;
    char* text = nullptr;
    EXPECT_EQ(record->*field, nullptr);
    EXPECT_EQ(get(record, &text), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(text, nullptr);

    EXPECT_EQ(set(record, "first"), QRA_ERROR_NONE);
    EXPECT_STREQ(record->*field, "first");
    EXPECT_EQ(set(record, name), QRA_ERROR_NONE);
    EXPECT_EQ(set(record, ""), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(set(record, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(set(nullptr, "x"), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log.count("Invalid param."), 3);
    EXPECT_STREQ(record->*field, name);

    EXPECT_EQ(get(nullptr, &text), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(get(record, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(get(record, &text), QRA_ERROR_NONE);
    EXPECT_STREQ(text, name);
    EXPECT_NE(text, record->*field);
    free(text);
}

template <class Record, class Value>
void check_value(Record* record, Value Record::*field, qra_error_code_e (*set)(Record*, Value),
                 qra_error_code_e (*get)(Record*, Value*), Value at_first, Value value, const char* name) {
    SCOPED_TRACE(name);
    Value out = value;
    EXPECT_EQ(get(record, &out), QRA_ERROR_NONE);
    EXPECT_EQ(out, at_first);

    EXPECT_EQ(set(record, value), QRA_ERROR_NONE);
    EXPECT_EQ(record->*field, value);
    EXPECT_EQ(get(record, &out), QRA_ERROR_NONE);
    EXPECT_EQ(out, value);

    EXPECT_EQ(set(nullptr, value), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(get(nullptr, &out), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(get(record, nullptr), QRA_ERROR_INVALID_PARAM);
}

template <class Record>
void check_life(qra_error_code_e (*create)(Record**), qra_error_code_e (*destroy)(Record*),
                const char* name) {
    SCOPED_TRACE(name);
    LogCapture log;
    Record* record = nullptr;

    EXPECT_EQ(create(nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log.contains("Invalid param."));
    EXPECT_EQ(destroy(nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(create(&record), QRA_ERROR_NONE);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(destroy(record), QRA_ERROR_NONE);
}

}  // namespace

#define CHECK_TEXT(accessor, record, suffix, member)                                  \
    check_text(static_cast<qra_##record##_s*>(accessor()), &qra_##record##_s::member, \
               qra_param_set_##record##_##suffix, qra_param_get_##record##_##suffix, #suffix)
#define CHECK_VALUE(accessor, record, suffix, type, member, at_first, value)   \
    check_value<qra_##record##_s, type>(accessor(), &qra_##record##_s::member, \
                                        qra_param_set_##record##_##suffix,     \
                                        qra_param_get_##record##_##suffix, at_first, value, #suffix)

TEST_F(QraParam, EachRecordIsMadeAndFreed) {
    check_life(qra_create_general_param, qra_destroy_general_param, "general");
    check_life(qra_create_page_param, qra_destroy_page_param, "page");
    check_life(qra_create_share_param, qra_destroy_share_param, "share");
    check_life(qra_create_share_user_data_param, qra_destroy_share_user_data_param, "share_user_data");
    check_life(qra_create_playlist_file_param, qra_destroy_playlist_file_param, "playlist_file");
    check_life(qra_create_playlist_item_param, qra_destroy_playlist_item_param, "playlist_item");
    check_life(qra_create_comment_param, qra_destroy_comment_param, "comment");
    check_life(qra_create_like_param, qra_destroy_like_param, "like");
    check_life(qra_create_detail_param, qra_destroy_detail_param, "detail");
}

TEST_F(QraParam, TextsOfARequestAreKeptAndGivenBack) {
    CHECK_TEXT(general, general, plugin, pPluginName);
    CHECK_TEXT(general, general, source, pSource);
    CHECK_TEXT(general, general, path, szPath);
    CHECK_TEXT(general, general, folder_id, szFolderId);
    CHECK_TEXT(general, general, content_type, szContentType);
    CHECK_TEXT(general, general, sort_category, szSortCategory);
    CHECK_TEXT(general, general, filter, szFilter);
    CHECK_TEXT(general, general, filter_data_type, szFilterDataType);
    CHECK_TEXT(general, general, user_data, szUserData);
    CHECK_TEXT(general, general, prepare_data, pPrepareData);
    CHECK_TEXT(general, general, mode_name, szModeName);
    CHECK_TEXT(general, general, key_word, szKeyWord);
    CHECK_TEXT(general, general, playlist_name, szPlayListName);
    CHECK_TEXT(general, general, lang_id, szLangId);
    CHECK_TEXT(general, general, access_token, szAccessToken);
    CHECK_TEXT(general, general, duid, szDuid);
    CHECK_TEXT(general, general, country, szCountry);
    CHECK_TEXT(general, general, extension, szExtension);
}

TEST_F(QraParam, ValuesOfARequestAreKeptAndGivenBack) {
    CHECK_VALUE(general, general, prefetch_num, int, nPrefectchNum, 0, -7);
    CHECK_VALUE(general, general, window_size, int, nWindowSize, 0, -7);
    CHECK_VALUE(general, general, bus_value, int, nBusValue, 0, -7);
    CHECK_VALUE(general, general, device_value, int, nDeviceValue, 0, -7);
    CHECK_VALUE(general, general, is_uhd_meta, bool, bIsUHDMeta, false, true);
    CHECK_VALUE(general, general, update_uhd_meta, bool, bUpdateUHDMeta, false, true);
    CHECK_VALUE(general, general, data_style, int, nDataStyle, 1, -7);
    int provider = 0;
    CHECK_VALUE(general, general, service_provider, void*, pServiceProvider, nullptr, &provider);
}

TEST_F(QraParam, ValuesOfAPageStyleAreKeptAndGivenBack) {
    CHECK_VALUE(page, page_style, mask, int, mask, 0, 0x26);
    CHECK_VALUE(page, page_style, order, qra_page_order_e, order, QRA_PAGE_ORDER_ROW, QRA_PAGE_ORDER_COLUMN);
    CHECK_VALUE(page, page_style, group_index, int, group_index, 0, -1);
    CHECK_VALUE(page, page_style, row, int, row, 2, 3);
    CHECK_VALUE(page, page_style, column, int, column, 9, 4);
    CHECK_VALUE(page, page_style, padding, bool, padding, false, true);
}

TEST_F(QraParam, TextsOfAShareAreKeptAndGivenBack) {
    CHECK_TEXT(share, share, dest_dev_path, dest_dev_path);
    CHECK_TEXT(share, share, user_id, user_id);
    CHECK_TEXT(share, share, request_url, request_url);
    CHECK_TEXT(share, share, passwd, passwd);
    CHECK_TEXT(share, share, access_token, access_token);
    CHECK_TEXT(share, share, access_id, access_id);
    CHECK_TEXT(share, share, ra_instance_id, ra_instance_id);
    CHECK_TEXT(share, share, ra_group_id, ra_group_id);
    CHECK_TEXT(share, share, ra_peer_id, ra_peer_id);
    CHECK_TEXT(share, share, dlna_device_id, dlna_device_id);
    CHECK_TEXT(share, share, mount_path, mount_path);
    CHECK_TEXT(share, share, playlist_name, playlist_name);
}

TEST_F(QraParam, ValuesOfAShareAreKeptAndGivenBack) {
    CHECK_VALUE(share, share, source_dev_type, qra_dev_type_e, source_dev_type, QRA_DEV_TYPE_DEFAULT,
                QRA_DEV_TYPE_PTP);
    CHECK_VALUE(share, share, dest_dev_type, qra_dev_type_e, dest_dev_type, QRA_DEV_TYPE_DEFAULT,
                QRA_DEV_TYPE_DLNA);
    int provider = 0;
    CHECK_VALUE(share, share, dlna_service_provider, void*, dlna_service_provider, nullptr, &provider);
    CHECK_VALUE(share, share, lock, bool, lock, false, true);
}

TEST_F(QraParam, ServiceProviderOfAShareIsNeverNullThatOfARequestMayBe) {
    int provider = 0;
    EXPECT_EQ(qra_param_set_share_dlna_service_provider(share(), &provider), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_share_dlna_service_provider(share(), nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(share()->dlna_service_provider, &provider);

    EXPECT_EQ(qra_param_set_general_service_provider(general(), &provider), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_general_service_provider(general(), nullptr), QRA_ERROR_NONE);
    EXPECT_EQ(general()->pServiceProvider, nullptr);
}

TEST_F(QraParam, ShareUserDataHasSettersOnly) {
    const Owned<qra_share_user_data_s> record(qra_create_share_user_data_param,
                                              qra_destroy_share_user_data_param);
    const qra_share_cb callback = [](void*, CQRASendHandle*, qra_event_e, qra_share_status_info_s*) {
        return true;
    };
    int user_data = 0;

    EXPECT_EQ(qra_param_set_share_user_data_udata(record, &user_data), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_share_user_data_cb(record, callback), QRA_ERROR_NONE);
    EXPECT_EQ(record->udata, &user_data);
    EXPECT_EQ(record->cb, callback);

    EXPECT_EQ(qra_param_set_share_user_data_udata(nullptr, &user_data), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_param_set_share_user_data_cb(nullptr, callback), QRA_ERROR_INVALID_PARAM);
}

TEST_F(QraParam, FieldsOfAPlaylistFileAreKeptAndGivenBack) {
    CHECK_TEXT(playlist_file, playlist_file, path, path);
    CHECK_TEXT(playlist_file, playlist_file, name, name);
    CHECK_VALUE(playlist_file, playlist_file, max_item_count, int, max_item_count, 0, 100);
}

TEST_F(QraParam, TextsOfAPlaylistItemAreKeptAndGivenBack) {
    CHECK_TEXT(playlist_item, playlist_item, media_id, media_id);
    CHECK_TEXT(playlist_item, playlist_item, title, title);
    CHECK_TEXT(playlist_item, playlist_item, path, path);
    CHECK_TEXT(playlist_item, playlist_item, mime_type, mime_type);
    CHECK_TEXT(playlist_item, playlist_item, artist, artist);
    CHECK_TEXT(playlist_item, playlist_item, album, album);
    CHECK_TEXT(playlist_item, playlist_item, genre, genre);
    CHECK_TEXT(playlist_item, playlist_item, year, year);
    CHECK_TEXT(playlist_item, playlist_item, thumbnail_path, thumbnail_path);
    CHECK_TEXT(playlist_item, playlist_item, location_tag, location_tag);
    CHECK_TEXT(playlist_item, playlist_item, format, format);
    CHECK_TEXT(playlist_item, playlist_item, name, name);
}

TEST_F(QraParam, ValuesOfAPlaylistItemAreKeptAndGivenBack) {
    CHECK_VALUE(playlist_item, playlist_item, duration, unsigned long long, duration, 0, 1ULL << 63);
    CHECK_VALUE(playlist_item, playlist_item, size, unsigned long long, size, 0, 1ULL << 63);
    CHECK_VALUE(playlist_item, playlist_item, addtime, time_t, addtime, 0, 1600000000);
    CHECK_VALUE(playlist_item, playlist_item, modtime, time_t, modtime, 0, 1600000000);
    CHECK_VALUE(playlist_item, playlist_item, playcount, int, playcount, 0, -7);
    CHECK_VALUE(playlist_item, playlist_item, samplerate, int, samplerate, 0, -7);
    CHECK_VALUE(playlist_item, playlist_item, bit_resolution, int, bit_resolution, 0, -7);
    CHECK_VALUE(playlist_item, playlist_item, bit_rate, int, bit_rate, 0, -7);
    CHECK_VALUE(playlist_item, playlist_item, media_type, int, media_type, 0, -7);
    CHECK_VALUE(playlist_item, playlist_item, drm, bool, drm, false, true);
}

TEST_F(QraParam, CommentLikeAndDetailAccessorsDoNothing) {
    const Owned<qra_comment_s> comment(qra_create_comment_param, qra_destroy_comment_param);
    const Owned<qra_like_s> like(qra_create_like_param, qra_destroy_like_param);
    const Owned<qra_detail_s> detail(qra_create_detail_param, qra_destroy_detail_param);
    char before[] = "before";
    char* text = before;
    bool flag = true;
    int number = 7;

    EXPECT_EQ(qra_param_set_comment_source(comment, "x"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_comment_source(comment, &text), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_comment_comment(comment, "x"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_comment_comment(comment, &text), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_comment_user_data(comment, nullptr), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_comment_user_data(nullptr, nullptr), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_like_source(like, "x"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_like_source(like, &text), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_like_user_data(like, "x"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_like_user_data(like, &text), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_like_is_like(like, true), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_like_is_like(like, &flag), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_detail_source(detail, "x"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_detail_source(detail, &text), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_detail_user_data(nullptr, "x"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_detail_user_data(detail, &text), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_set_detail_page_index(detail, 5), QRA_ERROR_NONE);
    EXPECT_EQ(qra_param_get_detail_page_index(detail, &number), QRA_ERROR_NONE);

    EXPECT_EQ(text, before);
    EXPECT_TRUE(flag);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(comment->source, nullptr);
    EXPECT_FALSE(like->is_like);
    EXPECT_EQ(detail->page_index, 0);
}
