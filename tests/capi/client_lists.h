/* What the C clients' walks have in common: lists, and what is said where one goes wrong. */
#ifndef QRA_TESTS_CAPI_CLIENT_LISTS_H
#define QRA_TESTS_CAPI_CLIENT_LISTS_H

#include <pthread.h>
#include <stdio.h>

#include "client_functions.h"

/* Both return 1 from a function that returns 0 when all goes well. */
#define EXPECT(condition)                                                             \
    do {                                                                              \
        if (!(condition)) {                                                           \
            fprintf(stderr, "%s:%d: not true: %s\n", __FILE__, __LINE__, #condition); \
            return 1;                                                                 \
        }                                                                             \
    } while (0)
#define EXPECT_OK(call) EXPECT((call) == QRA_ERROR_NONE)

/* What is asked for; a null text is not set. */
typedef struct {
    const char* source;
    const char* path;
    const char* content_type;
    const char* sort_category;
    const char* folder_id;
    const char* keyword;
    const char* prepare_data; /* brings an earlier selection back */
} list_request_s;

/* Asks for a list, with a new handle where `*handle` is null, and waits for the answer, which goes to
 * `event`. */
int request_list(const list_request_s* request, qra_agent_handler_h* handle, qra_event_e* event);

/* Lays a page of two rows and nine columns out. */
int set_page_style(qra_agent_handler_h handle, int mask);

#endif
