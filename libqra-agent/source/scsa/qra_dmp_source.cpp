#include "libqra-agent/source/scsa/qra_dmp_source.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/scsa/qra_dmp_data.h"
#include "libqra-agent/source/scsa/qra_dmp_parse_xml.h"
#include "scsa_dmp.h"

namespace {

using SCSA_DMP::MetaDataExtractor;

constexpr std::string_view STAND_ALONE_EXTENSIONS[] = {"uvu", "uva", "uvt", "scsa"};

/// All XML of one package's films together, and that of its table and its description together. What it tells
/// is kept, and may take twenty times its room.
constexpr size_t MOST_XML = 16 << 20;

/// Takes the size of a text off what is left for its package; false, with a log line, if that is not enough.
bool TakeRoom(const std::string& strXML, size_t& nLeft) {
    if (strXML.size() > nLeft) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: the XML is too large, size = [%llu]",
                        static_cast<unsigned long long>(strXML.size()));
        return false;
    }
    nLeft -= strXML.size();
    return true;
}

/// A content as its XML tells it, its pictures lying in the file `strLocation`.
_stDMPMETADATA MakeSFFContent(const std::string& strXML, const std::string& strLocation) {
    _stDMPMETADATA content;
    CQRADmpParseXml().ParseDMPMetaData(strXML, content);
    for (_stDMPMetadata_image& image : content.images) {
        image.strLocation = strLocation;
    }
    return content;
}

}  // namespace

CQRADmpSource::~CQRADmpSource() {
    m_strCurFilePath.clear();
}

bool CQRADmpSource::MoveToIndex(std::string strFilePath) {
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: strFilePath = [%s]", strFilePath.c_str());
    m_strCurFilePath = strFilePath;
    if (CQRADmpData::GetInstance()->FindPathExist(strFilePath)) {
        QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: Path Exists !");
        return true;
    }
    if (m_IsStandAloneMeta()) {
        return m_MakeMetadataFromSFF();
    }
    std::vector<std::string> vEmbeddedFileList;
    if (!MetaDataExtractor::GetFileList(m_strCurFilePath, vEmbeddedFileList)) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: GetFileList error!");
        return false;
    }
    for (size_t i = 0; i < vEmbeddedFileList.size(); ++i) {
        QRA_LOG_TRACE(QRA_TAG_DMP, "vEmbeddedFileList[%d] = [%s]", static_cast<int>(i),
                      vEmbeddedFileList[i].c_str());
    }
    if (vEmbeddedFileList.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: GetFileList no data, vEmbeddedFileList.empty()!");
        std::vector<_stDMPMETADATA> nothing;
        CQRADmpData::GetInstance()->InsertData(m_strCurFilePath, nothing);
        return true;
    }
    const bool bRet1 = m_GetMeteData(vEmbeddedFileList);
    const bool bRet2 = m_MakeMetadataFromSFF(vEmbeddedFileList);
    QRA_LOG_TRACE(QRA_TAG_DMP, "bRet1 = [%d], bRet2 = [%d]", bRet1, bRet2);
    return bRet1 || bRet2;
}

bool CQRADmpSource::m_IsStandAloneMeta() {
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: m_strCurFilePath = [%s]", m_strCurFilePath.c_str());
    const size_t nDot = m_strCurFilePath.rfind('.');
    if (nDot == std::string::npos) {
        return false;
    }
    std::string strExtension = m_strCurFilePath.substr(nDot + 1);
    QRA_LOG_TRACE(QRA_TAG_DMP, "File Extension is [%s]", strExtension.c_str());
    strExtension = CQRAUtil::ToLower(strExtension);
    QRA_LOG_TRACE(QRA_TAG_DMP, "File Extension after CQRAUtil::ToLower [%s]", strExtension.c_str());
    return std::find(std::begin(STAND_ALONE_EXTENSIONS), std::end(STAND_ALONE_EXTENSIONS), strExtension) !=
           std::end(STAND_ALONE_EXTENSIONS);
}

