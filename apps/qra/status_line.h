#ifndef QRA_APPS_QRA_STATUS_LINE_H
#define QRA_APPS_QRA_STATUS_LINE_H

#include <cstdint>
#include <string>

/// One line on stderr, written over and over while something runs and wiped at its end. Nothing at all when
/// stderr is no terminal. For one thread.
class StatusLine {
public:
    StatusLine();
    ~StatusLine();
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    bool is_shown() const { return is_terminal_; }

    /// Cells for a text that no terminal wraps.
    int width() const;

    /// @param text printable, and as wide as the line, so that it covers what stood there before
    void show(const std::string& text);

    /// Makes room for other output; the next show() writes the line again.
    void wipe();

private:
    bool is_terminal_;
    bool written_ = false;
};

/// "[#####...............]"; empty as long as there is no total.
std::string progress_bar(std::uint64_t done, std::uint64_t total);

#endif
