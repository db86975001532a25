#ifndef QRA_AGENT_AGENT_SRC_QRA_BACKUP_PARAM_H
#define QRA_AGENT_AGENT_SRC_QRA_BACKUP_PARAM_H

#include <cstdlib>
#include <memory>

/// What the web agent remembers of a handle's latest list request. The handle owns it and knows no more of
/// it.
struct _stBackupParam {
    virtual ~_stBackupParam() = default;

    struct Free {
        void operator()(char* pText) const { free(pText); }
    };
    /// The JSON of the request, which every later range starts from; null before it was sent.
    std::unique_ptr<char, Free> pRequest;
};

#endif
