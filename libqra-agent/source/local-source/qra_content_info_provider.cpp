#include "libqra-agent/source/local-source/qra_content_info_provider.h"

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"

bool CContentInfoProvider::GetVideoCodec(const char* pPath, char** ppValue) {
    return m_GetVideoAndAudioCodec(pPath, METADATA_EXTRACTOR_VIDEO_CODEC, ppValue);
}

bool CContentInfoProvider::GetAudioCodec(const char* pPath, char** ppValue) {
    return m_GetVideoAndAudioCodec(pPath, METADATA_EXTRACTOR_AUDIO_CODEC, ppValue);
}

bool CContentInfoProvider::m_GetVideoAndAudioCodec(const char* pPath, metadata_extractor_attr_e eAttribute,
                                                   char** ppValue) {
    QRA_ASSERT(pPath != NULL);
    QRA_ASSERT(ppValue != NULL);
    if (!CQRAUtil::IsFileExist(pPath)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "File[%s] is not exist.", pPath);
        return false;
    }
    metadata_extractor_h hMetadata = nullptr;
    const int ret = metadata_extractor_create(&hMetadata);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "metadata_extractor_create fail, ret[%d].", ret);
        return false;
    }
    const bool bResult = m_ReadCodec(hMetadata, pPath, eAttribute, ppValue);
    metadata_extractor_destroy(hMetadata);
    return bResult;
}

bool CContentInfoProvider::m_ReadCodec(metadata_extractor_h hMetadata, const char* pPath,
                                       metadata_extractor_attr_e eAttribute, char** ppValue) {
    int ret = metadata_extractor_set_path(hMetadata, pPath);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "metadata_extractor_set_path fail, ret[%d].", ret);
        return false;
    }
    ret = metadata_extractor_get_metadata(hMetadata, eAttribute, ppValue);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "metadata_extractor_get_metadata fail, ret[%d].", ret);
        return false;
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "codec is[%s].", *ppValue != nullptr ? *ppValue : "");
    return true;
}
