#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MSC_FILE_TYPE_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MSC_FILE_TYPE_H

#include <qra/qra_types.h>

#include <string>
#include <unordered_map>

class CQRAExtensionList;

/**
 * Tells a file's media type from its extension, by the extension lists of a request.
 *
 * A table made once for each request, since every row of a list asks. Belongs to one thread at a time.
 */
class CQRAMSCFileType {
public:
    /// Takes over the lists. An extension that stands in several of them counts for the first.
    void Prepare(CQRAExtensionList& extensionList);
    /// False, and the type not written, for an extension in none of the lists.
    bool GetFileType(const std::string& strExtension, bool bIs360, qra_media_type_e& eType) const;

private:
    struct STypes {
        qra_media_type_e eType;
        qra_media_type_e e360Type;
    };

    std::unordered_map<std::string, STypes> m_Types;
};

#endif
