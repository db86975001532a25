#ifndef QRA_ENGINE_OBJECT_PATH_H
#define QRA_ENGINE_OBJECT_PATH_H

namespace engine {

/// Where the engine's object is on its connection.
inline constexpr char kObjectPath[] = "/com/morva/qra/engine";

}  // namespace engine

#endif
