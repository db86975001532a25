/* What a media browser does with a folder, from request to disconnect, in plain C. */
#include "client_functions.h"

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define EXPECT(condition)                                                             \
    do {                                                                              \
        if (!(condition)) {                                                           \
            fprintf(stderr, "%s:%d: not true: %s\n", __FILE__, __LINE__, #condition); \
            return 1;                                                                 \
        }                                                                             \
    } while (0)
#define EXPECT_OK(call) EXPECT((call) == QRA_ERROR_NONE)

enum { FOLDERS_MEDIA_AND_UP_FOLDER = 0x26, SELECTED_ITEMS = 0x40 };

/* Where the list callback, on a thread of the library, leaves its news. */
typedef struct {
    pthread_mutex_t mutex;
    pthread_cond_t changed;
    int answers;
    qra_event_e event;
} answer_s;

static bool on_answer(void* user_data, CQRAAgentHandle* handle, qra_event_e event, int value,
                      const char* data) {
    answer_s* answer = user_data;
    (void)handle;
    (void)value;
    (void)data;
    pthread_mutex_lock(&answer->mutex);
    answer->event = event;
    ++answer->answers;
    pthread_cond_signal(&answer->changed);
    pthread_mutex_unlock(&answer->mutex);
    return true;
}

static qra_event_e wait_for_answer(answer_s* answer) {
    pthread_mutex_lock(&answer->mutex);
    while (answer->answers == 0) {
        pthread_cond_wait(&answer->changed, &answer->mutex);
    }
    const qra_event_e event = answer->event;
    pthread_mutex_unlock(&answer->mutex);
    return event;
}

/* Lists `path`; `prepare_data` brings an earlier selection back, or is null. */
static int open_list(const char* path, const char* prepare_data, qra_agent_handler_h* handle) {
    answer_s answer = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_COND_INITIALIZER, 0, QRA_EVENT_LIST_FAILED};
    qra_general_param_h request = NULL;
    EXPECT_OK(CALL(qra_create_general_param)(&request));
    EXPECT_OK(CALL(qra_param_set_general_source)(request, "SOURCE_MSC"));
    EXPECT_OK(CALL(qra_param_set_general_path)(request, path));
    EXPECT_OK(CALL(qra_param_set_general_content_type)(request, "CONTENT-FOLDER"));
    EXPECT_OK(CALL(qra_param_set_general_sort_category)(request, "CATEGORY-FOLDER-TITLE"));
    if (prepare_data) {
        EXPECT_OK(CALL(qra_param_set_general_prepare_data)(request, prepare_data));
    }
    EXPECT_OK(CALL(qra_request_list_v2)(request, on_answer, &answer, handle));
    EXPECT_OK(CALL(qra_destroy_general_param)(request));
    EXPECT(wait_for_answer(&answer) == QRA_EVENT_LIST_SUCCESS);
    return 0;
}

static int set_page_style(qra_agent_handler_h handle, int mask) {
    qra_page_param_h style = NULL;
    EXPECT_OK(CALL(qra_create_page_param)(&style));
    EXPECT_OK(CALL(qra_param_set_page_style_mask)(style, mask));
    EXPECT_OK(CALL(qra_param_set_page_style_row)(style, 2));
    EXPECT_OK(CALL(qra_param_set_page_style_column)(style, 9));
    EXPECT_OK(CALL(qra_param_set_page_style_group_index)(style, -1));
    EXPECT_OK(CALL(qra_set_page_style_v2)(handle, style));
    EXPECT_OK(CALL(qra_destroy_page_param)(style));
    return 0;
}

/* Reads all tiles; the list index of the picture "3.bmp" goes to `picture`. */
static int read_tiles(qra_agent_handler_h handle, int* picture) {
    int count = 0;
    int pictures = 0;
    int folders = 0;
    EXPECT_OK(CALL(qra_get_item_count_v2)(handle, &count));
    for (int i = 0; i < count; ++i) {
        char* item = NULL;
        int type = 0;
        EXPECT_OK(CALL(qra_get_item_v2)(handle, i, &item));
        EXPECT(item[0] == '{');
        if (strstr(item, "3.bmp")) {
            *picture = i;
        }
        free(item);
        EXPECT_OK(CALL(qra_move_to_index_v2)(handle, i));
        EXPECT_OK(CALL(qra_get_item_value_int_v2)(handle, "MEDIA_TYPE", &type));
        pictures += type == QRA_MEDIA_TYPE_IMAGE;
        folders += type == QRA_MEDIA_TYPE_FOLDER;
    }
    EXPECT(pictures == 4);
    EXPECT(folders == 1);
    EXPECT(CALL(qra_move_to_index_v2)(handle, count) != QRA_ERROR_NONE);
    return 0;
}

