#include "libqra-agent/source/ptp/qra_ptp_manage.h"

#include <memory>
#include <utility>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/local-source/qra_mcf_convert.h"

namespace {

constexpr char k360Model[] = "XQ-T410";

template <class Handle>
using HandleArray = std::unique_ptr<Handle, MallocFree>;

/// All devices of the platform; false if they cannot be asked for.
bool ListDevices(std::vector<mtp_device_h>& devices) {
    int nResult = mtp_initialize();
    if (nResult != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "[ptp performance] mtp_initialize failed %d", nResult);
        return false;
    }
    mtp_device_h* pList = nullptr;
    int nCount = 0;
    nResult = mtp_get_devices(&pList, &nCount);
    const HandleArray<mtp_device_h> list(pList);
    if (nResult != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "[ptp performance] mtp_get_device_list failed %d", nResult);
        return false;
    }
    if (pList != nullptr && nCount > 0)
        devices.assign(pList, pList + nCount);
    return true;
}

/// The device with these numbers, or 0.
mtp_device_h SearchDevice(const std::vector<mtp_device_h>& devices, int nBusValue, int nDeviceValue) {
    for (const mtp_device_h hDevice : devices) {
        int nBus = -1;
        int nDevice = -1;
        if (mtp_deviceinfo_get_bus_location(hDevice, &nBus) == 0 && nBus == nBusValue &&
            mtp_deviceinfo_get_device_number(hDevice, &nDevice) == 0 && nDevice == nDeviceValue)
            return hDevice;
    }
    return 0;
}

bool Is360Model(mtp_device_h hDevice) {
    char* szName = nullptr;
    const int nResult = mtp_deviceinfo_get_model_name(hDevice, &szName);
    const CMallocText name(szName);
    if (nResult != 0)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_deviceinfo_get_model_name failed, ret :%d", nResult);
    return nResult == 0 && CQRAUtil::CharToString(szName) == k360Model;
}

std::vector<mtp_storage_h> GetStorages(mtp_device_h hDevice) {
    mtp_storage_h* pIds = nullptr;
    int nCount = 0;
    const int nResult = mtp_get_storages(hDevice, &pIds, &nCount);
    const HandleArray<mtp_storage_h> ids(pIds);
    if (nResult != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_get_storage_ids failed , ret :%d", nResult);
        return {};
    }
    return pIds != nullptr && nCount > 0 ? std::vector<mtp_storage_h>(pIds, pIds + nCount)
                                         : std::vector<mtp_storage_h>();
}

}  // namespace

CQRAMutex& CQRAPTPManage::m_CameraMutex = *new CQRAMutex;

CQRAPTPManage::CQRAPTPManage() {
    m_InitExtensionConvert();
}

void CQRAPTPManage::m_InitExtensionConvert() {
    m_ExtensionConvert = {
        {kPTPFolderFormat, MTP_FILETYPE_FOLDER},
        {"JPG", MTP_FILETYPE_JPG},
        {"JFIF", MTP_FILETYPE_JFIF},
        {"TIFF", MTP_FILETYPE_TIFF},
        {"BMP", MTP_FILETYPE_BMP},
        {"GIF", MTP_FILETYPE_GIF},
        {"PICT", MTP_FILETYPE_PICT},
        {"PNG", MTP_FILETYPE_PNG},
        {"MP4", MTP_FILETYPE_MP4},
        {"WMV", MTP_FILETYPE_WMV},
        {"AVI", MTP_FILETYPE_AVI},
        {"MPEG", MTP_FILETYPE_MPEG},
        {"ASF", MTP_FILETYPE_ASF},
        {"MOV", MTP_FILETYPE_MOV},
    };
}

bool CQRAPTPManage::InitParam(const _stPTPParam* pParam) {
    if (pParam == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pParam is NULL");
        return false;
    }
    Wish wish = m_MakeWish(*pParam);
    const CQRALockGuard<CQRAGMutex> lock(m_StateMutex);
    m_Wish = std::move(wish);
    return true;
}

CQRAPTPManage::Wish CQRAPTPManage::m_MakeWish(const _stPTPParam& param) {
    Wish wish{param.strContentType, param.strSortCategory, param.nFolderId, {}};
    wish.extensions.ClearExtension();
    if (!wish.extensions.GetExtensionFromApp(param.strExtension))
        wish.extensions.SetDefaultExtension();
    return wish;
}

_stPTPCamera CQRAPTPManage::m_GetHeldCamera() {
    const CQRALockGuard<CQRAGMutex> lock(m_StateMutex);
    return m_Camera;
}

bool CQRAPTPManage::FindCamera(int nBusValue, int nDeviceValue, bool bForce) {
    return FindCamera(nBusValue, nDeviceValue, bForce, nullptr);
}

bool CQRAPTPManage::FindCamera(int nBusValue, int nDeviceValue, bool bForce, _stPTPCamera* pCamera) {
    if (nBusValue < 0 || nDeviceValue < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "nBusValue or nDeviceValue param error");
        return false;
    }
    _stPTPCamera held = m_GetHeldCamera();
    const bool bIsHeld =
        held.hDevice != 0 && held.nBusValue == nBusValue && held.nDeviceValue == nDeviceValue;
    if (bIsHeld && !bForce) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "Camera found, return directly");
    } else {
        std::vector<mtp_device_h> devices;
        if (!ListDevices(devices))
            return false;
        const CQRALockGuard<CQRAMutex> camera(m_CameraMutex);
        const mtp_device_h hDevice = SearchDevice(devices, nBusValue, nDeviceValue);
        if (hDevice != 0)
            m_HoldCamera(hDevice, nBusValue, nDeviceValue);
        held = m_GetHeldCamera();
    }
    if (pCamera != nullptr)
        *pCamera = held;
    return held.hDevice != 0;
}

void CQRAPTPManage::m_HoldCamera(mtp_device_h hDevice, int nBusValue, int nDeviceValue) {
    _stPTPCamera camera{nBusValue, nDeviceValue, hDevice, Is360Model(hDevice), GetStorages(hDevice)};
    const CQRALockGuard<CQRAGMutex> lock(m_StateMutex);
    m_Camera = std::move(camera);
}

bool CQRAPTPManage::DownloadExif(const std::string& strFilePath, const std::string& strDownloadPath) {
    if (strFilePath.empty() || strDownloadPath.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Please check param, strFilePath or strDownloadPath is empty");
        return false;
    }
    const CQRALockGuard<CQRAMutex> camera(m_CameraMutex);
    const int nResult =
        mtp_get_thumbnail(m_GetHeldCamera().hDevice, CQRAUtil::str2int(strFilePath), strDownloadPath.c_str());
    if (nResult != 0)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_get_thumbnail failed : %d", nResult);
    return nResult == 0;
}

bool CQRAPTPManage::DownloadFileToBuffer(const std::string& strFilePath, void*, unsigned long*) {
    const CQRALockGuard<CQRAMutex> camera(m_CameraMutex);
    if (strFilePath.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Please check param, strFilePath is empty");
        return false;
    }
    const size_t nSlash = strFilePath.rfind('/');
    if (nSlash == std::string::npos) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Please check strFilePath=%s", strFilePath.c_str());
        return false;
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "strFolderPath=%s", strFilePath.substr(0, nSlash).c_str());
    QRA_LOG_INFO(QRA_TAG_LOCAL, "strFileName=%s", strFilePath.substr(nSlash + 1).c_str());
    return true;
}
