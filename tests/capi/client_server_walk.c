/* What a media browser does with the servers of the home network, from connect to disconnect, in plain C. */
#include <stdlib.h>
#include <string.h>

#include "client_lists.h"

enum { FOLDERS_AND_MEDIA = 0x06, MEDIA = 0x04, GROUP_HEADERS = 0x08, POSITION = 95, LOOKS = 1000 };

/* What comes on threads of the home network service. */
typedef struct {
    pthread_mutex_t mutex;
    pthread_cond_t changed;
    int state;      /* of the connection, -1 as long as none was told */
    bool is_there;  /* the server */
    int bookmark;   /* -1 as long as none was told */
    const char* id; /* of the server */
} news_s;

static void on_state(qra_nbl_serviceconnector_state_e state, void* user_data) {
    news_s* news = user_data;
    pthread_mutex_lock(&news->mutex);
    news->state = state;
    pthread_cond_broadcast(&news->changed);
    pthread_mutex_unlock(&news->mutex);
}

static void on_server(void* user_data, int event, qra_storage_h storage) {
    news_s* news = user_data;
    pthread_mutex_lock(&news->mutex);
    if (strcmp(CALL(qra_storage_get_id)(storage), news->id) == 0) {
        news->is_there = event == QRA_STORAGE_EVENT_ATTACHED;
        pthread_cond_broadcast(&news->changed);
    }
    pthread_mutex_unlock(&news->mutex);
}

static bool on_bookmark(void* user_data, int seconds) {
    news_s* news = user_data;
    pthread_mutex_lock(&news->mutex);
    news->bookmark = seconds;
    pthread_cond_broadcast(&news->changed);
    pthread_mutex_unlock(&news->mutex);
    return true;
}

static void wait_for_state(news_s* news, int state) {
    pthread_mutex_lock(&news->mutex);
    while (news->state != state) {
        pthread_cond_wait(&news->changed, &news->mutex);
    }
    pthread_mutex_unlock(&news->mutex);
}

/* It is in the list, or comes later. */
static int wait_for_server(news_s* news) {
    qra_storage_list_h list = NULL;
    EXPECT_OK(CALL(qra_get_dlna_list)(&list));
    const int count = CALL(qra_storage_get_list_count)(list);
    EXPECT_OK(CALL(qra_storage_list_destory)(list));
    pthread_mutex_lock(&news->mutex);
    news->is_there = news->is_there || count > 0;
    while (!news->is_there) {
        pthread_cond_wait(&news->changed, &news->mutex);
    }
    pthread_mutex_unlock(&news->mutex);
    return 0;
}

static int wait_for_bookmark(news_s* news) {
    pthread_mutex_lock(&news->mutex);
    while (news->bookmark < 0) {
        pthread_cond_wait(&news->changed, &news->mutex);
    }
    const int seconds = news->bookmark;
    news->bookmark = -1;
    pthread_mutex_unlock(&news->mutex);
    return seconds;
}

static int read_servers(const char* server_id) {
    qra_storage_list_h list = NULL;
    qra_storage_list_h copy = NULL;
    qra_storage_h server = NULL;
    EXPECT_OK(CALL(qra_get_dlna_list)(&list));
    EXPECT(CALL(qra_storage_get_list_count)(list) == 1);
    EXPECT_OK(CALL(qra_storage_list_clone)(&copy, list));
    EXPECT_OK(CALL(qra_storage_list_destory)(list));
    EXPECT_OK(CALL(qra_storage_clone)(&server, CALL(qra_storage_get_storage)(0, copy)));
    EXPECT_OK(CALL(qra_storage_list_destory)(copy));
    EXPECT(strcmp(CALL(qra_storage_get_id)(server), server_id) == 0);
    EXPECT(strcmp(CALL(qra_storage_get_name)(server), "Attic") == 0);
    EXPECT(strcmp(CALL(qra_storage_get_ip)(server), "127.0.0.1") == 0);
    EXPECT(CALL(qra_storage_get_bKelvoraDevice)(server));
    EXPECT_OK(CALL(qra_storage_destroy)(server));
    return 0;
}

