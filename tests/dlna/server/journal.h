#ifndef QRA_TESTS_DLNA_SERVER_JOURNAL_H
#define QRA_TESTS_DLNA_SERVER_JOURNAL_H

#include <functional>
#include <map>
#include <string>
#include <utility>

/// What was asked of the server, counted by name, for the test to look at or to wait for.
class Journal {
public:
    void count(const std::string& name, long amount = 1) {
        counts_[name] += amount;
        if (on_change) {
            on_change();
        }
    }
    long of(const std::string& name) const {
        const auto found = counts_.find(name);
        return found == counts_.end() ? 0 : found->second;
    }
    void note(const std::string& name, std::string text) { notes_[name] = std::move(text); }
    std::string noted(const std::string& name) const {
        const auto found = notes_.find(name);
        return found == notes_.end() ? "" : found->second;
    }

    std::function<void()> on_change;

private:
    std::map<std::string, long> counts_;
    std::map<std::string, std::string> notes_;
};

#endif
