#include "apps/qra/scan_status_line.h"

#include <algorithm>

#include "apps/qra/terminal_text.h"

std::string scan_status_text(std::size_t done, std::size_t seen, const std::string& current_path, int width) {
    const std::string text = progress_bar(done, seen) + " " + std::to_string(done) + " of " +
                             std::to_string(seen) + " files  " +
                             printable_text(current_path.substr(current_path.rfind('/') + 1));
    return fit_to_cells(text, static_cast<std::size_t>(std::max(width, 1)), "~");
}

void ScanStatusLine::show(std::size_t done, std::size_t seen, const std::string& current_path) {
    if (line_.is_shown()) {
        line_.show(scan_status_text(done, seen, current_path, line_.width()));
    }
}
