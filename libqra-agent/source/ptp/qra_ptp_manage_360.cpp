// Whether a camera's media are 360-degree ones, told by their own bytes. Nothing here fails an item: what
// cannot be read leaves it plain.
#include <cstdio>
#include <memory>

#include "common/util/qra_log.h"
#include "libqra-agent/source/ptp/qra_ptp_image_360.h"
#include "libqra-agent/source/ptp/qra_ptp_manage.h"
#include "libqra-agent/source/ptp/qra_ptp_temp_file.h"
#include "libqra-agent/source/ptp/qra_ptp_video_360.h"

namespace {

struct FileClose {
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};
using OpenFile = std::unique_ptr<std::FILE, FileClose>;

OpenFile OpenToRead(const std::string& strPath) {
    OpenFile file(std::fopen(strPath.c_str(), "rbe"));
    if (file == nullptr)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "error: file open failed\n");
    return file;
}

/// Pieces of a film, each of which lies in the temporary file for a moment.
qra_ptp_piece_reader MakePieceReader(mtp_device_h hDevice, mtp_object_h hObject, const std::string& strPath) {
    return [=](unsigned long long nOffset, unsigned nLength, std::string& strPiece) {
        unsigned nGot = 0;
        const int nResult =
            mtp_get_partial_object(hDevice, hObject, strPath.c_str(), nOffset, nLength, &nGot);
        if (nResult != 0) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_get_partial_object failed : %d", nResult);
            return false;
        }
        if (nGot < nLength)
            return false;
        const OpenFile file = OpenToRead(strPath);
        strPiece.resize(nLength);
        return file != nullptr && std::fread(strPiece.data(), 1, nLength, file.get()) == nLength;
    };
}

}  // namespace

void CQRAPTPManage::m_Check360(mtp_object_h hObject, const mtp_object_info& info, _stPtpContentItem& item) {
    if (info.file_type == MTP_FILETYPE_JPG) {
        const CQRAPTPTempFile file(hObject, "JPG");
        if (!file.IsUsable())
            return;
        m_ImageMakernoteCheck(hObject, file.GetPath(), &item.bIs360, &item.nStitchType);
        if (!item.bIs360)
            m_ImageXMPdataCheck(file.GetPath(), &item.bIs360);
    } else if (info.file_type == MTP_FILETYPE_MP4) {
        const CQRAPTPTempFile file(hObject, "MP4");
        if (!file.IsUsable())
            return;
        m_VideoMakernoteCheck(hObject, file.GetPath(), info.size, &item.bIs360, &item.nStitchType);
        if (!item.bIs360)
            m_VideoXMPdataParser(hObject, file.GetPath(), info.size, &item.bIs360, &item.nStitchType);
    }
}

void CQRAPTPManage::m_ImageMakernoteCheck(mtp_object_h hObject, const std::string& strPath, bool* pIs360,
                                          int* pStitchType) {
    const int nResult = mtp_get_object(m_WalkCamera.hDevice, hObject, strPath.c_str());
    if (nResult != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "mtp_get_partial_object failed : %d", nResult);
        return;
    }
    if (const OpenFile file = OpenToRead(strPath))
        qra_ptp_read_image_makernote(file.get(), pIs360, pStitchType);
}

void CQRAPTPManage::m_ImageXMPdataCheck(const std::string& strPath, bool* pIs360) {
    const OpenFile file = OpenToRead(strPath);
    if (file != nullptr && qra_ptp_has_panorama_packet(file.get()))
        *pIs360 = true;
}

void CQRAPTPManage::m_VideoMakernoteCheck(mtp_object_h hObject, const std::string& strPath,
                                          unsigned long long uSize, bool* pIs360, int* pStitchType) {
    qra_ptp_read_video_makernote(MakePieceReader(m_WalkCamera.hDevice, hObject, strPath), uSize, pIs360,
                                 pStitchType);
}

void CQRAPTPManage::m_VideoXMPdataParser(mtp_object_h hObject, const std::string& strPath,
                                         unsigned long long uSize, bool* pIs360, int* pStitchType) {
    qra_ptp_read_video_description(MakePieceReader(m_WalkCamera.hDevice, hObject, strPath), uSize, pIs360,
                                   pStitchType);
}
