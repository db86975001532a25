#ifndef QRA_AGENT_AGENT_UTIL_QRA_WEB_AGENT_JSON_H
#define QRA_AGENT_AGENT_UTIL_QRA_WEB_AGENT_JSON_H

#include <string>

/// Reads fields out of the JSON objects that travel between requests and between processes. No state.
class CQRAWebAgentJson {
public:
    // False, and the out value untouched, if text or key is empty, the out value is null, the text is no JSON
    // object, or the key holds no value of the type.

    static bool GetJsonFieldBool(const std::string& strJson, const std::string& strKey, bool* pValue);
    static bool GetJsonFieldString(const std::string& strJson, const std::string& strKey,
                                   std::string& strValue);
};

#endif
