#ifndef QRA_APPS_QRA_EXIT_STATUS_H
#define QRA_APPS_QRA_EXIT_STATUS_H

#include <stdexcept>
#include <string>

/// What the tool tells the shell.
enum class ExitStatus { Success = 0, Usage = 1, RequestFailed = 2, ServiceMissing = 3 };

/// Ends a command: main() prints the message to stderr, after the tool's name, and exits with the status.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitStatus status, const std::string& message)
        : std::runtime_error(message), status_(status) {}
    ExitStatus status() const { return status_; }

private:
    ExitStatus status_;
};

#endif
