#ifndef QRA_AGENT_AGENT_SRC_QRA_ITEM_BUILDER_H
#define QRA_AGENT_AGENT_SRC_QRA_ITEM_BUILDER_H

#include <qra/qra_types.h>

class CJsonValue;
class CQRALocalAgent;

/**
 * Builds the JSON text of a tile: all values that a browser shows of it, in one call.
 *
 * It reads through the agent's own operations, so that it sees what a client sees that asks value by value.
 * The keys of each kind of item and their types are a contract with the browser; a value that the source does
 * not know stays in the text as "", 0 or false. Has no state. Belongs to the client's thread, and moves the
 * cursor.
 */
class CQRAItemBuilder {
public:
    CQRAItemBuilder() = default;
    virtual ~CQRAItemBuilder() = default;

    /**
     * Moves the cursor to a tile and gives its text, malloc'ed, which the caller frees.
     * @return QRA_ERROR_INVALID_PARAM if there is no such tile, QRA_ERROR_INTERNAL if its kind cannot be
     * read, QRA_ERROR_INVALID_HANDLE without a local agent; `*ppItem` is untouched then
     */
    qra_error_code_e BuildItem(CQRAAgentHandle* pHandle, int nPageIndex, char** ppItem);

private:
    bool m_BuildFolder(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildImage(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildVideo(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildMusic(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildPVR(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildM3U(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildGroup(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildUHD(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildSCSA(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildEmpty(CQRAAgentHandle* pHandle, CJsonValue& json);
    bool m_BuildUpFolder(CQRAAgentHandle* pHandle, CJsonValue& json);

    bool m_BuildByType(CQRAAgentHandle* pHandle, int nMediaType, CJsonValue& json);
};

#endif
