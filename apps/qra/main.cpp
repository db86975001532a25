#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>

#include "apps/qra/command_line.h"
#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/output.h"

namespace {

/// The first file that is opened would take the number of a standard stream that is closed, and what is
/// printed would go into it. What is opened here for a stream cannot be used, so that its use is an error
/// that is told.
void occupy_closed_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    occupy_closed_streams();
    interrupt::install();
    // A write that cannot be is an error of the call, which is told.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::setlocale(LC_CTYPE, "");
    // The library's log goes to stderr, where our own messages stand; whoever wants it says so.
    setenv("QRA_LOG", "off", 0);

    CommandLine line;
    if (const auto status = parse_command_line(argc, argv, line)) {
        return static_cast<int>(*status);
    }
    try {
        line.command(line);
        flush_output();
        return static_cast<int>(ExitStatus::Success);
    } catch (const CommandError& error) {
        if (*error.what() != '\0') {
            print_note(error.what());
        }
        return static_cast<int>(error.status());
    }
}
