// The shared memory objects of selections have names that processes count from 1. A test program that links
// this has its own ones all the same: the names that it asks the system for have its process id at their end.
#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>

namespace {

constexpr char kCounted[] = "qra_selectedlist_";

// Of the program also in the child of a death test: so the program can remove what the child leaves behind.
const std::string g_own_end = "_" + std::to_string(getpid());

std::string own_name(const char* name) {
    const std::string text = name;
    const size_t number = text.rfind(kCounted, 0) == 0 ? sizeof kCounted - 1 : std::string::npos;
    const bool counted =
        number < text.size() && text.find_first_not_of("0123456789", number) == std::string::npos;
    return counted ? text + g_own_end : text;
}

template <class Function>
Function* next(const char* symbol) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

}  // namespace

extern "C" {

int shm_open(const char* name, int flags, mode_t mode) {
    return next<decltype(shm_open)>("shm_open")(own_name(name).c_str(), flags, mode);
}

int shm_unlink(const char* name) {
    return next<decltype(shm_unlink)>("shm_unlink")(own_name(name).c_str());
}
}
