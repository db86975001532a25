#include "libqra-agent/source/scsa/qra_dmp_parse_xml.h"

#include <libxml/parser.h>
#include <libxml/xmlreader.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "common/util/qra_log.h"
#include "libqra-agent/source/scsa/qra_dmp_xml_check.h"
#include "xml_turn.h"

namespace {

constexpr int OLDEST_LIBXML2 = 20904;

/// The use of libxml2 by one call, in its turn: from the version test to the cleanup of the global state.
class CLibxml2Use {
public:
    CLibxml2Use() {
        xml_turn_begin();
        xmlCheckVersion(OLDEST_LIBXML2);
    }
    ~CLibxml2Use() {
        xmlCleanupParser();
        xml_turn_end();
    }
    CLibxml2Use(const CLibxml2Use&) = delete;
    CLibxml2Use& operator=(const CLibxml2Use&) = delete;
};

using CReaderPtr = std::unique_ptr<xmlTextReader, decltype(&xmlFreeTextReader)>;

/// The results of a read tell enough; without a handler libxml2 writes every error to stderr.
void KeepSilent(void*, xmlErrorPtr) {}

/// The reader refers to the text. Null, with a log line, if there is nothing to read.
CReaderPtr OpenDocument(std::string& strXML) {
    strXML.erase(strXML.find_last_not_of('\0') + 1);
    CReaderPtr reader(nullptr, &xmlFreeTextReader);
    if (strXML.size() <= INT_MAX && IsReadableInTime(strXML)) {
        reader.reset(xmlReaderForMemory(strXML.data(), static_cast<int>(strXML.size()), "", nullptr,
                                        XML_PARSE_RECOVER));
    }
    if (!reader) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "CQRADmpParseXml: XML String from DMP is not xml !!!");
        return reader;
    }
    xmlTextReaderSetStructuredErrorHandler(reader.get(), KeepSilent, nullptr);
    return reader;
}

/// Reads the next node, as xmlTextReaderRead() does. Once a document has broken off it stays so: libxml2
/// itself would walk on over what it has of the rest.
int ReadNode(xmlTextReaderPtr reader) {
    return xmlTextReaderReadState(reader) == XML_TEXTREADER_MODE_ERROR ? -1 : xmlTextReaderRead(reader);
}

bool IsNamed(xmlTextReaderPtr reader, const char* szName) {
    const xmlChar* const name = xmlTextReaderConstLocalName(reader);
    return name != nullptr && strcmp(reinterpret_cast<const char*>(name), szName) == 0;
}

bool IsElementStart(xmlTextReaderPtr reader) {
    return xmlTextReaderNodeType(reader) == XML_READER_TYPE_ELEMENT;
}

/// An element in the short form has nothing to step into: the node after it belongs to somebody else.
bool HasInside(xmlTextReaderPtr reader) {
    return xmlTextReaderIsEmptyElement(reader) != 1;
}

/// Steps into the element that the reader stands on. Its text is taken where it has one.
void TakeText(xmlTextReaderPtr reader, std::string& strText) {
    if (!HasInside(reader) || ReadNode(reader) != 1 || xmlTextReaderHasValue(reader) != 1) {
        return;
    }
    const xmlChar* const value = xmlTextReaderConstValue(reader);
    if (value != nullptr) {
        strText = reinterpret_cast<const char*>(value);
    }
}

/// Calls `visit` for each element start up to the end of the section that the reader stands on; true if that
/// end was reached, and not the document's.
template <class Visit>
bool WalkSection(xmlTextReaderPtr reader, const char* szSection, Visit visit) {
    if (!HasInside(reader)) {
        return true;
    }
    while (ReadNode(reader) == 1) {
        if (IsElementStart(reader)) {
            visit();
        } else if (xmlTextReaderNodeType(reader) == XML_READER_TYPE_END_ELEMENT &&
                   IsNamed(reader, szSection)) {
            return true;
        }
    }
    return false;
}

template <class Record>
struct TextElement {
    const char* szName;
    std::string Record::*pField;
};

