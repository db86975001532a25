#ifndef QRA_AGENT_SOURCE_PTP_QRA_PTP_MANAGE_H
#define QRA_AGENT_SOURCE_PTP_QRA_PTP_MANAGE_H

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "common/util/qra_extensionlist.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "libqra-agent/source/ptp/qra_ptp_item.h"
#include "mtp.h"

/// A camera that was found, with its storages at that time.
struct _stPTPCamera {
    int nBusValue = -1;
    int nDeviceValue = -1;
    mtp_device_h hDevice = 0;  ///< 0: none
    bool b360Model = false;    ///< of the model whose media are looked at for 360-degree content
    std::vector<mtp_storage_h> vStorageIds;
};

/**
 * The process's link to cameras and phones, through the platform's MTP service: finds a camera by its USB bus
 * and device numbers, walks its objects, and gives the ones that were asked for, in their order, to a
 * callback.
 *
 * May be called from any thread. m_CameraMutex, one for the process, is held through a whole walk with its
 * transfers and callbacks, so that a callback must not call back into the manager, and walks, thumbnails and
 * searches of all sources wait for each other. m_StateMutex covers what the next walk starts from, the latest
 * parameters and the held camera; it comes after m_CameraMutex and is held across no call of the platform, so
 * that InitParam() waits for nobody. A walk works on copies: nothing that is set meanwhile changes it.
 *
 * The held camera, and with it its storages, is replaced only when another one is found. One that was pulled
 * out stays held; its objects cannot be read any more.
 *
 * Every false comes with a log line that tells why.
 */
class CQRAPTPManage : public CQRASingleton<CQRAPTPManage> {
public:
    CQRAPTPManage();
    virtual ~CQRAPTPManage() = default;
    CQRAPTPManage(const CQRAPTPManage&) = delete;
    CQRAPTPManage& operator=(const CQRAPTPManage&) = delete;

    /// Sets content type, category, folder and extension lists of the walks to come. False for null.
    bool InitParam(const _stPTPParam* pParam) QRA_EXCLUDES(m_StateMutex);

    /// Looks for a camera and holds it. True if a camera is held in the end, be it another one that was held
    /// before; the one that is held already is not asked for again unless `bForce` says so.
    bool FindCamera(int nBusValue, int nDeviceValue, bool bForce) QRA_EXCLUDES(m_CameraMutex, m_StateMutex);
    /// As above, with a copy of the camera that is held then.
    bool FindCamera(int nBusValue, int nDeviceValue, bool bForce, _stPTPCamera* pCamera)
        QRA_EXCLUDES(m_CameraMutex, m_StateMutex);

    /// Gives all pictures of the camera's first storage, whatever folder they lie in.
    bool RequestListofDCM(qra_ptp_item_cb cb, void* pUserData) QRA_EXCLUDES(m_CameraMutex, m_StateMutex);
    /// Gives what lies in a folder of the camera.
    bool RequestListofFolder(qra_ptp_item_cb cb, void* pUserData) QRA_EXCLUDES(m_CameraMutex, m_StateMutex);

    // The same for a caller with parameters and a camera of its own, which it has from FindCamera(): other
    // callers may have set theirs since.

    bool RequestListofDCM(const _stPTPCamera& camera, qra_ptp_item_cb cb, void* pUserData)
        QRA_EXCLUDES(m_CameraMutex);
    bool RequestListofFolder(const _stPTPParam& param, const _stPTPCamera& camera, qra_ptp_item_cb cb,
                             void* pUserData) QRA_EXCLUDES(m_CameraMutex);

