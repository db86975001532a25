#include "apps/qra/scan_status_line.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "apps/qra/terminal.h"
#include "apps/qra/terminal_text.h"

namespace {

constexpr std::size_t kBarCells = 20;
constexpr const char* kWipeLine = "\r\033[K";

}  // namespace

std::string scan_status_text(std::size_t done, std::size_t seen, const std::string& current_path, int width) {
    const std::size_t filled = seen == 0 ? 0 : kBarCells * std::min(done, seen) / seen;
    const std::string text = "[" + std::string(filled, '#') + std::string(kBarCells - filled, '.') + "] " +
                             std::to_string(done) + " of " + std::to_string(seen) + " files  " +
                             printable_text(current_path.substr(current_path.rfind('/') + 1));
    return fit_to_cells(text, static_cast<std::size_t>(std::max(width, 1)), "~");
}

ScanStatusLine::ScanStatusLine() : is_terminal_(isatty(STDERR_FILENO) == 1) {}

ScanStatusLine::~ScanStatusLine() {
    if (shown_) {
        std::fputs(kWipeLine, stderr);
    }
}

void ScanStatusLine::show(std::size_t done, std::size_t seen, const std::string& current_path) {
    if (!is_terminal_) {
        return;
    }
    // One cell short, so that no terminal wraps the line.
    const std::string text = scan_status_text(done, seen, current_path, terminal_width(STDERR_FILENO) - 1);
    std::fprintf(stderr, "\r%s", text.c_str());
    shown_ = true;
}
