#include <clocale>
#include <csignal>
#include <cstdlib>

#include "apps/qra/command_line.h"
#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/output.h"

int main(int argc, char** argv) {
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
