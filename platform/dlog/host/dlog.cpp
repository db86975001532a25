#include "dlog.h"

#include <sys/stat.h>
#include <syslog.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

constexpr int kNothing = DLOG_PRIORITY_WARNING + 1;

/// Lowest priority that is written, from the environment variable QRA_LOG.
int lowest_priority() {
    static const int lowest = [] {
        const char* level = std::getenv("QRA_LOG");
        const std::string_view name = level != nullptr ? level : "warning";
        if (name == "off") {
            return kNothing;
        }
        if (name == "debug") {
            return static_cast<int>(DLOG_PRIORITY_DEBUG);
        }
        return static_cast<int>(name == "info" ? DLOG_PRIORITY_INFO : DLOG_PRIORITY_WARNING);
    }();
    return lowest;
}

/// True when standard error is the stream that the service manager gave this process to its journal:
/// JOURNAL_STREAM then names the stream's device and inode.
bool stderr_is_the_journal() {
    static const bool is_journal = [] {
        const char* stream = std::getenv("JOURNAL_STREAM");
        unsigned long long device = 0;
        unsigned long long inode = 0;
        struct stat info {};
        return stream != nullptr && std::sscanf(stream, "%llu:%llu", &device, &inode) == 2 &&
               fstat(STDERR_FILENO, &info) == 0 && info.st_dev == device && info.st_ino == inode;
    }();
    return is_journal;
}

int syslog_priority(int priority) {
    return priority >= DLOG_PRIORITY_WARNING ? LOG_WARNING
           : priority == DLOG_PRIORITY_INFO  ? LOG_INFO
                                             : LOG_DEBUG;
}

char priority_letter(int priority) {
    return priority >= DLOG_PRIORITY_WARNING ? 'W' : priority == DLOG_PRIORITY_INFO ? 'I' : 'D';
}

}  // namespace

int __dlog_print(int, int priority, const char* tag, const char* format, ...) {
    if (priority < lowest_priority()) {
        return 0;
    }
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (stderr_is_the_journal()) {
        const int sent = sd_journal_send("MESSAGE=%s", text, "PRIORITY=%d", syslog_priority(priority),
                                         "SYSLOG_IDENTIFIER=%s", tag, nullptr);
        return sent < 0 ? sent : length;
    }
    // One call for the whole line, so that lines of several threads and processes do not mix.
    return std::fprintf(stderr, "%c/%s: %s\n", priority_letter(priority), tag, text);
}
