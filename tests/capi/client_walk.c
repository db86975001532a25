/* What a media browser does with a folder, from request to disconnect, in plain C. */
#include <stdlib.h>
#include <string.h>

#include "client_lists.h"

enum { FOLDERS_MEDIA_AND_UP_FOLDER = 0x26, SELECTED_ITEMS = 0x40 };

/* Lists `path`; `prepare_data` brings an earlier selection back, or is null. */
static int open_list(const char* path, const char* prepare_data, qra_agent_handler_h* handle) {
    const list_request_s request = {.source = "SOURCE_MSC",
                                    .path = path,
                                    .content_type = "CONTENT-FOLDER",
                                    .sort_category = "CATEGORY-FOLDER-TITLE",
                                    .prepare_data = prepare_data};
    qra_event_e event = QRA_EVENT_LIST_FAILED;
    EXPECT(request_list(&request, handle, &event) == 0);
    EXPECT(event == QRA_EVENT_LIST_SUCCESS);
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
