#ifndef QRA_TESTS_UNIT_AGENT_MINIMAL_SOURCE_H
#define QRA_TESTS_UNIT_AGENT_MINIMAL_SOURCE_H

#include <string>

#include "libqra-agent/source/qra_source_base.h"

/// A source that overrides nothing but what it has to, and refuses all of it.
class MinimalSource : public IQRASourceBase {
public:
    using IQRASourceBase::Open;
    bool Open() override { return false; }
    bool IsOpen() override { return false; }
    bool Close() override { return false; }
    bool SetCallback(qra_source_complete_cb, void*) override { return false; }
    bool SetCallback(qra_source_transfer_cb, void*) override { return false; }
    bool UNSetCallback() override { return false; }
    bool Execute(qra_general_s*) override { return false; }
    bool MoveToIndex(int) override { return false; }
    bool MoveToPrevious() override { return false; }
    bool MoveToNext() override { return false; }
    bool GetItemCount(int*) override { return false; }
    bool GetItemCountByType(qra_media_type_e, int*) override { return false; }
    bool GetValue(std::string, char**) override { return false; }
    bool GetValue(std::string, int*) override { return false; }
    bool GetValue(std::string, unsigned long long*) override { return false; }
    bool GetValue(std::string, long*) override { return false; }
    bool GetValue(std::string, bool*) override { return false; }
    bool GetValue(std::string, double*) override { return false; }
    bool SetValue(const char*, long) override { return false; }
    bool SetValue(const char*, int) override { return false; }
    bool SetValue(const char*, const char*) override { return false; }
};

#endif
