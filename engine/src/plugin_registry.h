#ifndef QRA_ENGINE_PLUGIN_REGISTRY_H
#define QRA_ENGINE_PLUGIN_REGISTRY_H

#include <sys/types.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "engine/src/plugin.h"

namespace engine {

/// The account of that name that a user has; nothing, with a reason that a person understands, if there is
/// none.
using AccountLookup =
    std::function<std::optional<Account>(uid_t user, const std::string& name, std::string& reason)>;

/// The kinds of service that the engine knows, by the name that accounts use.
class PluginRegistry {
public:
    /// In place of one of the same name.
    void add(std::unique_ptr<Plugin> plugin);
    /// Null if there is no such plug-in. The registry owns it.
    Plugin* find(const std::string& name) const;

private:
    std::map<std::string, std::unique_ptr<Plugin>> plugins_;
};

}  // namespace engine

#endif
