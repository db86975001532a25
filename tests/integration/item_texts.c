/* Prints what qra_get_item_v2() gives for each tile of a list, for comparison with `qra list --json`.
 * item_texts PATH CONTENT SORT MASK KEYWORD EXTENSION UHD; an empty KEYWORD or EXTENSION is not sent. */
#include <qra/qra_content_agent.h>
#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct answer {
    sem_t given;
    qra_event_e event;
};

static bool on_answer(void* data, CQRAAgentHandle* list, qra_event_e event, int value, const char* text) {
    struct answer* answer = data;
    (void)list, (void)value, (void)text;
    answer->event = event;
    return sem_post(&answer->given) == 0;
}

static void fill(qra_general_param_h request, char** arguments) {
    qra_param_set_general_source(request, "SOURCE_MSC");
    qra_param_set_general_path(request, arguments[1]);
    qra_param_set_general_content_type(request, arguments[2]);
    qra_param_set_general_sort_category(request, arguments[3]);
    qra_param_set_general_key_word(request, arguments[5]);
    qra_param_set_general_extension(request, arguments[6]);
    qra_param_set_general_is_uhd_meta(request, strcmp(arguments[7], "uhd") == 0);
}

static int print_tiles(qra_agent_handler_h list, int mask) {
    qra_page_param_h page = NULL;
    int count = 0;
    qra_create_page_param(&page);
    qra_param_set_page_style_mask(page, mask);
    qra_param_set_page_style_group_index(page, -1);
    if (qra_set_page_style_v2(list, page) != QRA_ERROR_NONE ||
        qra_get_item_count_v2(list, &count) != QRA_ERROR_NONE) {
        return EXIT_FAILURE;
    }
    qra_destroy_page_param(page);
    for (int index = 0; index < count; ++index) {
        char* text = NULL;
        if (qra_get_item_v2(list, index, &text) != QRA_ERROR_NONE) {
            return EXIT_FAILURE;
        }
        fputs(text, stdout);
        free(text);
    }
    return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
    qra_general_param_h request = NULL;
    qra_agent_handler_h list = NULL;
    struct answer answer;
    int status = EXIT_FAILURE;

    if (argc != 8) {
        return EXIT_FAILURE;
    }
    sem_init(&answer.given, 0, 0);
    qra_create_general_param(&request);
    fill(request, argv);
    if (qra_request_list_v2(request, on_answer, &answer, &list) == QRA_ERROR_NONE) {
        sem_wait(&answer.given);
        if (answer.event == QRA_EVENT_LIST_SUCCESS) {
            status = print_tiles(list, (int)strtol(argv[4], NULL, 0));
        }
        qra_disconnect_v2(list);
    }
    qra_destroy_general_param(request);
    return status;
}