    /// Writes the thumbnail of an object, named by its decimal handle, to a file.
    bool DownloadExif(const std::string& strFilePath, const std::string& strDownloadPath)
        QRA_EXCLUDES(m_CameraMutex, m_StateMutex);
    /// Checks and logs the path "device handle/object handle". Transfers nothing: buffer and size stay as
    /// they are.
    bool DownloadFileToBuffer(const std::string& strFilePath, void* pBuffer, unsigned long* puSize)
        QRA_EXCLUDES(m_CameraMutex);

private:
    /// What a folder walk looks for.
    struct Wish {
        std::string strContentType;
        std::string strSortCategory;
        int nFolderId = 0;
        CQRAExtensionList extensions;
    };

    void m_InitExtensionConvert();
    static Wish m_MakeWish(const _stPTPParam& param);
    _stPTPCamera m_GetHeldCamera() QRA_EXCLUDES(m_StateMutex);
    void m_HoldCamera(mtp_device_h hDevice, int nBusValue, int nDeviceValue) QRA_REQUIRES(m_CameraMutex)
        QRA_EXCLUDES(m_StateMutex);

    void m_BeginWalk(const _stPTPCamera& camera) QRA_REQUIRES(m_CameraMutex);
    bool m_WalkFolder(Wish wish, const _stPTPCamera& camera, qra_ptp_item_cb cb, void* pUserData)
        QRA_EXCLUDES(m_CameraMutex);
    void m_SetFileTypeList(Wish& wish) QRA_REQUIRES(m_CameraMutex);
    void m_AddFileTypes(Wish& wish, const char* szContentType) QRA_REQUIRES(m_CameraMutex);
    bool m_GetObjectHandles(mtp_object_h hParent, std::vector<mtp_object_h>& handles)
        QRA_REQUIRES(m_CameraMutex);
    bool m_GetObjectInfo(mtp_object_h hObject) QRA_REQUIRES(m_CameraMutex);
    bool m_TakeChild(mtp_object_h hObject, bool* pIsFolder) QRA_REQUIRES(m_CameraMutex);
    bool m_WalkLevel(std::vector<mtp_object_h>& parents, std::unordered_set<mtp_object_h>& seen)
        QRA_REQUIRES(m_CameraMutex);
    _stPtpContentItem m_MakeItem(mtp_object_h hObject, const mtp_object_info& info) const
        QRA_REQUIRES(m_CameraMutex);
    bool m_GiveItems(qra_ptp_item_cb cb, void* pUserData) QRA_REQUIRES(m_CameraMutex);

    void m_Check360(mtp_object_h hObject, const mtp_object_info& info, _stPtpContentItem& item)
        QRA_REQUIRES(m_CameraMutex);
    void m_ImageMakernoteCheck(mtp_object_h hObject, const std::string& strPath, bool* pIs360,
                               int* pStitchType) QRA_REQUIRES(m_CameraMutex);
    static void m_ImageXMPdataCheck(const std::string& strPath, bool* pIs360);
    void m_VideoMakernoteCheck(mtp_object_h hObject, const std::string& strPath, unsigned long long uSize,
                               bool* pIs360, int* pStitchType) QRA_REQUIRES(m_CameraMutex);
    void m_VideoXMPdataParser(mtp_object_h hObject, const std::string& strPath, unsigned long long uSize,
                              bool* pIs360, int* pStitchType) QRA_REQUIRES(m_CameraMutex);

    static CQRAMutex& m_CameraMutex;  ///< never destroyed: a walk may last until the process ends
    CQRAGMutex m_StateMutex;
    Wish m_Wish QRA_GUARDED_BY(m_StateMutex);
    _stPTPCamera m_Camera QRA_GUARDED_BY(m_StateMutex);
    std::map<std::string, mtp_filetype_e> m_ExtensionConvert;  ///< by upper-case extension; never changed

    // Of the walk that is under way.
    _stPTPCamera m_WalkCamera QRA_GUARDED_BY(m_CameraMutex);
    std::vector<mtp_filetype_e> m_vFileTypes QRA_GUARDED_BY(m_CameraMutex);
    std::vector<_stPtpContentItem> m_vItems QRA_GUARDED_BY(m_CameraMutex);
};

#endif
