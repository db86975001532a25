#include "apps/qra/output.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include "apps/qra/exit_status.h"

namespace {

[[noreturn]] void fail() {
    const int error = errno;
    throw CommandError(ExitStatus::RequestFailed,
                       error == EPIPE ? "" : "standard output: " + std::generic_category().message(error));
}

}  // namespace

void print(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
        fail();
    }
}

void flush_output() {
    if (std::fflush(stdout) != 0) {
        fail();
    }
}

void print_note(std::string_view text) {
    std::fprintf(stderr, "qra: %.*s\n", static_cast<int>(text.size()), text.data());
}
