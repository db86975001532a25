#ifndef QRA_TESTS_FAKES_DLOG_CAPTURE_H
#define QRA_TESTS_FAKES_DLOG_CAPTURE_H

#include <string>
#include <vector>

/// One line that went to the log while a LogCapture lived.
struct LogLine {
    int priority;
    std::string tag;
    std::string text;
};

/**
 * Collects every log line from its construction to its destruction, of all threads.
 *
 * A test program that links fake-dlog gets this log instead of the platform's. Without a live LogCapture
 * lines are dropped. Only one may live at a time. Safe to use from any thread.
 */
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// All lines so far, in the order in which they came.
    std::vector<LogLine> lines() const;

    /// Number of lines that hold `part`.
    int count(const std::string& part) const;

    bool contains(const std::string& part) const { return count(part) > 0; }

    /// All texts, each on a line of its own: for the message of a failed expectation.
    std::string text() const;
};

#endif
