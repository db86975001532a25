#include "libqra-agent/agent/util/qra_web_agent_json.h"

#include "common/util/json_value.h"

bool CQRAWebAgentJson::GetJsonFieldBool(const std::string& strJson, const std::string& strKey, bool* pValue) {
    if (strJson.empty() || strKey.empty() || pValue == nullptr)
        return false;
    return CJsonValue(strJson).Get(strKey, *pValue);
}

bool CQRAWebAgentJson::GetJsonFieldString(const std::string& strJson, const std::string& strKey,
                                          std::string& strValue) {
    if (strJson.empty() || strKey.empty())
        return false;
    return CJsonValue(strJson).Get(strKey, strValue);
}