constexpr TextElement<_stDMPMetadata_common> COMMON_ELEMENTS[] = {
    {"ContentID", &_stDMPMetadata_common::strContentID},
    {"DECEMediaProfile", &_stDMPMetadata_common::strDECEMediaProfile},
    {"RunLength", &_stDMPMetadata_common::strRunLength},
    {"Publisher", &_stDMPMetadata_common::strPublisher},
    {"TitleDisplay19", &_stDMPMetadata_common::strTitleDisplay19},
    {"TitleDisplay60", &_stDMPMetadata_common::strTitleDisplay60},
    {"TitleDisplayUnlimited", &_stDMPMetadata_common::strTitleDisplayUnlimited},
    {"TitleDisplaySort", &_stDMPMetadata_common::strTitleDisplaySort},
    {"Summary190", &_stDMPMetadata_common::strSummary190},
    {"Summary400", &_stDMPMetadata_common::strSummary400},
    {"Summary4000", &_stDMPMetadata_common::strSummary4000},
    {"DescriptionLanguage", &_stDMPMetadata_common::strDescriptionLanguage},
};

constexpr TextElement<_stDMPMetadata_image> CHAPTER_IMAGE_ELEMENTS[] = {
    {"Encoding", &_stDMPMetadata_image::strEncoding},
    {"TrackReference", &_stDMPMetadata_image::strTrackReference},
};

constexpr TextElement<_stDMPMetadata_image> REQUIRED_IMAGE_ELEMENTS[] = {
    {"Encoding", &_stDMPMetadata_image::strEncoding},
    {"TrackReference", &_stDMPMetadata_image::strTrackReference},
    {"Location", &_stDMPMetadata_image::strLocation},
};

constexpr TextElement<_stDMPMetadata_rating> RATING_ELEMENTS[] = {
    {"country", &_stDMPMetadata_rating::strCountry},
    {"System", &_stDMPMetadata_rating::strSystem},
    {"Value", &_stDMPMetadata_rating::strValue},
    {"Description", &_stDMPMetadata_rating::strDescription},
    {"AdultContent", &_stDMPMetadata_rating::strAdultContent},
};

/// Fills the field of the element that the reader stands on, if it is one of these.
template <class Record, size_t N>
void ReadElement(xmlTextReaderPtr reader, const TextElement<Record> (&elements)[N], Record& record) {
    for (const TextElement<Record>& element : elements) {
        if (IsNamed(reader, element.szName)) {
            TakeText(reader, record.*element.pField);
            return;
        }
    }
}

/// The number that a text begins with, as a processor of 32 bits sees it.
int ToNumber(const std::string& strText) {
    return static_cast<int>(std::clamp<long>(strtol(strText.c_str(), nullptr, 10), INT_MIN, INT_MAX));
}

void TakeNumber(xmlTextReaderPtr reader, int& nValue) {
    std::string strText;
    TakeText(reader, strText);
    if (!strText.empty()) {
        nValue = ToNumber(strText);
    }
}

template <size_t N>
void ReadImageElement(xmlTextReaderPtr reader, const TextElement<_stDMPMetadata_image> (&elements)[N],
                      _stDMPMetadata_image& image) {
    if (IsNamed(reader, "Width")) {
        TakeNumber(reader, image.nWidth);
    } else if (IsNamed(reader, "Height")) {
        TakeNumber(reader, image.nHeight);
    } else {
        ReadElement(reader, elements, image);
    }
}

/// Names in a package's list have their colons escaped.
std::string EscapeColons(const std::string& strName) {
    std::string strEscaped;
    for (const char c : strName) {
        if (c == ':') {
            strEscaped += "%3A";
        } else {
            strEscaped += c;
        }
    }
    return strEscaped;
}

}  // namespace

bool CQRADmpParseXml::ParseDMPMetaData(std::string strXML, _stDMPMETADATA& data) {
    const CLibxml2Use use;
    const CReaderPtr reader = OpenDocument(strXML);
    if (!reader) {
        return false;
    }
    bool bAnyNode = false;
    int nResult = ReadNode(reader.get());
    for (; nResult == 1; nResult = ReadNode(reader.get())) {
        bAnyNode = true;
        m_processMateDataNode(reader.get(), data);
    }
    if (nResult == 0) {
        return false;
    }
    QRA_LOG_WARNING(QRA_TAG_DMP, "CQRADmpParseXml: Fail to Parse XML");
    return bAnyNode;
}

void CQRADmpParseXml::m_processMateDataNode(xmlTextReaderPtr reader, _stDMPMETADATA& data) {
    if (!IsElementStart(reader)) {
        return;
    }
    if (IsNamed(reader, "ContentMetadata")) {
        m_processCommonMetaData(reader, data.common);
    } else if (IsNamed(reader, "RequiredImages")) {
        m_processRequiredImageData(reader, data.images);
    } else if (IsNamed(reader, "Ratings")) {
        m_processRatingData(reader, data.ratings);
    } else if (IsNamed(reader, "Chapters")) {
        m_processChapterImageData(reader, data.images);
    }
}

