#include "apps/qra/status_line.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "apps/qra/terminal.h"

namespace {

constexpr std::size_t kBarCells = 20;
constexpr const char* kWipeLine = "\r\033[K";

}  // namespace

StatusLine::StatusLine() : is_terminal_(isatty(STDERR_FILENO) == 1) {}

StatusLine::~StatusLine() {
    wipe();
}

int StatusLine::width() const {
    return terminal_width(STDERR_FILENO) - 1;
}

void StatusLine::show(const std::string& text) {
    if (is_terminal_) {
        std::fprintf(stderr, "\r%s", text.c_str());
        written_ = true;
    }
}

void StatusLine::wipe() {
    if (written_) {
        std::fputs(kWipeLine, stderr);
        written_ = false;
    }
}

std::string progress_bar(std::uint64_t done, std::uint64_t total) {
    const double share =
        total == 0 ? 0 : static_cast<double>(std::min(done, total)) / static_cast<double>(total);
    const auto filled = static_cast<std::size_t>(static_cast<double>(kBarCells) * share);
    return "[" + std::string(filled, '#') + std::string(kBarCells - filled, '.') + "]";
}