/* The list index of a tile, by its id. */
static int find(qra_agent_handler_h handle, const char* id, int* index) {
    char text[64];
    snprintf(text, sizeof text, "%s", id);
    EXPECT_OK(CALL(qra_get_page_index_v2)(handle, text, index));
    return 0;
}

static int read_picture(qra_agent_handler_h handle) {
    int index = -1;
    int type = 0;
    int width = 0;
    char* title = NULL;
    char* address = NULL;
    EXPECT(find(handle, "p-3", &index) == 0);
    EXPECT(index == 3);
    EXPECT_OK(CALL(qra_move_to_index_v2)(handle, index));
    EXPECT_OK(CALL(qra_get_item_value_int_v2)(handle, "MEDIA_TYPE", &type));
    EXPECT(type == QRA_MEDIA_TYPE_IMAGE);
    EXPECT_OK(CALL(qra_get_item_value_int_v2)(handle, "WIDTH", &width));
    EXPECT(width == 640);
    EXPECT_OK(CALL(qra_get_item_value_char_v2)(handle, "TITLE", &title));
    EXPECT(title[0] != '\0');
    EXPECT_OK(CALL(qra_get_item_value_char_v2)(handle, "URL", &address));
    EXPECT(strncmp(address, "http://127.0.0.1:", strlen("http://127.0.0.1:")) == 0);
    free(title);
    free(address);
    return 0;
}

/* Where the item at the cursor was left: kept, and read back. The library does not tell when it is kept. */
static int keep_position(qra_agent_handler_h handle, news_s* news) {
    int seconds = -1;
    EXPECT_OK(CALL(qra_set_item_value_int_v2)(handle, "PLAYED_POSITION", POSITION));
    for (int i = 0; i < LOOKS && seconds != POSITION; ++i) {
        EXPECT_OK(CALL(qra_get_book_mark_v2)(handle, on_bookmark, news));
        seconds = wait_for_bookmark(news);
    }
    EXPECT(seconds == POSITION);
    return 0;
}

/* The top of the server, then a folder of it with the same handle. */
static int walk_folders(const char* server_id, news_s* news) {
    list_request_s request = {.source = "SOURCE_DLNA",
                              .path = server_id,
                              .content_type = "CONTENT-FOLDER",
                              .sort_category = "CATEGORY-FOLDER",
                              .folder_id = "/"};
    qra_agent_handler_h handle = NULL;
    qra_event_e event = QRA_EVENT_LIST_FAILED;
    int index = -1;
    int count = -1;
    EXPECT(request_list(&request, &handle, &event) == 0);
    EXPECT(event == QRA_EVENT_LIST_SUCCESS);
    EXPECT(set_page_style(handle, FOLDERS_AND_MEDIA) == 0);
    EXPECT(find(handle, "p", &index) == 0);
    EXPECT_OK(CALL(qra_move_to_index_v2)(handle, index));
    request.folder_id = "p";
    EXPECT(request_list(&request, &handle, &event) == 0);
    EXPECT(event == QRA_EVENT_LIST_SUCCESS);
    EXPECT(set_page_style(handle, FOLDERS_AND_MEDIA) == 0);
    EXPECT_OK(CALL(qra_get_item_count_v2)(handle, &count));
    EXPECT(count == 5);
    EXPECT_OK(CALL(qra_get_item_count_by_type_v2)(handle, QRA_MEDIA_TYPE_IMAGE, &count));
    EXPECT(count == 5);
    EXPECT(read_picture(handle) == 0);
    EXPECT(keep_position(handle, news) == 0);
    request.folder_id = "nowhere";
    EXPECT(request_list(&request, &handle, &event) == 0);
    EXPECT(event == QRA_EVENT_DLNA_ITEM_NOT_EXIST);
    EXPECT_OK(CALL(qra_disconnect_v2)(handle));
    return 0;
}

