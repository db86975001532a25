#ifndef QRA_AGENT_AGENT_SRC_QRA_HANDLE_PARTS_H
#define QRA_AGENT_AGENT_SRC_QRA_HANDLE_PARTS_H

class CQRAAgentHandle;

/// The parts of a handle that an operation of the local agent can need; a set of bits.
enum HandlePart : unsigned {
    kPartSource = 1,
    kPartContentPage = 2,
    kPartSelectList = 4,
    kPartGroupInfo = 8,
    kPartItemBuilder = 16
};

/// True if there is a handle and it has all `parts`; logs the first one that is missing.
bool qra_has_parts(const CQRAAgentHandle* pHandle, unsigned parts = 0);

#endif