bool CQRADmpSource::m_HasTableOfContentsXML(const std::vector<std::string>& vEmbeddedFileList, int& iIndex) {
    const auto it = std::find_if(
        vEmbeddedFileList.begin(), vEmbeddedFileList.end(),
        [](const std::string& strEntry) { return strEntry.find("TableOfContents") != std::string::npos; });
    if (it == vEmbeddedFileList.end()) {
        return false;
    }
    iIndex = static_cast<int>(it - vEmbeddedFileList.begin());
    return true;
}

bool CQRADmpSource::m_HasPoster(const std::vector<std::string>& vEmbeddedFileList, int& iIndex) {
    const auto it =
        std::find_if(vEmbeddedFileList.begin(), vEmbeddedFileList.end(), [](const std::string& strEntry) {
            return MetaDataExtractor::GetFileType(strEntry) == SCSA_DMP::FILE_TYPE_POSTER;
        });
    if (it == vEmbeddedFileList.end()) {
        return false;
    }
    iIndex = static_cast<int>(it - vEmbeddedFileList.begin());
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: m_HasPoster index = [%d]", iIndex);
    return true;
}

bool CQRADmpSource::m_GetMeteData(std::vector<std::string>& vEmbeddedFileList) {
    if (vEmbeddedFileList.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "vEmbeddedFileList.empty()");
        return false;
    }
    int iTableOfContents = -1;
    if (!m_HasTableOfContentsXML(vEmbeddedFileList, iTableOfContents)) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: %s has not TableOfContents.XML file",
                        m_strCurFilePath.c_str());
        return false;
    }
    std::string strTableOfContents;
    MetaDataExtractor::GetXML(m_strCurFilePath, vEmbeddedFileList[iTableOfContents], strTableOfContents);
    size_t nLeft = MOST_XML;
    if (!TakeRoom(strTableOfContents, nLeft)) {
        return false;
    }
    int iMetadataXML = -1;
    CQRADmpParseXml().ParseDMPTableOfContents(strTableOfContents, vEmbeddedFileList, iMetadataXML);
    if (iMetadataXML == -1) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: iMetadataXML is not exist");
        return false;
    }
    std::string strMetadata;
    if (!MetaDataExtractor::GetXML(m_strCurFilePath, vEmbeddedFileList[iMetadataXML], strMetadata)) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: GetMetaData has failed");
        return false;
    }
    if (!TakeRoom(strMetadata, nLeft)) {
        return false;
    }
    std::vector<_stDMPMETADATA> contents(1);
    _stDMPMETADATA& content = contents.front();
    CQRADmpParseXml().ParseDMPMetaData(strMetadata, content);
    int iPoster = -1;
    if (!content.images.empty() && m_HasPoster(vEmbeddedFileList, iPoster)) {
        content.images.front().strTrackReference.clear();
        content.images.front().strLocation = vEmbeddedFileList[iPoster];
        QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: Poster Path = [%s]",
                      content.images.front().strLocation.c_str());
    } else {
        // What the references of these pictures count in is not known.
        content.images.clear();
    }
    CQRADmpData::GetInstance()->InsertData(m_strCurFilePath, contents);
    return true;
}

bool CQRADmpSource::m_MakeMetadataFromSFF(const std::vector<std::string>& vEmbeddedFileList) {
    if (vEmbeddedFileList.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "vEmbeddedFileList.empty()");
        return false;
    }
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: m_strCurFilePath = [%s], vEmbeddedFileList.size() = [%d]",
                  m_strCurFilePath.c_str(), static_cast<int>(vEmbeddedFileList.size()));
    std::vector<_stDMPMETADATA> contents;
    size_t nLeft = MOST_XML;
    for (const std::string& strEntry : vEmbeddedFileList) {
        std::string strXML;
        if (MetaDataExtractor::GetFileType(strEntry) == SCSA_DMP::FILE_TYPE_SFF &&
            MetaDataExtractor::GetXMLFromSFF(m_strCurFilePath, strEntry, strXML) && TakeRoom(strXML, nLeft)) {
            contents.push_back(MakeSFFContent(strXML, strEntry));
        }
    }
    CQRADmpData* const pData = CQRADmpData::GetInstance();
    if (!pData->FindPathExist(m_strCurFilePath)) {
        pData->InsertData(m_strCurFilePath, contents);
        return true;
    }
    for (_stDMPMETADATA& content : contents) {
        pData->InsertData(m_strCurFilePath, content);
    }
    return true;
}

