#ifndef QRA_APPS_QRA_ENGINE_ACCESS_H
#define QRA_APPS_QRA_ENGINE_ACCESS_H

#include <gio/gio.h>

#include <string>

/// The engine's name on the bus.
inline constexpr const char* kEngineName = "com.morva.qra.engine";

/// Whether the engine has its name on the system bus at this moment.
bool engine_runs();

/// Sees to it that no list request waits long for an engine that is not there: the library waits up to 40
/// seconds for one wherever there is a system bus, but not at all where there is none.
///
/// Where the engine runs, or can be started, on the system bus, nothing is done. Else a private message bus
/// with the engine on it stands in for the system bus of this process, until the object goes. Where that
/// cannot be had either, the process gets a bus address on which nobody listens, and does without engine.
///
/// Made on the main thread before the library is used, since it changes the environment.
class EngineAccess {
public:
    EngineAccess();
    ~EngineAccess();
    EngineAccess(const EngineAccess&) = delete;
    EngineAccess& operator=(const EngineAccess&) = delete;

private:
    void start_private_bus(const std::string& engine);
    void end_private_bus();

    std::string directory_;  // of the private bus: configuration, service file, socket
    GSubprocess* daemon_ = nullptr;
};

#endif
