/* Usage: c_client_test PATH. A client that links nothing but the shared library. */
#include "client_functions.h"

int main(int argc, char** argv) {
    return argc == 2 ? client_walk(argv[1]) : 2;
}
