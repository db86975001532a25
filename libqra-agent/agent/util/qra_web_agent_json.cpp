#include "libqra-agent/agent/util/qra_web_agent_json.h"

#include <cstring>

#include "common/util/json_value.h"
#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_type.h"

namespace {

constexpr char kNull[] = "QRA_NULL";

const char* OrNull(const char* pText) {
    return pText != nullptr ? pText : kNull;
}

/// What every request begins with. False if no source comes out of the text.
bool SetHead(CJsonValue& json, const char* pSource, const std::string& strCommand) {
    std::string strSource = CQRAUtil::CharToString(pSource);
    const std::vector<std::string> sources = CQRAWebAgentJson::SplitSource(strSource, ",");
    return !sources.empty() && json.Set("qra_source", sources) && json.Set("qra_command", strCommand);
}

/// What every request ends with.
bool Render(const CJsonValue& json, std::string& strOut) {
    const std::string strRequestParam = json.ToString();
    if (strRequestParam.empty()) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Generate request param to string falied\n");
        return false;
    }
    QRA_LOG_INFO(QRA_TAG_WEB, "strRequestParam [%s]", strRequestParam.c_str());
    strOut = strRequestParam;
    return true;
}

template <class T>
bool GetField(const std::string& strJson, const std::string& strKey, T* pValue) {
    if (strJson.empty() || strKey.empty() || pValue == nullptr)
        return false;
    return CJsonValue(strJson).Get(strKey, *pValue);
}

template <class T>
bool AddMember(const std::string& strKey, const T& value, std::string& strJson) {
    if (strKey.empty())
        return false;
    CJsonValue json(strJson);
    if (!json.Set(strKey, value))
        return false;
    strJson = json.ToString();
    QRA_LOG_INFO(QRA_TAG_WEB, "Add member[%s], final json[%s].", strKey.c_str(), strJson.c_str());
    return true;
}

}  // namespace

bool CQRAWebAgentJson::GeneralParamToJson(qra_general_s* pParam, unsigned int uHandle, std::string strCommand,
                                          int nStart, int nEnd, int nSection, std::string& strOut) {
    QRA_ASSERT(pParam != NULL);
    CJsonValue json;
    if (!SetHead(json, pParam->pSource, strCommand))
        return false;
    json.Set("qra_contenttype", OrNull(pParam->szContentType));
    json.Set("qra_category", OrNull(pParam->szSortCategory));
    json.Set("qra_filter", OrNull(pParam->szFilter));
    json.Set("qra_filter_data_type", OrNull(pParam->szFilterDataType));
    json.Set("qra_data_style", pParam->nDataStyle);
    json.Set("qra_source_user_data", OrNull(pParam->szUserData));
    json.Set("qra_startindex", nStart);
    json.Set("qra_endindex", nEnd);
    json.Set("qra_sectionindex", nSection);
    json.Set("qra_agent_handle", uHandle);
    return Render(json, strOut);
}

bool CQRAWebAgentJson::DetailParamToJson(qra_detail_s* pParam, std::string strCommand, std::string& strOut,
                                         std::string strRequestId) {
    QRA_ASSERT(pParam != NULL);
    CJsonValue json;
    if (!SetHead(json, pParam->source, strCommand))
        return false;
    json.Set("qra_item_index", pParam->page_index);
    json.Set("qra_source_user_data", OrNull(pParam->user_data));
    json.Set("qra_detail_request_times", strRequestId);
    return Render(json, strOut);
}

bool CQRAWebAgentJson::CommentParamToJson(qra_comment_s* pParam, std::string strCommand,
                                          std::string& strInOut, std::string strRequestId) {
    QRA_ASSERT(pParam != NULL);
    CJsonValue json;
    if (!SetHead(json, pParam->source, strCommand))
        return false;
    json.Set("qra_item_content", strInOut.empty() ? kNull : strInOut.c_str());
    json.Set("qra_comment", OrNull(pParam->comment));
    json.Set("qra_source_user_data", OrNull(pParam->user_data));
    json.Set("qra_act_request_times", strRequestId);
    return Render(json, strInOut);
}

