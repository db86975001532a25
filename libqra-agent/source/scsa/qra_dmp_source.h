#ifndef QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_SOURCE_H
#define QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_SOURCE_H

#include <string>
#include <vector>

/**
 * Decides in which order a package is questioned, and keeps the package that was selected last.
 *
 * The platform's extractor opens packages, CQRADmpParseXml reads what it gives, and CQRADmpData keeps that
 * for the life of the process, so that each package is read once. A stand-alone package, told by its
 * extension, is one SFF file; any other is a container of many files.
 *
 * The object belongs to a mass-storage source and to that source's caller's thread. No lock is held while the
 * extractor works, which may take long.
 */
class CQRADmpSource {
public:
    CQRADmpSource() = default;
    virtual ~CQRADmpSource();
    CQRADmpSource(const CQRADmpSource&) = delete;
    CQRADmpSource& operator=(const CQRADmpSource&) = delete;

    /// Selects a package, which stays selected also when it cannot be read: there are no values then.
    bool MoveToIndex(std::string strFilePath);
    /// Values of the selected package, as CQRADmpData gives them.
    bool GetValue(std::string strField, int* pValue);
    bool GetValue(std::string strField, char** ppValue);

    // Pictures of a package that was selected before; the selection is not looked at.

    bool GetThumbCount(std::string strFilePath, int& iContentCount);
    bool GetThumbImageCount(std::string strFilePath, int iContentIndex, int& iImageCount);
    /// The bytes of a picture, in a block that the caller frees with free().
    bool GetThumbImage(std::string strFilePath, int iContentIndex, int iImageIndex,
                       unsigned long long& ullBuffSize, char** ppImage);

private:
    bool m_IsStandAloneMeta();
    bool m_HasTableOfContentsXML(const std::vector<std::string>& vEmbeddedFileList, int& iIndex);
    bool m_HasPoster(const std::vector<std::string>& vEmbeddedFileList, int& iIndex);
    bool m_GetMeteData(std::vector<std::string>& vEmbeddedFileList);
    bool m_MakeMetadataFromSFF(const std::vector<std::string>& vEmbeddedFileList);
    bool m_MakeMetadataFromSFF();

    std::string m_strCurFilePath;
};

#endif
