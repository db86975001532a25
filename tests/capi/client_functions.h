/* The functions that client_walk.c uses: linked directly, or with CLIENT_LOADS_LIBRARY looked up with
 * dlsym(). */
#ifndef QRA_TESTS_CAPI_CLIENT_FUNCTIONS_H
#define QRA_TESTS_CAPI_CLIENT_FUNCTIONS_H

#include <qra/qra_content_agent.h>

#define CLIENT_FUNCTIONS(F)                 \
    F(qra_create_general_param)             \
    F(qra_create_page_param)                \
    F(qra_deselect_all_v2)                  \
    F(qra_destroy_general_param)            \
    F(qra_destroy_page_param)               \
    F(qra_disconnect_v2)                    \
    F(qra_get_item_count_v2)                \
    F(qra_get_item_v2)                      \
    F(qra_get_item_value_char_v2)           \
    F(qra_get_item_value_int_v2)            \
    F(qra_get_item_value_lint_v2)           \
    F(qra_get_page_index_v2)                \
    F(qra_get_selected_state_v2)            \
    F(qra_get_selection_count_v2)           \
    F(qra_move_to_index_v2)                 \
    F(qra_move_to_next_v2)                  \
    F(qra_param_set_general_content_type)   \
    F(qra_param_set_general_path)           \
    F(qra_param_set_general_prepare_data)   \
    F(qra_param_set_general_sort_category)  \
    F(qra_param_set_general_source)         \
    F(qra_param_set_page_style_column)      \
    F(qra_param_set_page_style_group_index) \
    F(qra_param_set_page_style_mask)        \
    F(qra_param_set_page_style_row)         \
    F(qra_prepare_play_data_v2)             \
    F(qra_request_list_v2)                  \
    F(qra_set_navigation_v2)                \
    F(qra_set_page_style_v2)                \
    F(qra_toggle_select_v2)

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

/* Walks the drive at `path` once; 0, or 1 after a line about what went wrong. */
int client_walk(const char* path);

#endif
