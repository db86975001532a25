#include "platform/mtp/host/chatter.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>

#include "dlog.h"

namespace mtp {

namespace {

constexpr char kTag[] = "MTP";

/// What a thread has written without its line's end.
struct Line {
    char text[512];
    size_t length;
};

thread_local Line line;

void flush() {
    if (line.length > 0) {
        __dlog_print(0, DLOG_PRIORITY_INFO, kTag, "libmtp: %.*s", static_cast<int>(line.length), line.text);
        line.length = 0;
    }
}

ssize_t write_lines(void*, const char* bytes, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        if (bytes[i] == '\n' || line.length == sizeof line.text) {
            flush();
        }
        if (bytes[i] != '\n') {
            const bool is_text = static_cast<unsigned char>(bytes[i]) >= ' ';
            line.text[line.length++] = is_text ? bytes[i] : ' ';
        }
    }
    return static_cast<ssize_t>(length);
}

FILE* open_stream() {
    cookie_io_functions_t functions{};
    functions.write = write_lines;
    FILE* stream = fopencookie(nullptr, "w", functions);
    if (stream != nullptr) {
        // So that what a thread writes gets here in that thread.
        setvbuf(stream, nullptr, _IONBF, 0);
    }
    return stream;
}

}  // namespace

FILE* log_stream() {
    static FILE* const stream = open_stream();
    return stream;
}

int log_puts(const char* text) {
    return std::fprintf(log_stream(), "%s\n", text);
}

int log_putchar(int c) {
    return std::fputc(c, log_stream());
}

int log_printf(int, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vfprintf(log_stream(), format, arguments);
    va_end(arguments);
    return length;
}

void log_perror(const char* text) {
    std::fprintf(log_stream(), "%s: %s\n", text, std::strerror(errno));
}

void end_log_line() {
    flush();
}

}  // namespace mtp
