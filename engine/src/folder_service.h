#ifndef QRA_ENGINE_FOLDER_SERVICE_H
#define QRA_ENGINE_FOLDER_SERVICE_H

#include "engine/src/engine_parts.h"
#include "engine/src/folder_map.h"

namespace engine {

/// Serves "check_folder_path": the folder map of each user.
class FolderService {
public:
    explicit FolderService(const EngineParts& parts);

private:
    void check_folder_path(MethodCall call);

    ClientTable& clients_;
    FolderMap folders_;
};

}  // namespace engine

#endif
