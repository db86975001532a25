#include "client_lists.h"

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

static int fill(qra_general_param_h param, const list_request_s* request) {
    EXPECT_OK(CALL(qra_param_set_general_source)(param, request->source));
    EXPECT_OK(CALL(qra_param_set_general_path)(param, request->path));
    EXPECT_OK(CALL(qra_param_set_general_content_type)(param, request->content_type));
    EXPECT_OK(CALL(qra_param_set_general_sort_category)(param, request->sort_category));
    if (request->folder_id) {
        EXPECT_OK(CALL(qra_param_set_general_folder_id)(param, request->folder_id));
    }
    if (request->keyword) {
        EXPECT_OK(CALL(qra_param_set_general_key_word)(param, request->keyword));
    }
    if (request->prepare_data) {
        EXPECT_OK(CALL(qra_param_set_general_prepare_data)(param, request->prepare_data));
    }
    return 0;
}

int request_list(const list_request_s* request, qra_agent_handler_h* handle, qra_event_e* event) {
    answer_s answer = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_COND_INITIALIZER, 0, QRA_EVENT_LIST_FAILED};
    qra_general_param_h param = NULL;
    EXPECT_OK(CALL(qra_create_general_param)(&param));
    EXPECT(fill(param, request) == 0);
    EXPECT_OK(CALL(qra_request_list_v2)(param, on_answer, &answer, handle));
    EXPECT_OK(CALL(qra_destroy_general_param)(param));
    *event = wait_for_answer(&answer);
    return 0;
}

int set_page_style(qra_agent_handler_h handle, int mask) {
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
