#include "tests/dlna/server/faults.h"

#include <cstdlib>

std::optional<std::string> Faults::take(const std::string& action, const std::string& fault) {
    const auto found = switches_.find(action + "." + fault);
    if (found == switches_.end()) {
        return std::nullopt;
    }
    Switch& on = found->second;
    if (on.spared > 0) {
        --on.spared;
        return std::nullopt;
    }
    std::string value = on.value;
    if (on.left > 0 && --on.left == 0) {
        switches_.erase(found);
    }
    return value;
}

std::optional<int> Faults::take_number(const std::string& action, const std::string& fault) {
    const std::optional<std::string> value = take(action, fault);
    return value ? std::optional<int>(std::atoi(value->c_str())) : std::nullopt;
}