static int read_picture(qra_agent_handler_h handle, int picture) {
    unsigned long long size = 0;
    char* path = NULL;
    char* id = NULL;
    int index = -1;
    EXPECT_OK(CALL(qra_move_to_index_v2)(handle, picture));
    EXPECT_OK(CALL(qra_get_item_value_lint_v2)(handle, "SIZE", &size));
    EXPECT(size == 58);
    EXPECT_OK(CALL(qra_get_item_value_char_v2)(handle, "FILE_PATH", &path));
    EXPECT(strcmp(path + strlen(path) - strlen("/3.bmp"), "/3.bmp") == 0);
    EXPECT_OK(CALL(qra_get_item_value_char_v2)(handle, "ID_QRA", &id));
    EXPECT_OK(CALL(qra_get_page_index_v2)(handle, id, &index));
    EXPECT(index == picture);
    EXPECT(CALL(qra_get_item_value_char_v2)(handle, "SIZE", &path) == QRA_ERROR_INTERNAL);
    free(path);
    free(id);
    return 0;
}

/* Selects the picture and prepares it for a player. */
static int select_picture(qra_agent_handler_h handle, int picture, char** play_data) {
    bool selected = false;
    int count = -1;
    EXPECT_OK(CALL(qra_toggle_select_v2)(handle, picture));
    EXPECT_OK(CALL(qra_get_selected_state_v2)(handle, picture, &selected));
    EXPECT(selected);
    EXPECT_OK(CALL(qra_get_selection_count_v2)(handle, &count));
    EXPECT(count == 1);
    EXPECT_OK(CALL(qra_prepare_play_data_v2)(handle, play_data));
    EXPECT(strstr(*play_data, "qra_selectlist_shmname"));
    EXPECT_OK(CALL(qra_deselect_all_v2)(handle));
    EXPECT_OK(CALL(qra_get_selection_count_v2)(handle, &count));
    EXPECT(count == 0);
    return 0;
}

/* A player takes the selection over and walks it alone. */
static int play(const char* path, const char* play_data) {
    qra_agent_handler_h handle = NULL;
    int count = -1;
    char* file = NULL;
    EXPECT(open_list(path, play_data, &handle) == 0);
    EXPECT(set_page_style(handle, FOLDERS_MEDIA_AND_UP_FOLDER) == 0);
    EXPECT_OK(CALL(qra_set_navigation_v2)(handle, QRA_NAVIGATION_TYPE_SELECTED));
    EXPECT_OK(CALL(qra_get_item_count_v2)(handle, &count));
    EXPECT(count == 1);
    EXPECT_OK(CALL(qra_move_to_next_v2)(handle));
    EXPECT(CALL(qra_move_to_next_v2)(handle) == QRA_ERROR_INVALID_INDEX);
    EXPECT_OK(CALL(qra_set_navigation_v2)(handle, QRA_NAVIGATION_TYPE_ALL));
    EXPECT(set_page_style(handle, SELECTED_ITEMS) == 0);
    EXPECT_OK(CALL(qra_get_item_count_v2)(handle, &count));
    EXPECT(count >= 1);
    EXPECT_OK(CALL(qra_move_to_index_v2)(handle, 0));
    EXPECT_OK(CALL(qra_get_item_value_char_v2)(handle, "FILE_PATH", &file));
    EXPECT(strstr(file, "/3.bmp"));
    free(file);
    EXPECT_OK(CALL(qra_disconnect_v2)(handle));
    return 0;
}

int client_walk(const char* path) {
    qra_agent_handler_h handle = NULL;
    int picture = -1;
    char* play_data = NULL;
    EXPECT(open_list(path, NULL, &handle) == 0);
    EXPECT(CALL(qra_move_to_index_v2)(handle, 0) == QRA_ERROR_INVALID_HANDLE);
    EXPECT(set_page_style(handle, FOLDERS_MEDIA_AND_UP_FOLDER) == 0);
    EXPECT(read_tiles(handle, &picture) == 0);
    EXPECT(picture >= 0);
    EXPECT(read_picture(handle, picture) == 0);
    EXPECT(select_picture(handle, picture, &play_data) == 0);
    EXPECT_OK(CALL(qra_disconnect_v2)(handle));
    EXPECT(CALL(qra_disconnect_v2)(handle) == QRA_ERROR_INVALID_HANDLE);
    EXPECT(play(path, play_data) == 0);
    free(play_data);
    return 0;
}
