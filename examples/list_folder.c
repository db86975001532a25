/* Lists a folder of an attached drive, a line of JSON for each tile: list_folder PATH */
#include <qra/qra_content_agent.h>
#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>

struct answer {
    sem_t came;
    qra_event_e event;
};

static bool on_answer(void* data, CQRAAgentHandle* list, qra_event_e event, int value, const char* text) {
    struct answer* answer = data; /* on a thread of the library */
    (void)list, (void)value, (void)text;
    if (event == QRA_EVENT_LIST_UPDATE) /* may come later, when the folder has changed */
        return true;
    answer->event = event;
    return sem_post(&answer->came) == 0;
}

int main(int argc, char** argv) {
    struct answer answer;
    qra_general_param_h request = NULL;
    qra_page_param_h page = NULL;
    qra_agent_handler_h list = NULL; /* null: a new request */
    char* tile = NULL;
    int count = 0;

    sem_init(&answer.came, 0, 0);
    qra_create_general_param(&request);
    qra_param_set_general_source(request, "SOURCE_MSC");
    qra_param_set_general_path(request, argc > 1 ? argv[1] : "");
    qra_param_set_general_sort_category(request, "CATEGORY-FOLDER-TITLE");
    qra_param_set_general_content_type(request, "CONTENT-FOLDER");
    if (argc < 2 || qra_request_list_v2(request, on_answer, &answer, &list) != QRA_ERROR_NONE)
        return EXIT_FAILURE;
    sem_wait(&answer.came);
    if (answer.event != QRA_EVENT_LIST_SUCCESS) { /* a path on no drive, say; the log tells */
        qra_disconnect_v2(list);
        qra_destroy_general_param(request);
        return EXIT_FAILURE;
    }
    qra_create_page_param(&page);              /* pages of 2 rows and 9 columns */
    qra_param_set_page_style_mask(page, 0x26); /* with folders, media and the up-folder tile */
    qra_set_page_style_v2(list, page);
    qra_get_item_count_v2(list, &count);
    for (int index = 0; index < count && qra_get_item_v2(list, index, &tile) == QRA_ERROR_NONE; ++index) {
        fputs(tile, stdout);
        free(tile);
    }
    qra_disconnect_v2(list);
    qra_destroy_page_param(page);
    qra_destroy_general_param(request);
    return EXIT_SUCCESS;
}
