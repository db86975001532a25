/* The functions that client_walk.c uses: linked directly, or with CLIENT_LOADS_LIBRARY looked up with
 * dlsym(). */
#ifndef QRA_TESTS_CAPI_CLIENT_FUNCTIONS_H
#define QRA_TESTS_CAPI_CLIENT_FUNCTIONS_H

#include <qra/qra_content_agent.h>

#define CLIENT_FUNCTIONS(F)                      \
    F(qra_Init_dlna_service)                     \
    F(qra_create_general_param)                  \
    F(qra_create_page_param)                     \
    F(qra_create_share_param)                    \
    F(qra_deselect_all_v2)                       \
    F(qra_destroy_general_param)                 \
    F(qra_destroy_page_param)                    \
    F(qra_destroy_share_param)                   \
    F(qra_disconnect_v2)                         \
    F(qra_finalize_dlna_service)                 \
    F(qra_get_book_mark_v2)                      \
    F(qra_get_dlna_list)                         \
    F(qra_get_item_count_by_type_v2)             \
    F(qra_get_item_count_v2)                     \
    F(qra_get_item_v2)                           \
    F(qra_get_item_value_char_v2)                \
    F(qra_get_item_value_int_v2)                 \
    F(qra_get_item_value_lint_v2)                \
    F(qra_get_page_index_v2)                     \
    F(qra_get_selected_state_v2)                 \
    F(qra_get_selection_count_v2)                \
    F(qra_move_to_index_v2)                      \
    F(qra_move_to_next_v2)                       \
    F(qra_param_get_general_service_provider)    \
    F(qra_param_get_share_dlna_device_id)        \
    F(qra_param_get_share_dlna_service_provider) \
    F(qra_param_set_general_content_type)        \
    F(qra_param_set_general_folder_id)           \
    F(qra_param_set_general_key_word)            \
    F(qra_param_set_general_path)                \
    F(qra_param_set_general_prepare_data)        \
    F(qra_param_set_general_service_provider)    \
    F(qra_param_set_general_sort_category)       \
    F(qra_param_set_general_source)              \
    F(qra_param_set_page_style_column)           \
    F(qra_param_set_page_style_group_index)      \
    F(qra_param_set_page_style_mask)             \
    F(qra_param_set_page_style_row)              \
    F(qra_param_set_share_dlna_device_id)        \
    F(qra_param_set_share_dlna_service_provider) \
    F(qra_prepare_play_data_v2)                  \
    F(qra_request_list_v2)                       \
    F(qra_set_dlna_callback)                     \
    F(qra_set_item_value_int_v2)                 \
    F(qra_set_navigation_v2)                     \
    F(qra_set_page_style_v2)                     \
    F(qra_storage_clone)                         \
    F(qra_storage_destroy)                       \
    F(qra_storage_get_bKelvoraDevice)            \
    F(qra_storage_get_id)                        \
    F(qra_storage_get_ip)                        \
    F(qra_storage_get_list_count)                \
    F(qra_storage_get_name)                      \
    F(qra_storage_get_storage)                   \
    F(qra_storage_list_clone)                    \
    F(qra_storage_list_destory)                  \
    F(qra_toggle_select_v2)                      \
    F(qra_unset_dlna_callback)

#ifdef CLIENT_LOADS_LIBRARY
#define CLIENT_POINTER(name) __typeof__(name)* name;
typedef struct {
    CLIENT_FUNCTIONS(CLIENT_POINTER)
} client_functions_s;
extern client_functions_s client_functions;
#define CALL(name) client_functions.name
#else
#define CALL(name) name
#endif

/* Each walks once; 0, or 1 after a line about what went wrong. */

/* The drive at `path`. */
int client_walk(const char* path);
/* The media server of that id, which has the five pictures "p-0" to "p-4" in the folder "p", and the four
 * songs of the folder "m". */
int client_server_walk(const char* server_id);

/* The walk that the arguments of main() name: "drive" PATH or "server" ID. */
static inline int client_walk_of(char** argv) {
    return argv[1][0] == 's' ? client_server_walk(argv[2]) : client_walk(argv[2]);
}

#endif
