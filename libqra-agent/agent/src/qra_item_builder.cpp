#include "libqra-agent/agent/src/qra_item_builder.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "common/util/json_value.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_item_fields.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_recording_file.h"
#include "libqra-agent/agent/src/qra_source_factory.h"

namespace {

using MallocText = std::unique_ptr<char, decltype(&free)>;

/// Reads fields of the item at the cursor into its JSON object. What cannot be read is "", 0 or false.
class CFieldReader {
public:
    CFieldReader(CQRAAgentHandle* pHandle, CJsonValue& json)
        : m_pHandle(pHandle), m_pAgent(CQRAAgentHandle::GetLocalAgent(pHandle)), m_Json(json) {}

    bool Build(const ItemFields& fields) {
        const bool bDLNA = m_pHandle->GetSourceName() == kSourceDLNA;
        bool ret = true;
        for (const ItemField& field : fields) {
            const EFieldSource eOther = bDLNA ? EFieldSource::NotDLNA : EFieldSource::OnlyDLNA;
            if (field.eSource != eOther)
                ret = m_BuildField(field) && ret;
        }
        return ret;
    }

private:
    bool m_BuildField(const ItemField& field) {
        const Json::StaticString key(field.szKey);
        switch (field.eType) {
            case EItemField::Text:
                return m_Json.Set(key, m_ReadText(field).get());
            case EItemField::Int:
                return m_Json.Set(key, m_Read<int>(field));
            case EItemField::UInt64:
                return m_Json.Set(key, m_Read<unsigned long long>(field));
            case EItemField::Bool:
                return m_Json.Set(key, m_Read<bool>(field));
            case EItemField::ExposureTime: {
                const std::string strTime = CQRAUtil::CharToString(m_ReadText(field).get());
                return m_Json.Set(key, strTime.empty() ? strTime : strTime + "s");
            }
            case EItemField::FNumber: {
                const double dNumber = m_Read<double>(field);
                return m_Json.Set(key, dNumber > 0.0 ? "f/" + CQRAUtil::double2str(dNumber) : "");
            }
            case EItemField::Iso: {
                const int nIso = m_Read<int>(field);
                return m_Json.Set(key, nIso > 0 ? "ISO" + CQRAUtil::int2str(nIso) : "");
            }
        }
        return false;
    }

    template <class T>
    T m_Read(const ItemField& field) {
        T value{};
        m_pAgent->GetItemValue(m_pHandle, field.szKey, &value);
        return value;
    }

    MallocText m_ReadText(const ItemField& field) { return MallocText(m_Read<char*>(field), &free); }

    CQRAAgentHandle* m_pHandle;
    CQRALocalAgent* m_pAgent;
    CJsonValue& m_Json;
};

}  // namespace

qra_error_code_e CQRAItemBuilder::BuildItem(CQRAAgentHandle* pHandle, int nPageIndex, char** ppItem) {
    if (ppItem == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "ppItem == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (pHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle == NULL");
        return QRA_ERROR_INVALID_HANDLE;
    }
    CQRALocalAgent* pAgent = CQRAAgentHandle::GetLocalAgent(pHandle);
    if (pAgent == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pAgent == NULL");
        return QRA_ERROR_INVALID_HANDLE;
    }
    if (pAgent->MoveToIndex(pHandle, nPageIndex) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CQRAItemBuilder::BuildItem::m_MoveCursor faild, nPageIndex[%d].",
                        nPageIndex);
        return QRA_ERROR_INVALID_PARAM;
    }
    int nMediaType = 0;
    if (pAgent->GetItemValue(pHandle, "MEDIA_TYPE", &nMediaType) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CQRAItemBuilder::BuildItem::GetItemValue faild.");
        return QRA_ERROR_INTERNAL;
    }
    CJsonValue json;
    json.Set("MEDIA_TYPE", nMediaType);
    m_BuildByType(pHandle, nMediaType, json);
    char* pItem = strdup(json.ToString().c_str());
    if (pItem == nullptr)
        return QRA_ERROR_OUT_OF_MEMORY;
    *ppItem = pItem;
    return QRA_ERROR_NONE;
}

bool CQRAItemBuilder::m_BuildByType(CQRAAgentHandle* pHandle, int nMediaType, CJsonValue& json) {
    switch (nMediaType) {
        case QRA_MEDIA_TYPE_FOLDER:
            return m_BuildFolder(pHandle, json);
        case QRA_MEDIA_TYPE_IMAGE:
        case QRA_MEDIA_TYPE_IMAGE_EXT:
            return m_BuildImage(pHandle, json);
        case QRA_MEDIA_TYPE_VIDEO:
        case QRA_MEDIA_TYPE_VIDEO_EXT:
            return m_BuildVideo(pHandle, json);
        case QRA_MEDIA_TYPE_MUSIC:
            return m_BuildMusic(pHandle, json);
        case QRA_MEDIA_TYPE_PVR:
            return m_BuildPVR(pHandle, json);
        case QRA_MEDIA_TYPE_PLAYLIST:
            return m_BuildM3U(pHandle, json);
        case QRA_MEDIA_TYPE_GROUP:
            return m_BuildGroup(pHandle, json);
        case QRA_MEDIA_TYPE_UHD:
            return m_BuildUHD(pHandle, json);
        case QRA_MEDIA_TYPE_SCSA:
            return m_BuildSCSA(pHandle, json);
        case QRA_MEDIA_TYPE_UPFOLDER:
            return m_BuildUpFolder(pHandle, json);
        case QRA_MEDIA_TYPE_EMPTY:
            return m_BuildEmpty(pHandle, json);
        default:
            return false;
    }
}

bool CQRAItemBuilder::m_BuildFolder(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kFolderFields);
}

bool CQRAItemBuilder::m_BuildImage(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kImageFields);
}

bool CQRAItemBuilder::m_BuildVideo(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kVideoFields);
}

bool CQRAItemBuilder::m_BuildMusic(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kMusicFields);
}

bool CQRAItemBuilder::m_BuildPVR(CQRAAgentHandle* pHandle, CJsonValue& json) {
    CFieldReader(pHandle, json).Build(kPVRFields);
    std::string strPath;
    json.Get("FILE_PATH", strPath);
    const RecordingFileInfo info = qra_read_recording_file(strPath);
    return json.Set("CONTENT_VERSION", info.nContentVersion) &&
           json.Set("INCOMPLETE_REASON", info.nIncompleteReason);
}

bool CQRAItemBuilder::m_BuildM3U(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kPlayListFields);
}

bool CQRAItemBuilder::m_BuildGroup(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kGroupFields);
}

bool CQRAItemBuilder::m_BuildUHD(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kUHDFields);
}

bool CQRAItemBuilder::m_BuildSCSA(CQRAAgentHandle* pHandle, CJsonValue& json) {
    return CFieldReader(pHandle, json).Build(kSCSAFields);
}

bool CQRAItemBuilder::m_BuildEmpty(CQRAAgentHandle*, CJsonValue&) {
    return true;
}

bool CQRAItemBuilder::m_BuildUpFolder(CQRAAgentHandle*, CJsonValue&) {
    return true;
}