bool CQRADmpSource::m_MakeMetadataFromSFF() {
    std::string strXML;
    size_t nLeft = MOST_XML;
    if (!MetaDataExtractor::GetXMLFromSFF(m_strCurFilePath, "", strXML) || !TakeRoom(strXML, nLeft)) {
        return false;
    }
    std::vector<_stDMPMETADATA> contents(1, MakeSFFContent(strXML, m_strCurFilePath));
    CQRADmpData::GetInstance()->InsertData(m_strCurFilePath, contents);
    return true;
}

bool CQRADmpSource::GetValue(std::string strField, int* pValue) {
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: strField = [%s]", strField.c_str());
    return CQRADmpData::GetInstance()->GetValue(m_strCurFilePath, strField, pValue);
}

bool CQRADmpSource::GetValue(std::string strField, char** ppValue) {
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: strField = [%s]", strField.c_str());
    return CQRADmpData::GetInstance()->GetValue(m_strCurFilePath, strField, ppValue);
}

bool CQRADmpSource::GetThumbCount(std::string strFilePath, int& iContentCount) {
    iContentCount = 0;
    if (strFilePath.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: strFilePath is empty(), no metedata");
        return false;
    }
    const bool bRet = CQRADmpData::GetInstance()->GetThumbCount(strFilePath, iContentCount);
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: bRet = [%d], iContentCount = [%d]", bRet, iContentCount);
    return bRet;
}

bool CQRADmpSource::GetThumbImageCount(std::string strFilePath, int iContentIndex, int& iImageCount) {
    iImageCount = 0;
    if (strFilePath.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: strFilePath is empty(), no metedata");
        return false;
    }
    const bool bRet = CQRADmpData::GetInstance()->GetThumbDataCount(strFilePath, iContentIndex, iImageCount);
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: bRet = [%d], iImageCount = [%d]", bRet, iImageCount);
    return bRet;
}

bool CQRADmpSource::GetThumbImage(std::string strFilePath, int iContentIndex, int iImageIndex,
                                  unsigned long long& ullBuffSize, char** ppImage) {
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: strFilePath = [%s], iContentIndex = [%d], iImageIndex = [%d]",
                  strFilePath.c_str(), iContentIndex, iImageIndex);
    ullBuffSize = 0;
    if (strFilePath.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: strFilePath is empty(), no metedata");
        return false;
    }
    std::string strImgFilePath;
    std::string strTrackReference;
    if (!CQRADmpData::GetInstance()->GetThumbnailData(strFilePath, iContentIndex, iImageIndex, strImgFilePath,
                                                      strTrackReference)) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: Get thumbnai data failed");
        return false;
    }
    bool bRet = false;
    if (strTrackReference.empty()) {
        QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: MetaDataExtractor::GetImageBuffer strImgFilePath = [%s]",
                      strImgFilePath.c_str());
        bRet = MetaDataExtractor::GetImageBuffer(strFilePath, strImgFilePath, ullBuffSize, ppImage);
    } else {
        QRA_LOG_TRACE(QRA_TAG_DMP,
                      "DmpSource: MetaDataExtractor::GetImageBufferFromSFF strImgFilePath = [%s]",
                      strImgFilePath.c_str());
        bRet = MetaDataExtractor::GetImageBufferFromSFF(strFilePath, strImgFilePath, strTrackReference,
                                                        ullBuffSize, ppImage);
    }
    if (!bRet) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "DmpSource: dmp-manager get image buffer fail");
        return false;
    }
    QRA_LOG_TRACE(QRA_TAG_DMP, "DmpSource: ullBuffSize = [%llu], pImageBuf = [%p]", ullBuffSize,
                  static_cast<void*>(*ppImage));
    return true;
}