void CQRADmpParseXml::m_processCommonMetaData(xmlTextReaderPtr reader, _stDMPMetadata_common& common) {
    WalkSection(reader, "ContentMetadata", [&] { ReadElement(reader, COMMON_ELEMENTS, common); });
}

void CQRADmpParseXml::m_processRequiredImageData(xmlTextReaderPtr reader,
                                                 std::vector<_stDMPMetadata_image>& images) {
    _stDMPMetadata_image image;
    const bool bWhole = WalkSection(reader, "RequiredImages",
                                    [&] { ReadImageElement(reader, REQUIRED_IMAGE_ELEMENTS, image); });
    if (!bWhole) {
        return;
    }
    QRA_LOG_TRACE(QRA_TAG_DMP, "image.nWidth = [%d], image.nHeight = [%d]", image.nWidth, image.nHeight);
    QRA_LOG_TRACE(QRA_TAG_DMP, "image.strEncoding = [%s], image.strTrackReference = [%d]",
                  image.strEncoding.c_str(), ToNumber(image.strTrackReference));
    images.push_back(image);
}

void CQRADmpParseXml::m_processChapterImageData(xmlTextReaderPtr reader,
                                                std::vector<_stDMPMetadata_image>& images) {
    WalkSection(reader, "Chapters", [&] {
        if (IsNamed(reader, "Chapter")) {
            _stDMPMetadata_image image;
            WalkSection(reader, "Chapter", [&] { ReadImageElement(reader, CHAPTER_IMAGE_ELEMENTS, image); });
            images.push_back(image);
        }
    });
}

void CQRADmpParseXml::m_processRatingData(xmlTextReaderPtr reader,
                                          std::vector<_stDMPMetadata_rating>& ratings) {
    WalkSection(reader, "Ratings", [&] {
        if (IsNamed(reader, "Rating")) {
            _stDMPMetadata_rating rating;
            WalkSection(reader, "Rating", [&] { ReadElement(reader, RATING_ELEMENTS, rating); });
            ratings.push_back(rating);
        }
    });
}

bool CQRADmpParseXml::ParseDMPTableOfContents(std::string strXML, std::vector<std::string>& vFileList,
                                              int& iIndex) {
    std::string strName;
    if (!m_ReadTableOfContents(std::move(strXML), strName)) {
        return false;
    }
    if (!strName.empty() && strName.front() == '/') {
        strName.erase(0, 1);
    }
    QRA_LOG_TRACE(QRA_TAG_DMP, "DescriptiveMetadata = [%s]", strName.c_str());
    const auto it = std::find_if(vFileList.begin(), vFileList.end(), [&](const std::string& strEntry) {
        return strEntry.find(strName) != std::string::npos;
    });
    if (it != vFileList.end()) {
        iIndex = static_cast<int>(it - vFileList.begin());
    }
    return true;
}

bool CQRADmpParseXml::ParseDMPTableOfContents(std::string strXML, std::string& strPath) {
    std::string strName;
    if (!m_ReadTableOfContents(std::move(strXML), strName)) {
        return false;
    }
    strPath = strName;
    return true;
}

bool CQRADmpParseXml::m_ReadTableOfContents(std::string strXML, std::string& strName) {
    QRA_LOG_TRACE(QRA_TAG_DMP, "TableOfContents strXML : \n%s\n", strXML.c_str());
    const CLibxml2Use use;
    const CReaderPtr reader = OpenDocument(strXML);
    if (!reader) {
        return false;
    }
    bool bFound = false;
    int nResult = ReadNode(reader.get());
    while (nResult == 1 && !bFound) {
        bFound = m_processTableOfContentsNode(reader.get(), strName);
        nResult = bFound ? 0 : ReadNode(reader.get());
    }
    if (nResult != 0) {
        QRA_LOG_WARNING(QRA_TAG_DMP, "CQRADmpParseXml: Fail to Parse XML = [%d]", nResult);
        return false;
    }
    strName = EscapeColons(strName);
    return true;
}

bool CQRADmpParseXml::m_processTableOfContentsNode(xmlTextReaderPtr reader, std::string& value) {
    if (!IsElementStart(reader) || !IsNamed(reader, "DescriptiveMetadata")) {
        return false;
    }
    TakeText(reader, value);
    QRA_LOG_TRACE(QRA_TAG_DMP, "CQRADmpParseXml: DescriptiveMetadata = [%s]", value.c_str());
    return true;
}
