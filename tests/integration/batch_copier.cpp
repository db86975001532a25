// Copies all files of a folder and prints a line for each event: what the test that kills it watches.

#include <cstdio>

#include "tests/integration/batch_list.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: batch_copier FOLDER DESTINATION\n");
        return 1;
    }
    BatchList list(argv[1]);
    if (!list.ok()) {
        return 2;
    }
    list.select_all();
    list.navigate(QRA_NAVIGATION_TYPE_SELECTED);
    const int event = list.run(QRA_PROCESSOR_TYPE_COPY, argv[2],
                               [](qra_event_e event, const qra_share_status_info_s& status) {
                                   std::printf("%d %d\n", event, status.nFinishedCount);
                                   std::fflush(stdout);
                               });
    return event == QRA_EVENT_BATCH_FINISHED ? 0 : 3;
}
