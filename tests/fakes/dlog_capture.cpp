#include "tests/fakes/dlog_capture.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>

#include "dlog.h"

namespace {

std::mutex g_mutex;
std::unique_ptr<std::vector<LogLine>> g_lines;

}  // namespace

int __dlog_print(int, int priority, const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    char text[4096];
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (g_lines) {
        g_lines->push_back({priority, tag, text});
    }
    return length;
}

LogCapture::LogCapture() {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_lines = std::make_unique<std::vector<LogLine>>();
}

LogCapture::~LogCapture() {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_lines.reset();
}

std::vector<LogLine> LogCapture::lines() const {
    const std::lock_guard<std::mutex> lock(g_mutex);
    return *g_lines;
}

int LogCapture::count(const std::string& part) const {
    const std::lock_guard<std::mutex> lock(g_mutex);
    return static_cast<int>(std::count_if(g_lines->begin(), g_lines->end(), [&](const LogLine& line) {
        return line.text.find(part) != std::string::npos;
    }));
}

std::string LogCapture::text() const {
    std::string all;
    for (const LogLine& line : lines()) {
        all += line.text + "\n";
    }
    return all;
}
