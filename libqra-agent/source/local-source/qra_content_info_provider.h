#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_CONTENT_INFO_PROVIDER_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_CONTENT_INFO_PROVIDER_H

#include "metadata_extractor.h"

/**
 * Reads from a file what the media database does not hold: the names of its codecs.
 *
 * Each call opens the file anew and may take as long as the storage does. No state; any thread may call. A
 * text is the caller's, who frees it; one that is empty is a success. Null arguments end the process.
 */
class CContentInfoProvider {
public:
    bool GetVideoCodec(const char* pPath, char** ppValue);
    bool GetAudioCodec(const char* pPath, char** ppValue);

private:
    bool m_GetVideoAndAudioCodec(const char* pPath, metadata_extractor_attr_e eAttribute, char** ppValue);
    bool m_ReadCodec(metadata_extractor_h hMetadata, const char* pPath, metadata_extractor_attr_e eAttribute,
                     char** ppValue);
};

#endif
