#include "platform/mtp/host/chatter.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>

#include "dlog.h"

namespace mtp {

namespace {

constexpr char kTag[] = "MTP";

/// What is still without its line's end. By the stream's own lock, which its writer holds.
struct Line {
    char text[512];
    size_t length;
};

void flush(Line& line) {
    if (line.length > 0) {
        __dlog_print(0, DLOG_PRIORITY_INFO, kTag, "libmtp: %.*s", static_cast<int>(line.length), line.text);
        line.length = 0;
    }
}

ssize_t write_lines(void* cookie, const char* bytes, size_t length) {
    Line& line = *static_cast<Line*>(cookie);
    for (size_t i = 0; i < length; ++i) {
        if (bytes[i] == '\n' || line.length == sizeof line.text) {
            flush(line);
        }
        if (bytes[i] != '\n') {
            const bool is_text = static_cast<unsigned char>(bytes[i]) >= ' ';
            line.text[line.length++] = is_text ? bytes[i] : ' ';
        }
    }
    return static_cast<ssize_t>(length);
}

FILE* open_stream() {
    static Line line;
    cookie_io_functions_t functions{};
    functions.write = write_lines;
    FILE* stream = fopencookie(&line, "w", functions);
    if (stream != nullptr) {
        setvbuf(stream, nullptr, _IOLBF, BUFSIZ);
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
    std::fputc('\n', log_stream());
}

}  // namespace mtp
