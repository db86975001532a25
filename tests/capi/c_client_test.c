/* Usage: c_client_test WALK PATH_OR_ID. A client that links nothing but the shared library. */
#include "client_functions.h"

int main(int argc, char** argv) {
    return argc == 3 ? client_walk_of(argv) : 2;
}
