/* A client that was built from the installed files only. */
#include <qra/qra_content_agent.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(void) {
    qra_general_param_h request = NULL;
    char* source = NULL;
    if (qra_create_general_param(&request) != QRA_ERROR_NONE ||
        qra_param_set_general_source(request, "SOURCE_MSC") != QRA_ERROR_NONE ||
        qra_param_get_general_source(request, &source) != QRA_ERROR_NONE) {
        return 1;
    }
    const int equal = strcmp(source, "SOURCE_MSC") == 0;
    free(source);
    qra_destroy_general_param(request);
    printf("qra-content-agent %d.%d.%d\n", QRA_CONTENT_AGENT_VERSION_MAJOR, QRA_CONTENT_AGENT_VERSION_MINOR,
           QRA_CONTENT_AGENT_VERSION_PATCH);
    return equal ? 0 : 1;
}
