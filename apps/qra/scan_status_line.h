#ifndef QRA_APPS_QRA_SCAN_STATUS_LINE_H
#define QRA_APPS_QRA_SCAN_STATUS_LINE_H

#include <cstddef>
#include <string>

#include "apps/qra/status_line.h"

struct ScanResult {
    std::size_t files = 0;
    std::size_t added = 0;
    std::size_t updated = 0;
    std::size_t removed = 0;
    std::size_t failed = 0;
};

/// One line on stderr that tells how far a scan is. For one thread.
class ScanStatusLine {
public:
    /// @param seen the files found so far; the folders still to come are not in it
    void show(std::size_t done, std::size_t seen, const std::string& current_path);

private:
    StatusLine line_;
};

/// The line itself, at most `width` cells wide: a bar, the counts, and the end of the path.
std::string scan_status_text(std::size_t done, std::size_t seen, const std::string& current_path, int width);

#endif
