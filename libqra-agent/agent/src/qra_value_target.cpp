#include "libqra-agent/agent/src/qra_value_target.h"

#include <cstring>

#include "libqra-agent/source/qra_source_base.h"

bool CQRAValueTarget::SetNumber(int nValue) const {
    switch (m_eType) {
        case VALUE_TYPE_INT:
            *m_As<int>() = nValue;
            return true;
        case VALUE_TYPE_BOOL:
            *m_As<bool>() = nValue != 0;
            return true;
        case VALUE_TYPE_ULONGLONG:
            *m_As<unsigned long long>() = static_cast<unsigned long long>(nValue);
            return true;
        case VALUE_TYPE_LONG:
            *m_As<long>() = nValue;
            return true;
        case VALUE_TYPE_DOUBLE:
            *m_As<double>() = nValue;
            return true;
        case VALUE_TYPE_STRING:
            break;
    }
    return false;
}

bool CQRAValueTarget::SetText(const std::string& strValue) const {
    char** ppValue = AsText();
    char* pCopy = ppValue != nullptr ? strdup(strValue.c_str()) : nullptr;
    if (pCopy == nullptr)
        return false;
    *ppValue = pCopy;
    return true;
}

char** CQRAValueTarget::AsText() const {
    return m_eType == VALUE_TYPE_STRING ? m_As<char*>() : nullptr;
}

bool CQRAValueTarget::ReadFrom(IQRASourceBase& source, const char* pField) const {
    switch (m_eType) {
        case VALUE_TYPE_INT:
            return source.GetValue(pField, m_As<int>());
        case VALUE_TYPE_BOOL:
            return source.GetValue(pField, m_As<bool>());
        case VALUE_TYPE_STRING:
            return source.GetValue(pField, m_As<char*>());
        case VALUE_TYPE_ULONGLONG:
            return source.GetValue(pField, m_As<unsigned long long>());
        case VALUE_TYPE_LONG:
            return source.GetValue(pField, m_As<long>());
        case VALUE_TYPE_DOUBLE:
            return source.GetValue(pField, m_As<double>());
    }
    return false;
}
