// The content engine with the scripted plug-in, for tests. Every JSON object is the name of an account whose
// script it is. Arguments: limits as NAME=NUMBER.

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "engine/src/engine_daemon.h"
#include "tests/engine/scripted_plugin.h"

namespace {

bool set_limit(engine::EngineLimits& limits, const std::string& name, unsigned long value) {
    const std::map<std::string, unsigned*> times = {
        {"list_silence", &limits.list_silence},
        {"list_whole", &limits.list_whole},
        {"item_answer", &limits.item_answer},
        {"closed_list", &limits.closed_list},
    };
    const std::map<std::string, size_t*> sizes = {
        {"closed_lists", &limits.closed_lists},
        {"list_items", &limits.list_items},
        {"list_bytes", &limits.list_bytes},
        {"connections_of_client", &limits.connections_of_client},
        {"requests_of_connection", &limits.requests_of_connection},
        {"shared_bytes_of_client", &limits.shared_bytes_of_client},
        {"shared_objects_of_client", &limits.shared_objects_of_client},
    };
    if (const auto time = times.find(name); time != times.end()) {
        *time->second = static_cast<unsigned>(value);
        return true;
    }
    const auto size = sizes.find(name);
    if (size != sizes.end()) {
        *size->second = value;
    }
    return size != sizes.end();
}

}  // namespace

int main(int argc, char** argv) {
    engine::EngineSetup setup;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const size_t equals = argument.find('=');
        if (equals == std::string::npos ||
            !set_limit(setup.limits, argument.substr(0, equals),
                       std::strtoul(argument.c_str() + equals + 1, nullptr, 10))) {
            std::fprintf(stderr, "no limit: %s\n", argv[i]);
            return 1;
        }
    }
    setup.plugins.add(make_scripted_plugin());
    setup.accounts = [](uid_t, const std::string& name,
                        std::string& reason) -> std::optional<engine::Account> {
        if (name.empty() || name[0] != '{') {
            reason = "There is no account of that name.";
            return std::nullopt;
        }
        return engine::Account{name, "scripted", name, "", ""};
    };
    return engine::EngineDaemon(std::move(setup), 0).run();
}
