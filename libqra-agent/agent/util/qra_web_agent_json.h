#ifndef QRA_AGENT_AGENT_UTIL_QRA_WEB_AGENT_JSON_H
#define QRA_AGENT_AGENT_UTIL_QRA_WEB_AGENT_JSON_H

#include <string>
#include <vector>

struct qra_comment_s;
struct qra_detail_s;
struct qra_general_s;
struct qra_like_s;

/**
 * The wire format between the web agent and the content engine: builds the JSON objects of requests, and
 * reads fields out of answers, item texts and the text that hands a list over to a player. No state; every
 * function may be called from any thread.
 *
 * All objects are flat but for "qra_source", which is an array: the client's source text cut at each comma,
 * so that no text at all is an array of one empty text. Every other text that the client did not give is sent
 * as "QRA_NULL".
 */
class CQRAWebAgentJson {
public:
    // Requests. Each is false, with `strOut` as it was, if the object cannot be rendered; a null record ends
    // the process.

    /// A range of a list. `uHandle` is the agent id in whose name the engine serves and caches the list.
    static bool GeneralParamToJson(qra_general_s* pParam, unsigned int uHandle, std::string strCommand,
                                   int nStart, int nEnd, int nSection, std::string& strOut);
    static bool DetailParamToJson(qra_detail_s* pParam, std::string strCommand, std::string& strOut,
                                  std::string strRequestId);
    /// `strInOut` holds the text of the item on entry, empty if there is none, and the request on return.
    static bool CommentParamToJson(qra_comment_s* pParam, std::string strCommand, std::string& strInOut,
                                   std::string strRequestId);
    static bool LikeParamToJson(qra_like_s* pParam, std::string strCommand, std::string& strInOut,
                                std::string strRequestId);

    // Readers. False, and the out value untouched, if text or key is empty, the out value is null, the text
    // is no JSON object, or the key holds no value of the type.

    static bool GetJsonFieldInt(const std::string& strJson, const std::string& strKey, int* pValue);
    static bool GetJsonFieldUInt(const std::string& strJson, const std::string& strKey, unsigned int* pValue);
    static bool GetJsonFieldLongLong(const std::string& strJson, const std::string& strKey,
                                     long long* pValue);
    static bool GetJsonFieldBool(const std::string& strJson, const std::string& strKey, bool* pValue);
    static bool GetJsonFieldString(const std::string& strJson, const std::string& strKey,
                                   std::string& strValue);
    /// The text in a malloc block, which the caller frees; empty if there is none. False only for a null out
    /// value.
    static bool GetJsonFieldChar(const std::string& strJson, const std::string& strKey, char** ppValue);

    // Editors. False for an empty key, and for a text that is no JSON object, which stays as it was.

    static bool AddMemberChar(const std::string& strKey, const char* pValue, std::string& strJson);
    static bool AddMemberInt(const std::string& strKey, int nValue, std::string& strJson);
    static bool AddMemberString(const std::string& strKey, const std::string& strValue, std::string& strJson);
    static bool RemoveMember(const std::string& strKey, std::string& strJson);
    /// Makes the request of one range of a list that of another. An empty text stays as it is.
    static void UpdateItemIndex(std::string& strJson, int nStart, int nEnd, int nSection);

    /// Cuts a text at every delimiter, empty pieces kept. The delimiter is appended to `strText` first.
    static std::vector<std::string> SplitSource(std::string& strText, const std::string& strDelimiter);
};

#endif