bool CQRAWebAgentJson::LikeParamToJson(qra_like_s* pParam, std::string strCommand, std::string& strInOut,
                                       std::string strRequestId) {
    QRA_ASSERT(pParam != NULL);
    CJsonValue json;
    if (!SetHead(json, pParam->source, strCommand))
        return false;
    json.Set("qra_item_content", strInOut);
    json.Set("qra_like", pParam->is_like);
    json.Set("qra_source_user_data", OrNull(pParam->user_data));
    json.Set("qra_act_request_times", strRequestId);
    return Render(json, strInOut);
}

bool CQRAWebAgentJson::GetJsonFieldInt(const std::string& strJson, const std::string& strKey, int* pValue) {
    return GetField(strJson, strKey, pValue);
}

bool CQRAWebAgentJson::GetJsonFieldUInt(const std::string& strJson, const std::string& strKey,
                                        unsigned int* pValue) {
    return GetField(strJson, strKey, pValue);
}

bool CQRAWebAgentJson::GetJsonFieldLongLong(const std::string& strJson, const std::string& strKey,
                                            long long* pValue) {
    return GetField(strJson, strKey, pValue);
}

bool CQRAWebAgentJson::GetJsonFieldBool(const std::string& strJson, const std::string& strKey, bool* pValue) {
    return GetField(strJson, strKey, pValue);
}

bool CQRAWebAgentJson::GetJsonFieldString(const std::string& strJson, const std::string& strKey,
                                          std::string& strValue) {
    return GetField(strJson, strKey, &strValue);
}

bool CQRAWebAgentJson::GetJsonFieldChar(const std::string& strJson, const std::string& strKey,
                                        char** ppValue) {
    if (ppValue == nullptr)
        return false;
    std::string strValue;
    GetField(strJson, strKey, &strValue);
    *ppValue = strdup(strValue.c_str());
    return true;
}

bool CQRAWebAgentJson::AddMemberChar(const std::string& strKey, const char* pValue, std::string& strJson) {
    return AddMember(strKey, pValue, strJson);
}

bool CQRAWebAgentJson::AddMemberInt(const std::string& strKey, int nValue, std::string& strJson) {
    return AddMember(strKey, nValue, strJson);
}

bool CQRAWebAgentJson::AddMemberString(const std::string& strKey, const std::string& strValue,
                                       std::string& strJson) {
    return AddMember(strKey, strValue, strJson);
}

bool CQRAWebAgentJson::RemoveMember(const std::string& strKey, std::string& strJson) {
    if (strKey.empty())
        return false;
    CJsonValue json(strJson);
    json.Remove(strKey);
    const std::string strRest = json.ToString();
    if (strRest.empty())
        return false;
    strJson = strRest;
    QRA_LOG_INFO(QRA_TAG_WEB, "Remove member[%s], final json[%s].", strKey.c_str(), strJson.c_str());
    return true;
}

void CQRAWebAgentJson::UpdateItemIndex(std::string& strJson, int nStart, int nEnd, int nSection) {
    if (strJson.empty())
        return;
    CJsonValue json(strJson);
    if (json.Set("qra_startindex", nStart) && json.Set("qra_endindex", nEnd) &&
        json.Set("qra_sectionindex", nSection))
        strJson = json.ToString();
}

std::vector<std::string> CQRAWebAgentJson::SplitSource(std::string& strText,
                                                       const std::string& strDelimiter) {
    std::vector<std::string> pieces;
    if (strDelimiter.empty())
        return pieces;
    strText += strDelimiter;
    size_t nBegin = 0;
    for (size_t nEnd = strText.find(strDelimiter); nEnd != std::string::npos;
         nEnd = strText.find(strDelimiter, nBegin)) {
        pieces.push_back(strText.substr(nBegin, nEnd - nBegin));
        nBegin = nEnd + strDelimiter.size();
    }
    return pieces;
}
