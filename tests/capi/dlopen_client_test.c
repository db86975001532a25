/* Usage: dlopen_client_test WALK PATH_OR_ID LIBRARY. A plug-in host: it loads the library, uses it, closes
 * it, and again. */
#include "client_functions.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

client_functions_s client_functions;

/* POSIX wants a function's address to fit a void*; C does not, so it is copied. */
static int look_up(void* library, const char* name, void* function) {
    void* address = dlsym(library, name);
    memcpy(function, &address, sizeof address);
    if (!address) {
        fprintf(stderr, "%s\n", dlerror());
    }
    return address != NULL;
}

static int walk_with_library(char** argv) {
    void* library = dlopen(argv[3], RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
#define LOOK_UP(name)                                       \
    if (!look_up(library, #name, &client_functions.name)) { \
        return 1;                                           \
    }
    CLIENT_FUNCTIONS(LOOK_UP)
    const int result = client_walk_of(argv);
    return dlclose(library) == 0 ? result : 1;
}

int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    const int first = walk_with_library(argv);
    return first != 0 ? first : walk_with_library(argv);
}
