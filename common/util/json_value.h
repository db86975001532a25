#ifndef QRA_COMMON_UTIL_JSON_VALUE_H
#define QRA_COMMON_UTIL_JSON_VALUE_H

#include <json/json.h>

#include <string>
#include <vector>

/**
 * A JSON object, read and written without the JSON library's exceptions and type conversions: every failure
 * is false and a log line. Belongs to one thread at a time.
 *
 * Texts are kept as the bytes that they are, UTF-8 or not; ToString() gives valid JSON in any case.
 */
class CJsonValue {
public:
    /// An empty object.
    CJsonValue();
    /// Parses a text. Anything but a JSON object makes an invalid value, whose Set and Get all fail.
    explicit CJsonValue(const std::string& strJson);

    void Clear();

    // Each Set puts a member in place of the one that is there; a vector is appended to an array that is
    // there.
    bool Set(const std::string& strKey, bool value);
    bool Set(const std::string& strKey, int value);
    bool Set(const std::string& strKey, unsigned int value);
    bool Set(const std::string& strKey, long long value);
    bool Set(const std::string& strKey, unsigned long long value);
    bool Set(const std::string& strKey, double value);
    bool Set(const std::string& strKey, const std::string& value);
    /// A null text is stored as "".
    bool Set(const std::string& strKey, const char* value);
    bool Set(const std::string& strKey, const std::vector<std::string>& values);

    // The same for a key that outlives this object, such as a literal: it is not copied.
    bool Set(const Json::StaticString& key, bool value);
    bool Set(const Json::StaticString& key, int value);
    bool Set(const Json::StaticString& key, unsigned long long value);
    bool Set(const Json::StaticString& key, const std::string& value);
    bool Set(const Json::StaticString& key, const char* value);

    // Each Get is false, and leaves the value as it was, if the member is absent or of another type.
    bool Get(const std::string& strKey, bool& value) const;
    bool Get(const std::string& strKey, int& value) const;
    bool Get(const std::string& strKey, unsigned int& value) const;
    bool Get(const std::string& strKey, long long& value) const;
    bool Get(const std::string& strKey, double& value) const;
    bool Get(const std::string& strKey, std::string& value) const;
    bool Get(const std::string& strKey, std::vector<int>& values) const;
    bool Get(const std::string& strKey, std::vector<std::string>& values) const;

    /// The names of the members, in order.
    bool GetKeys(std::vector<std::string>& keys) const;
    bool Has(const std::string& strKey) const;
    void Remove(const std::string& strKey);
    bool IsInt(const std::string& strKey) const;
    bool IsString(const std::string& strKey) const;

    /// One line of JSON, the members in key order, non-ASCII characters escaped, with a line end. A byte that
    /// is not UTF-8 becomes U+FFFD. Empty for an invalid value.
    std::string ToString() const;

private:
    void m_Parse(const std::string& strJson);
    bool m_CanSet() const;
    const Json::Value* m_Find(const std::string& strKey) const;
    template <class Key, class T>
    bool m_SetMember(const Key& key, const T& value);
    template <class Key>
    bool m_SetText(const Key& key, const char* value);
    template <class Key>
    bool m_SetText(const Key& key, const std::string& value);

    Json::Value m_Value;
    bool m_bValid;
    bool m_bUtf8 = true;  ///< every text and key in m_Value is valid UTF-8
};

#endif