/* Artists with the counts of their songs, then what a search finds. */
static int walk_views(const char* server_id) {
    list_request_s request = {.source = "SOURCE_DLNA",
                              .path = server_id,
                              .content_type = "CONTENT-MUSIC",
                              .sort_category = "CATEGORY-ARTIST",
                              .folder_id = "/"};
    qra_agent_handler_h handle = NULL;
    qra_event_e event = QRA_EVENT_LIST_FAILED;
    int groups = 0;
    int songs = 0;
    EXPECT(request_list(&request, &handle, &event) == 0);
    EXPECT(event == QRA_EVENT_LIST_SUCCESS);
    EXPECT(set_page_style(handle, GROUP_HEADERS) == 0);
    EXPECT_OK(CALL(qra_get_item_count_v2)(handle, &groups));
    for (int i = 0; i < groups; ++i) {
        int count = 0;
        EXPECT_OK(CALL(qra_move_to_index_v2)(handle, i));
        EXPECT_OK(CALL(qra_get_item_value_int_v2)(handle, "GROUP_ITEM_COUNT", &count));
        songs += count;
    }
    EXPECT(songs == 4);
    request.sort_category = "CATEGORY-KEYWORD-SEARCH";
    request.keyword = "00001";
    EXPECT(request_list(&request, &handle, &event) == 0);
    EXPECT(event == QRA_EVENT_LIST_SUCCESS);
    EXPECT(set_page_style(handle, MEDIA) == 0);
    EXPECT_OK(CALL(qra_get_item_count_v2)(handle, &songs));
    EXPECT(songs == 1);
    EXPECT_OK(CALL(qra_disconnect_v2)(handle));
    return 0;
}

/* The fields of records that name a server. */
static int fill_records(const char* server_id) {
    int provider = 0;
    void* given = NULL;
    char* id = NULL;
    qra_general_param_h general = NULL;
    qra_share_param_h share = NULL;
    EXPECT_OK(CALL(qra_create_general_param)(&general));
    EXPECT_OK(CALL(qra_param_set_general_service_provider)(general, &provider));
    EXPECT_OK(CALL(qra_param_get_general_service_provider)(general, &given));
    EXPECT(given == &provider);
    EXPECT_OK(CALL(qra_destroy_general_param)(general));
    EXPECT_OK(CALL(qra_create_share_param)(&share));
    EXPECT_OK(CALL(qra_param_set_share_dlna_device_id)(share, server_id));
    EXPECT_OK(CALL(qra_param_get_share_dlna_device_id)(share, &id));
    EXPECT(strcmp(id, server_id) == 0);
    free(id);
    given = NULL;
    EXPECT_OK(CALL(qra_param_set_share_dlna_service_provider)(share, &provider));
    EXPECT_OK(CALL(qra_param_get_share_dlna_service_provider)(share, &given));
    EXPECT(given == &provider);
    EXPECT_OK(CALL(qra_destroy_share_param)(share));
    return 0;
}

static int walk_connected(const char* server_id, news_s* news) {
    EXPECT_OK(CALL(qra_set_dlna_callback)(on_server, news));
    EXPECT(wait_for_server(news) == 0);
    EXPECT(read_servers(server_id) == 0);
    EXPECT(walk_folders(server_id, news) == 0);
    EXPECT(walk_views(server_id) == 0);
    EXPECT_OK(CALL(qra_unset_dlna_callback)());
    return 0;
}

int client_server_walk(const char* server_id) {
    static news_s news = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_COND_INITIALIZER, -1, false, -1, NULL};
    qra_storage_list_h list = NULL;
    news.id = server_id;
    news.is_there = false;
    EXPECT(CALL(qra_get_dlna_list)(&list) == QRA_ERROR_INTERNAL);
    EXPECT_OK(CALL(qra_Init_dlna_service)(on_state, &news));
    wait_for_state(&news, QRA_NBL_SERVICECONNECTOR_ENABLED);
    EXPECT(walk_connected(server_id, &news) == 0);
    EXPECT_OK(CALL(qra_finalize_dlna_service)(on_state, &news));
    wait_for_state(&news, QRA_NBL_SERVICECONNECTOR_DISABLED);
    EXPECT(CALL(qra_finalize_dlna_service)(on_state, &news) == QRA_ERROR_INTERNAL);
    EXPECT(CALL(qra_get_dlna_list)(&list) == QRA_ERROR_INTERNAL);
    return fill_records(server_id);
}
