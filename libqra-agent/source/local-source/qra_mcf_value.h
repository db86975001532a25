#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_VALUE_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_VALUE_H

#include <string>

#include "libqra-agent/source/local-source/qra_mcf_convert.h"
#include "libqra-agent/source/local-source/qra_media.h"

/**
 * Reads and writes the values of a list entry, by key, through the value tables.
 *
 * A number is converted to the type that was asked for, and clamped where it is too large for that. A text
 * asked for as a number, or a number as a text, is false. After a false nothing has been written to the
 * output. No state; an entry is used by one thread at a time.
 */
class CQRAMCFValue {
public:
    static bool GetFieldValue(const CMedia& media, const std::string& strField, const mcf_out& out);
    /// Writes to the database too; folders, groups and packaged content are refused.
    static bool SetFieldValue(const CMedia& media, const std::string& strField, const mcf_in& in);

private:
    static bool m_GetFolderValue(const CMedia& media, const std::string& strField, const mcf_out& out);
    static bool m_GetMediaValue(const CMedia& media, const std::string& strField, const mcf_out& out);
    static bool m_GetPVRValue(const CMedia& media, const std::string& strField, const mcf_out& out);
    static bool m_GetUHDValue(const CMedia& media, const std::string& strField, const mcf_out& out);
    static bool m_GetSCSAValue(const CMedia& media, const std::string& strField, const mcf_out& out);
    static bool m_GetGroupValue(const CMedia& media, const std::string& strField, const mcf_out& out);
};

#endif
