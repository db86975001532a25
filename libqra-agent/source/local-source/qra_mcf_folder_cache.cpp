#include "libqra-agent/source/local-source/qra_mcf_folder_cache.h"

#include <json/json.h>

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"

namespace {

constexpr int OPERATION_ADD = 0;
constexpr int OPERATION_FIND = 1;

bool IsUtf8(const std::string& strText) {
    return g_utf8_validate(strText.data(), static_cast<gssize>(strText.size()), nullptr);
}

Json::Value Operation(int nType, const std::string& strRoot, const std::string& strStorageId) {
    Json::Value operation(Json::objectValue);
    operation["OPERATION_TYPE"] = nType;
    operation["FOLDER_PATH"] = strRoot + "/" + strStorageId;
    return operation;
}

bool Ask(const Json::Value& operation, std::string& strReply) {
    CQRADBusClient* const pClient = CQRADBusClient::GetInstance();
    return pClient->ConnectDbus() == QRA_ERROR_NONE &&
           pClient->CheckFolderPath("check_folder_path", operation.toStyledString(), strReply) ==
               QRA_ERROR_NONE;
}

}  // namespace

bool CQRAMCFFolderCache::Find(const std::string& strRoot, const std::string& strStorageId,
                              std::string& strFolderId) {
    if (strRoot.empty() || strStorageId.empty() || !IsUtf8(strRoot)) {
        return false;
    }
    std::string strReply;
    if (!Ask(Operation(OPERATION_FIND, strRoot, strStorageId), strReply)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_FindFolderCache failed.");
        return false;
    }
    strFolderId = strReply;
    return true;
}

bool CQRAMCFFolderCache::Add(const std::string& strRoot, const std::string& strStorageId,
                             const std::string& strFolderId) {
    if (strRoot.empty() || strFolderId.empty() || strStorageId.empty() || !IsUtf8(strRoot)) {
        return false;
    }
    Json::Value operation = Operation(OPERATION_ADD, strRoot, strStorageId);
    operation["FOLDER_ID"] = strFolderId;
    std::string strReply = "AddFolderMap";
    return Ask(operation, strReply);
}
