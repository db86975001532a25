#ifndef QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_PARSE_XML_H
#define QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_PARSE_XML_H

#include <string>
#include <vector>

#include "libqra-agent/source/scsa/qra_dmp_metadata.h"

struct _xmlTextReader;

/**
 * Reads the XML of a package, which comes from a drive and may be anything: no entity is expanded, nothing is
 * fetched, libxml2's own limits bound depth and size, and a text that would take it too long
 * (IsReadableInTime()) is none. Elements count by their local names alone; what a document does not have
 * leaves its field as it was. NULs at the end of a text are cut.
 *
 * No state of its own. Each call ends with xmlCleanupParser(), which takes libxml2's global state from under
 * every parse that runs on another thread, so that the process crashes. Therefore each call holds the
 * process's turn at libxml2 (xml_turn.h), as the host's service for media servers does. Who uses libxml2 on
 * a thread of its own and does not take turns has to keep away from calls that move a list's cursor.
 */
class CQRADmpParseXml {
public:
    virtual ~CQRADmpParseXml() = default;

    /// Adds what a metadata document tells to `data`. The result is no verdict: true if the document broke
    /// off after its first node, and false for a whole one as for text that is no XML.
    bool ParseDMPMetaData(std::string strXML, _stDMPMETADATA& data);

    /// Finds the entry of `vFileList` that a table of contents names as the package's description. `iIndex`
    /// stays as it was where none matches, which is no failure; a table that names nothing picks entry 0.
    bool ParseDMPTableOfContents(std::string strXML, std::vector<std::string>& vFileList, int& iIndex);
    /// The name itself, with its colons escaped.
    bool ParseDMPTableOfContents(std::string strXML, std::string& strPath);

private:
    bool m_ReadTableOfContents(std::string strXML, std::string& strName);
    bool m_processTableOfContentsNode(_xmlTextReader* reader, std::string& value);
    void m_processMateDataNode(_xmlTextReader* reader, _stDMPMETADATA& data);
    void m_processCommonMetaData(_xmlTextReader* reader, _stDMPMetadata_common& common);
    void m_processRequiredImageData(_xmlTextReader* reader, std::vector<_stDMPMetadata_image>& images);
    void m_processChapterImageData(_xmlTextReader* reader, std::vector<_stDMPMetadata_image>& images);
    void m_processRatingData(_xmlTextReader* reader, std::vector<_stDMPMetadata_rating>& ratings);
};

#endif
