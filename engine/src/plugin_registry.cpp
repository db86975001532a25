#include "engine/src/plugin_registry.h"

#include <utility>

namespace engine {

void PluginRegistry::add(std::unique_ptr<Plugin> plugin) {
    const std::string name = plugin->name();
    plugins_[name] = std::move(plugin);
}

Plugin* PluginRegistry::find(const std::string& name) const {
    const auto found = plugins_.find(name);
    return found == plugins_.end() ? nullptr : found->second.get();
}

}  // namespace engine
