#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_handle_parts.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"
#include "libqra-agent/source/local-source/qra_msc_source.h"

namespace {

/// Asks one question of the media database on a connection of its own; false also if there is no connection.
template <class Question>
bool AskMCF(Question question) {
    CQRAMCFWrapper wrapper;
    CQRAMCFWrapper* pMCFWrapper = &wrapper;
    if (pMCFWrapper->ConnectMCF() == false) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pMCFWrapper->ConnectMCF() == false.");
        return false;
    }
    const bool ret = question(wrapper);
    wrapper.DisconnectMCF();
    return ret;
}

qra_error_code_e InternalUnless(bool ret, const char* szFailure) {
    if (ret)
        return QRA_ERROR_NONE;
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "%s", szFailure);
    return QRA_ERROR_INTERNAL;
}

bool IsNullPath(const char* pPath) {
    if (pPath == nullptr)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pPath == NULL");
    return pPath == nullptr;
}

}  // namespace

qra_error_code_e CQRALocalAgent::SetItemValueMcf(const char* pId, const char* pField, int nValue) {
    return InternalUnless(
        AskMCF([&](CQRAMCFWrapper& wrapper) { return wrapper.SetItemValueMcf(pId, pField, nValue); }),
        "SetItemValueMcf faild.");
}

qra_error_code_e CQRALocalAgent::GetItemValueMcf(const char* pId, const char* pField, int* pnValue) {
    return InternalUnless(
        AskMCF([&](CQRAMCFWrapper& wrapper) { return wrapper.GetItemValueMcf(pId, pField, pnValue); }),
        "GetItemValueMcf faild.");
}

qra_error_code_e CQRALocalAgent::GetStorageId(char* pPath, char** ppStorageId) {
    return InternalUnless(AskMCF([&](CQRAMCFWrapper& wrapper) {
                              _SMCFParam param;
                              param.strRootPath = pPath;
                              if (!wrapper.InitParam(&param)) {
                                  QRA_LOG_WARNING(QRA_TAG_LOCAL,
                                                  "CQRALocalAgent: pMCFWrapper->Initparam failed.");
                                  return false;
                              }
                              return wrapper.GetStorageId(ppStorageId);
                          }),
                          "GetStorageId faild.");
}

qra_error_code_e CQRALocalAgent::AddFile(const char* pPath) {
    CQRAMSCSource* pMSCSource = m_GetMSCSource();
    if (pMSCSource == nullptr)
        return QRA_ERROR_INVALID_HANDLE;
    if (IsNullPath(pPath))
        return QRA_ERROR_INVALID_PARAM;
    return pMSCSource->AddFile(pPath) ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

qra_error_code_e CQRALocalAgent::DeleteFile(const char* pPath) {
    CQRAMSCSource* pMSCSource = m_GetMSCSource();
    if (pMSCSource == nullptr)
        return QRA_ERROR_INVALID_HANDLE;
    if (IsNullPath(pPath))
        return QRA_ERROR_INVALID_PARAM;
    return pMSCSource->DeleteFile(pPath) ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

CQRAMSCSource* CQRALocalAgent::m_GetMSCSource() const {
    if (!qra_has_parts(m_pHandle, kPartSource))
        return nullptr;
    auto* pMSCSource = dynamic_cast<CQRAMSCSource*>(m_pHandle->GetSource());
    if (pMSCSource == nullptr)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pMSCSource == NULL");
    return pMSCSource;
}
