#include "libqra-agent/agent/src/qra_handler.h"

#include "common/datamodel/qra_resultpool.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_agent_base.h"
#include "libqra-agent/agent/src/qra_backup_param.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_item_builder.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/share/src/qra_share_thread.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/qra_source_base.h"

namespace {

template <class T>
void destroy(T*& pObject) {
    delete pObject;
    pObject = nullptr;
}

/// The agent of a handle; null with a log line if there is no handle, or none in it.
IQRAAgentBase* agent_of(const CQRAAgentHandle* pHandle) {
    IQRAAgentBase* const pAgent = pHandle != nullptr ? pHandle->GetAgentInstance() : nullptr;
    if (pAgent == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid agent handler recevied!!");
    }
    return pAgent;
}

bool copy_record(const std::map<std::string, _stAppData>& records, const std::string& strKey,
                 _stAppData& stData) {
    const auto it = records.find(strKey);
    if (it == records.end()) {
        return false;
    }
    stData = it->second;
    return true;
}

}  // namespace

CQRAAgentHandle::~CQRAAgentHandle() {
    DestroyAgentInstance();
    DestorySelectList();
    DestroyContentPage();
    DestroyGroupInfo();
    DestroyItemBuilder();
    DestroyPageParam();
    DestroyRequestParam();
    DestroyResultPool();
    DestroySource();
    ClearRequestActData();
    ClearRequestDetailData();
    ClearRequestListData();
}

CQRALocalAgent* CQRAAgentHandle::GetLocalAgent(CQRAAgentHandle* pHandle) {
    return dynamic_cast<CQRALocalAgent*>(agent_of(pHandle));
}

CQRAWebAgent* CQRAAgentHandle::GetWebAgent(CQRAAgentHandle* pHandle) {
    return dynamic_cast<CQRAWebAgent*>(agent_of(pHandle));
}

void CQRAAgentHandle::SetPageParam(qra_page_style_s* pParam) {
    if (m_pPageParam == nullptr) {
        m_pPageParam = pParam;
    } else {
        *m_pPageParam = *pParam;
    }
}

void CQRAAgentHandle::DestorySelectList() {
    destroy(m_pSelectList);
}

void CQRAAgentHandle::DestroyResultPool() {
    destroy(m_pResultPool);
}

void CQRAAgentHandle::DestroyContentPage() {
    destroy(m_pContentPage);
}

void CQRAAgentHandle::DestroyRequestParam() {
    destroy(m_pRequestParam);
}

void CQRAAgentHandle::DestroyAgentInstance() {
    destroy(m_pAgentInstance);
}

void CQRAAgentHandle::DestroySource() {
    if (m_pSource != nullptr && m_pSource->IsOpen()) {
        m_pSource->Close();
    }
    destroy(m_pSource);
}

void CQRAAgentHandle::DestroyPageParam() {
    destroy(m_pPageParam);
}

void CQRAAgentHandle::DestroyGroupInfo() {
    destroy(m_pGroupInfo);
}

void CQRAAgentHandle::DestroyItemBuilder() {
    destroy(m_pItemBuilder);
}

void CQRAAgentHandle::PushRequestListData(const std::string& strKey, const _stAppData& stData) {
    CQRALockGuard lock(m_MutexList);
    m_stRequestListData.emplace(strKey, stData);
}

void CQRAAgentHandle::PushRequestDetailData(const std::string& strKey, const _stAppData& stData) {
    CQRALockGuard lock(m_MutexDetail);
    m_stDetailData.emplace(strKey, stData);
}

void CQRAAgentHandle::PushRequestActData(const std::string& strKey, const _stAppData& stData) {
    CQRALockGuard lock(m_MutexAct);
    m_stActData.emplace(strKey, stData);
}

bool CQRAAgentHandle::PopRequestListData(const std::string& strKey, _stAppData& stData) {
    CQRALockGuard lock(m_MutexList);
    if (!copy_record(m_stRequestListData, strKey, stData)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "it == m_stRequestListData.end()");
        return false;
    }
    return true;
}

bool CQRAAgentHandle::PopRequestDetailData(const std::string& strKey, _stAppData& stData) {
    CQRALockGuard lock(m_MutexDetail);
    if (!copy_record(m_stDetailData, strKey, stData)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "it == m_stDetailData.end()");
        return false;
    }
    return true;
}

bool CQRAAgentHandle::PopRequestActData(const std::string& strKey, _stAppData& stData) {
    CQRALockGuard lock(m_MutexAct);
    if (!copy_record(m_stActData, strKey, stData)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "it == m_stActData.end()");
        return false;
    }
    return true;
}

void CQRAAgentHandle::EraseRequestActData(const std::string& strKey) {
    CQRALockGuard lock(m_MutexAct);
    m_stActData.erase(strKey);
}

void CQRAAgentHandle::EraseRequestDetailData(const std::string& strKey) {
    CQRALockGuard lock(m_MutexDetail);
    m_stDetailData.erase(strKey);
}

void CQRAAgentHandle::ClearRequestListData() {
    CQRALockGuard lock(m_MutexList);
    m_stRequestListData.clear();
}

void CQRAAgentHandle::ClearRequestDetailData() {
    CQRALockGuard lock(m_MutexDetail);
    m_stDetailData.clear();
}

void CQRAAgentHandle::ClearRequestActData() {
    CQRALockGuard lock(m_MutexAct);
    m_stActData.clear();
}

CQRASendHandle::~CQRASendHandle() {
    destroy(m_pShareThread);
}
