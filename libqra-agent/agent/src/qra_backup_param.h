#ifndef QRA_AGENT_AGENT_SRC_QRA_BACKUP_PARAM_H
#define QRA_AGENT_AGENT_SRC_QRA_BACKUP_PARAM_H

/// What the web agent remembers of a handle's latest list request. The handle owns it and knows no more of
/// it.
struct _stBackupParam {
    virtual ~_stBackupParam() = default;
};

#endif
