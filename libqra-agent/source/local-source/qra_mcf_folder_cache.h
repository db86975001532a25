#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_FOLDER_CACHE_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_FOLDER_CACHE_H

#include <string>

/**
 * The engine's map from a folder to its id, which spares a folder that was listed before its scan and its
 * query.
 *
 * Both operations ask the engine only when all their texts are there, since starting an engine that does not
 * come up takes long. A path that is not UTF-8 has no place in the map: a bus carries no such text. No state;
 * any thread may call.
 */
class CQRAMCFFolderCache {
public:
    /// Leaves the id in strFolderId if the engine knows the folder.
    static bool Find(const std::string& strRoot, const std::string& strStorageId, std::string& strFolderId);
    static bool Add(const std::string& strRoot, const std::string& strStorageId,
                    const std::string& strFolderId);
};

#endif
