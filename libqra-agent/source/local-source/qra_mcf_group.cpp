#include "libqra-agent/source/local-source/qra_mcf_group.h"

#include "libqra-agent/source/local-source/qra_msc_names.h"

namespace {

struct SFilterType {
    const char* pCategory;
    EFilterType eType;
};

constexpr SFilterType PVR_FILTER_TYPES[] = {
    {"CATEGORY-FOLDER-CHANNEL_NAME", Filter_ChannelGroup},
    {"CATEGORY-FOLDER-CHANNEL_NUM", Filter_ChannelNumGroup},
    {"CATEGORY-FOLDER-DATE", Filter_PVRDateGroup},
    {"CATEGORY-CHANNEL_NAME", Filter_ChannelDCMGroup},
    {"CATEGORY-CHANNEL_NUM", Filter_ChannelNumDCMGroup},
    {"CATEGORY-DATE", Filter_PVRDateDCMGroup},
};

struct SField {
    const char* pCategory;
    media_group_field_e eMedia;
    media_group_field_e ePVR;
};

constexpr SField FIELDS[] = {
    {"CATEGORY-ARTIST", MEDIA_GROUP_ARTIST, MEDIA_GROUP_ARTIST},
    {"CATEGORY-ALBUM", MEDIA_GROUP_ALBUM, MEDIA_GROUP_ALBUM},
    {"CATEGORY-GENRE", MEDIA_GROUP_GENRE, MEDIA_GROUP_GENRE},
    {"CATEGORY-TRACK", MEDIA_GROUP_TITLE, MEDIA_GROUP_TITLE},
    {"CATEGORY-CHANNEL_NAME", MEDIA_GROUP_CHANNEL_NAME, MEDIA_GROUP_CHANNEL_NAME},
    {"CATEGORY-FOLDER-CHANNEL_NAME", MEDIA_GROUP_CHANNEL_NAME, MEDIA_GROUP_CHANNEL_NAME},
    {"CATEGORY-CHANNEL_NUM", MEDIA_GROUP_CHANNEL_NUM, MEDIA_GROUP_CHANNEL_NUM},
    {"CATEGORY-FOLDER-CHANNEL_NUM", MEDIA_GROUP_CHANNEL_NUM, MEDIA_GROUP_CHANNEL_NUM},
    {"CATEGORY-TITLE", MEDIA_GROUP_TITLE, MEDIA_GROUP_PVR_TITLE},
    {"CATEGORY-DATE", MEDIA_GROUP_DATE, MEDIA_GROUP_PVR_DATE},
    {"CATEGORY-FOLDER-DATE", MEDIA_GROUP_FOLDER_DATE, MEDIA_GROUP_PVR_DATE},
};

}  // namespace

EFilterType CQRAMCFGroup::GetFilterType(const std::string& strContentType, const std::string& strCategory) {
    if (strContentType != "CONTENT-PVR") {
        return strCategory == "CATEGORY-FOLDER-DATE" ? Filter_DateGroup : Filter_None;
    }
    for (const SFilterType& type : PVR_FILTER_TYPES) {
        if (strCategory == type.pCategory) {
            return type.eType;
        }
    }
    return Filter_None;
}

media_group_field_e CQRAMCFGroup::GetField(const std::string& strContentType,
                                           const std::string& strCategory) {
    for (const SField& field : FIELDS) {
        if (strCategory == field.pCategory) {
            return IsOneOf(strContentType, PVR_CONTENT_TYPES) ? field.ePVR : field.eMedia;
        }
    }
    return MEDIA_GROUP_NONE;
}
