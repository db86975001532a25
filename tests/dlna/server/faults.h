#ifndef QRA_TESTS_DLNA_SERVER_FAULTS_H
#define QRA_TESTS_DLNA_SERVER_FAULTS_H

#include <map>
#include <optional>
#include <string>

/**
 * The server's misbehaviour, switched on by name: "Browse.delay" and the like. Each switch has a value, may
 * spare the first uses, and may wear out after a number of them.
 */
class Faults {
public:
    struct Switch {
        std::string value;
        int spared = 0;  ///< uses before it works
        int left = -1;   ///< uses before it is gone, -1 for ever
    };

    void set(const std::string& name, Switch fault) { switches_[name] = std::move(fault); }
    void clear() { switches_.clear(); }
    void clear(const std::string& name) { switches_.erase(name); }

    /// The value if the switch is on, and one use of it.
    std::optional<std::string> take(const std::string& action, const std::string& fault);
    std::optional<int> take_number(const std::string& action, const std::string& fault);
    bool is_on(const std::string& action, const std::string& fault) {
        return take(action, fault).has_value();
    }

private:
    std::map<std::string, Switch> switches_;
};

#endif
