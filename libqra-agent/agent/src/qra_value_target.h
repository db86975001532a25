#ifndef QRA_AGENT_AGENT_SRC_QRA_VALUE_TARGET_H
#define QRA_AGENT_AGENT_SRC_QRA_VALUE_TARGET_H

#include <string>

class IQRASourceBase;

/// The kind of a value slot.
enum VALUE_TYPE {
    VALUE_TYPE_INT = 0,
    VALUE_TYPE_BOOL = 1,
    VALUE_TYPE_STRING = 2,
    VALUE_TYPE_ULONGLONG = 4,
    VALUE_TYPE_LONG = 5,
    VALUE_TYPE_DOUBLE = 6
};

/**
 * A client's variable and the type that was asked for, so that a value is never written in another width than
 * the variable has. A number becomes the asked number type; a text as a number, or a number as a text, is
 * false and writes nothing. Does not own the variable, which must not be null.
 */
class CQRAValueTarget {
public:
    explicit CQRAValueTarget(char** ppValue) : m_eType(VALUE_TYPE_STRING), m_pValue(ppValue) {}
    explicit CQRAValueTarget(int* pValue) : m_eType(VALUE_TYPE_INT), m_pValue(pValue) {}
    explicit CQRAValueTarget(bool* pValue) : m_eType(VALUE_TYPE_BOOL), m_pValue(pValue) {}
    explicit CQRAValueTarget(double* pValue) : m_eType(VALUE_TYPE_DOUBLE), m_pValue(pValue) {}
    explicit CQRAValueTarget(long* pValue) : m_eType(VALUE_TYPE_LONG), m_pValue(pValue) {}
    explicit CQRAValueTarget(unsigned long long* pValue) : m_eType(VALUE_TYPE_ULONGLONG), m_pValue(pValue) {}

    bool IsNull() const { return m_pValue == nullptr; }

    /// Writes a number that is not negative.
    bool SetNumber(int nValue) const;
    /// Writes a malloc'ed copy.
    bool SetText(const std::string& strValue) const;
    /// The variable of a text, null if another type was asked for.
    char** AsText() const;
    /// Lets a source write the value of the item at its cursor.
    bool ReadFrom(IQRASourceBase& source, const char* pField) const;

private:
    template <class T>
    T* m_As() const {
        return static_cast<T*>(m_pValue);
    }

    VALUE_TYPE m_eType;
    void* m_pValue;
};

#endif
