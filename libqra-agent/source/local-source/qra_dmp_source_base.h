#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_DMP_SOURCE_BASE_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_DMP_SOURCE_BASE_H

#include <string>

/// What the mass-storage source needs of whoever reads the metadata of packaged content. Belongs to one
/// thread.
class IQRADmpSource {
public:
    virtual ~IQRADmpSource() = default;

    /// Selects the package at a path; false if there is none.
    virtual bool MoveToIndex(const std::string& strPath) = 0;
    /// A number of the selected package.
    virtual bool GetValue(const std::string& strField, int* pValue) = 0;
    /// A text of the selected package; the caller frees it.
    virtual bool GetValue(const std::string& strField, char** ppValue) = 0;
};

#endif
