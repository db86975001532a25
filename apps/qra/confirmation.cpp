#include "apps/qra/confirmation.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdio>
#include <iterator>
#include <optional>
#include <string>

#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"

namespace {

/// Becomes readable when a signal comes.
class SignalEvent {
public:
    SignalEvent() : descriptor_(eventfd(0, EFD_CLOEXEC)) {
        reaction_.emplace([this] { eventfd_write(descriptor_, 1); });
    }
    ~SignalEvent() {
        reaction_.reset();
        close(descriptor_);
    }
    SignalEvent(const SignalEvent&) = delete;
    SignalEvent& operator=(const SignalEvent&) = delete;

    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
    std::optional<interrupt::Reaction> reaction_;
};

/// Bytes that came on stdin; empty at its end.
std::string read_some(const SignalEvent& event) {
    pollfd waiting[] = {{STDIN_FILENO, POLLIN, 0}, {event.descriptor(), POLLIN, 0}};
    TEMP_FAILURE_RETRY(poll(waiting, std::size(waiting), -1));
    if (waiting[1].revents != 0) {
        throw CommandError(ExitStatus::RequestFailed, "interrupted");
    }
    char bytes[256];
    const ssize_t count = TEMP_FAILURE_RETRY(read(STDIN_FILENO, bytes, sizeof(bytes)));
    return count > 0 ? std::string(bytes, static_cast<std::size_t>(count)) : std::string();
}

}  // namespace

void require_someone_to_ask() {
    if (isatty(STDIN_FILENO) != 1) {
        throw CommandError(ExitStatus::Usage,
                           "delete asks first, and there is no terminal to ask on: give --yes");
    }
}

bool confirmed(const std::string& question) {
    const SignalEvent event;
    std::fprintf(stderr, "%s [y/N] ", question.c_str());
    std::string answer;
    while (answer.find('\n') == std::string::npos) {
        const std::string bytes = read_some(event);
        if (bytes.empty()) {
            break;
        }
        answer += bytes;
    }
    return !answer.empty() && (answer[0] == 'y' || answer[0] == 'Y');
}
