#ifndef QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_H
#define QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_H

/// A batch job as the send handle sees it: owned, and ended by its destructor.
class IQRAShareThread {
public:
    virtual ~IQRAShareThread() = default;
};

#endif
