#ifndef QRA_APPS_QRA_SCAN_STATUS_LINE_H
#define QRA_APPS_QRA_SCAN_STATUS_LINE_H

#include <cstddef>
#include <string>

struct ScanResult {
    std::size_t files = 0;
    std::size_t added = 0;
    std::size_t updated = 0;
    std::size_t removed = 0;
    std::size_t failed = 0;
};

/// One line on stderr that tells how far a scan is, written over and over while it runs and wiped at its end.
/// Nothing at all when stderr is no terminal. For one thread.
class ScanStatusLine {
public:
    ScanStatusLine();
    ~ScanStatusLine();
    ScanStatusLine(const ScanStatusLine&) = delete;
    ScanStatusLine& operator=(const ScanStatusLine&) = delete;

    /// @param seen the files found so far; the folders still to come are not in it
    void show(std::size_t done, std::size_t seen, const std::string& current_path);

private:
    bool is_terminal_;
    bool shown_ = false;
};

/// The line itself, at most `width` cells wide: a bar, the counts, and the end of the path.
std::string scan_status_text(std::size_t done, std::size_t seen, const std::string& current_path, int width);

#endif
