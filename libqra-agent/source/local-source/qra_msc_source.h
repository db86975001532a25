#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MSC_SOURCE_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MSC_SOURCE_H

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "common/util/qra_extensionlist.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/source/local-source/qra_content_info_provider.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"
#include "libqra-agent/source/local-source/qra_media.h"
#include "libqra-agent/source/local-source/qra_media_cursor.h"
#include "libqra-agent/source/local-source/qra_media_id_index.h"
#include "libqra-agent/source/local-source/qra_msc_file_type.h"
#include "libqra-agent/source/qra_source_base.h"
#include "libqra-agent/source/scsa/qra_dmp_source.h"

/**
 * USB mass storage, and the recordings that lie on it.
 *
 * Holds the list of the latest request, with counters for each media type and the group table. The client's
 * thread makes requests and reads; the source's own thread, "qra-source-msc", works on a request and calls
 * the completion callback. List, maps, counters and groups are written by the source's thread without a lock:
 * the client reads them only after the completion, and sends no second request before it.
 *
 * Locks: m_CallbackMutex is held through the completion callback, so that none runs once UNSetCallback() has
 * returned, which a callback must therefore not call; it comes before the agent mutex, which a callback
 * takes. m_RegistrationMutex covers the registration only and is held across no call, so that SetCallback()
 * waits for nobody.
 *
 * Null arguments end the process. A source must be closed before it is destroyed, also after an Open() that
 * failed to make its thread.
 */
class CQRAMSCSource : public IQRASourceBase, public CQRAThread {
public:
    CQRAMSCSource() = default;
    ~CQRAMSCSource() override;

    using IQRASourceBase::Open;
    bool Open() override;
    bool IsOpen() override { return m_bIsOpen; }
    bool Close() override;
    bool SetCallback(qra_source_complete_cb cb, void* pUserData) override QRA_EXCLUDES(m_RegistrationMutex);
    /// A drive transfers nothing.
    bool SetCallback(qra_source_transfer_cb cb, void* pUserData) override;
    bool UNSetCallback() override QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex);
    bool Execute(qra_general_s* pParam) override;

    bool MoveToIndex(int nIndex) override;
    bool MoveToPrevious() override;
    bool MoveToNext() override;
    bool GetItemCount(int* pnItemCount) override;
    bool GetItemCountByType(qra_media_type_e eType, int* pnItemCount) override;
    bool GetValue(std::string strField, char** ppValue) override;
    bool GetValue(std::string strField, int* pValue) override;
    bool GetValue(std::string strField, unsigned long long* pValue) override;
    bool GetValue(std::string strField, long* pValue) override;
    bool GetValue(std::string strField, bool* pValue) override;
    bool GetValue(std::string strField, double* pValue) override;
    bool SetValue(const char* szField, long nTime) override;
    bool SetValue(const char* szField, int nValue) override;
    bool SetValue(const char* szField, const char* szValue) override;
    bool GetDBIndex(char* szMediaId, int* pnIndex) override;
    CQRAGroupInfo* GetGroupInfo() override;
    int GetFolderCount() override { return m_nFolderCount; }
    bool IndexSearch(char* szText, int* pnFirst, int* pnSecond) override;
    bool GetItemCountOfGroup(char* szGroupName, int* pnItemCount) override;
    /// Media on a drive have no rating.
    bool GetRatingInfo(char** ppRating) override;

    bool AddFile(const char* szPath);
    bool DeleteFile(const char* szMediaId);

protected:
    void t_Process() override;

private:
    static bool cb_getMCFMedia(const std::string& strId, CMedia& media, void* pUserData);
    static bool cb_getMCFGroup(const std::string& strName, int nCount, void* pUserData);
    static bool cb_getMCFScanStatus(qra_event_e eEvent, void* pUserData);

    void m_Clear();
    bool m_FillParam(const qra_general_s* pParam, _SMCFParam& param);
    void m_Process();
    bool m_RequestMCFData();
    bool m_RequestGroups();
    void m_NotifyComplete(qra_event_e eEvent) QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex);
    bool m_AddMedia(const std::string& strId, CMedia& media);
    bool m_Classify(const CMedia& media, int*& pCounter);
    bool m_ClassifyFile(const CMedia& media, int*& pCounter);
    bool m_CheckFolder(const std::string& strName) const;
    bool m_GetFileType(const std::string& strExtension, bool bIs360, qra_media_type_e& eType) const;
    int* m_GetCounter(qra_media_type_e eType);
    bool m_HasId(int nIndex, const std::string& strId);
    bool m_GetFieldValue(const std::string& strField, const mcf_out& out);
    bool m_SetFieldValue(const std::string& strField, const mcf_in& in);
    bool m_GetText(const std::string& strField, std::string& strText);
    bool m_GetMediaType(int* pValue);
    bool m_GetFormat(char** ppValue);
    bool m_GetCodec(bool (CContentInfoProvider::*pGet)(const char*, char**), char** ppValue);
    bool m_GetThumbnailPath(char** ppValue);
    bool m_GetSCSAMetaData(const std::string& strField, int* pValue);
    bool m_GetSCSAMetaData(const std::string& strField, char** ppValue);
    bool m_MoveToDmpSource();

    CQRAExtensionList m_ExtensionList;
    CQRAMSCFileType m_FileType;  ///< made from m_ExtensionList
    std::atomic<bool> m_bIsOpen{false};
    std::atomic<bool> m_bBusy{false};
    CQRAGMutex m_CallbackMutex;
    CQRAGMutex m_RegistrationMutex;
    CQRASemphore m_Sem;
    qra_source_complete_cb m_cbComplete QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;
    void* m_pUserData QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;
    std::string m_strCategory;
    int m_nFolderCount = 0;
    int m_nImageCount = 0;
    int m_nVideoCount = 0;
    int m_n360ImageCount = 0;
    int m_n360VideoCount = 0;
    int m_nMusicCount = 0;
    int m_nPVRCount = 0;
    int m_nUHDCount = 0;
    int m_nSCSACount = 0;
    MCContentList m_ContentList;
    MCCursor m_Cursor;
    CQRAMediaIdIndex m_IdIndex;
    std::map<std::string, int> m_GroupItemCounts;
    CQRAGroupInfo m_GroupInfo;
    std::unique_ptr<CQRAMCFWrapper> m_pMCFWrapper;
    std::unique_ptr<CQRADmpSource> m_pDmpSource;
    std::unique_ptr<CContentInfoProvider> m_pContentInfoProvider;
};

#endif
