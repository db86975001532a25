#include "common/util/json_value.h"

#include <glib.h>

#include <cstring>
#include <exception>

#include "common/util/qra_log.h"

namespace {

bool is_utf8(const char* text, size_t length) {
    return g_utf8_validate_len(text, length, nullptr) != FALSE;
}

bool is_utf8(const std::string& text) {
    return is_utf8(text.data(), text.size());
}

bool is_utf8(const Json::StaticString& key) {
    return is_utf8(key.c_str(), std::strlen(key.c_str()));
}

/// The text with every byte that is not UTF-8 as U+FFFD.
std::string repaired(const std::string& text) {
    gchar* valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
    std::string result = valid;
    g_free(valid);
    return result;
}

/// A copy of a value in which all texts are UTF-8. The library's writer would take a broken character's
/// neighbours for parts of it.
Json::Value repaired(const Json::Value& value) {
    if (value.isString()) {
        return repaired(value.asString());
    }
    Json::Value copy(value.type());
    if (value.isObject()) {
        for (const std::string& name : value.getMemberNames()) {
            copy[repaired(name)] = repaired(value[name]);
        }
    } else if (value.isArray()) {
        for (const Json::Value& element : value) {
            copy.append(repaired(element));
        }
    } else {
        copy = value;
    }
    return copy;
}

void log_exception(const char* function, const std::exception& exception) {
    QRA_LOG_WARNING(QRA_TAG_COMMON, "Exception Handled by[%s]: [%s] \n", function, exception.what());
}

}  // namespace

CJsonValue::CJsonValue() : m_Value(Json::objectValue), m_bValid(true) {}

CJsonValue::CJsonValue(const std::string& strJson) : m_bValid(false) {
    if (!strJson.empty()) {
        m_Parse(strJson);
    }
    m_bValid = m_Value.isObject();
}

void CJsonValue::m_Parse(const std::string& strJson) {
    try {
        Json::Reader reader;
        if (!reader.parse(strJson, m_Value, true)) {
            QRA_LOG_WARNING(QRA_TAG_COMMON, "Json::Reader parse string[%s] faild.", strJson.c_str());
            m_Value = Json::Value();
        }
        m_bUtf8 = is_utf8(strJson);
    } catch (const std::exception& exception) {
        // The reader throws on nesting that is too deep for it.
        log_exception(__func__, exception);
        m_Value = Json::Value();
    }
}

template <class Key, class T>
bool CJsonValue::m_SetMember(const Key& key, const T& value) {
    if (!m_CanSet()) {
        return false;
    }
    m_bUtf8 = m_bUtf8 && is_utf8(key);
    m_Value[key] = value;
    return true;
}

template <class Key>
bool CJsonValue::m_SetText(const Key& key, const char* value) {
    const char* text = value != nullptr ? value : "";
    m_bUtf8 = m_bUtf8 && is_utf8(text, std::strlen(text));
    return m_SetMember(key, text);
}

template <class Key>
bool CJsonValue::m_SetText(const Key& key, const std::string& value) {
    m_bUtf8 = m_bUtf8 && is_utf8(value);
    return m_SetMember(key, value);
}

void CJsonValue::Clear() {
    if (!m_bValid) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Clear fail. jsonvalue is invalid type[%d].", m_Value.type());
        return;
    }
    m_Value.clear();
    m_bUtf8 = true;
}

bool CJsonValue::Set(const std::string& strKey, bool value) {
    return m_SetMember(strKey, value);
}

bool CJsonValue::Set(const std::string& strKey, int value) {
    return m_SetMember(strKey, value);
}

bool CJsonValue::Set(const std::string& strKey, unsigned int value) {
    return m_SetMember(strKey, value);
}

bool CJsonValue::Set(const std::string& strKey, long long value) {
    return m_SetMember(strKey, static_cast<Json::Int64>(value));
}

bool CJsonValue::Set(const std::string& strKey, unsigned long long value) {
    return m_SetMember(strKey, static_cast<Json::UInt64>(value));
}

bool CJsonValue::Set(const std::string& strKey, double value) {
    return m_SetMember(strKey, value);
}

bool CJsonValue::Set(const std::string& strKey, const std::string& value) {
    return m_SetText(strKey, value);
}

bool CJsonValue::Set(const std::string& strKey, const char* value) {
    return m_SetText(strKey, value);
}

bool CJsonValue::Set(const Json::StaticString& key, bool value) {
    return m_SetMember(key, value);
}

bool CJsonValue::Set(const Json::StaticString& key, int value) {
    return m_SetMember(key, value);
}

bool CJsonValue::Set(const Json::StaticString& key, unsigned long long value) {
    return m_SetMember(key, static_cast<Json::UInt64>(value));
}

bool CJsonValue::Set(const Json::StaticString& key, const std::string& value) {
    return m_SetText(key, value);
}

bool CJsonValue::Set(const Json::StaticString& key, const char* value) {
    return m_SetText(key, value);
}

bool CJsonValue::Set(const std::string& strKey, const std::vector<std::string>& values) {
    if (!m_CanSet()) {
        return false;
    }
    try {
        m_bUtf8 = m_bUtf8 && is_utf8(strKey);
        Json::Value& member = m_Value[strKey];
        if (member.isNull()) {
            member = Json::Value(Json::arrayValue);
        }
        for (const std::string& value : values) {
            m_bUtf8 = m_bUtf8 && is_utf8(value);
            member.append(value);
        }
        return true;
    } catch (const std::exception& exception) {
        // The member that is there is no array.
        log_exception(__func__, exception);
        return false;
    }
}

bool CJsonValue::Get(const std::string& strKey, bool& value) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isBool()) {
        return false;
    }
    value = pMember->asBool();
    return true;
}

bool CJsonValue::Get(const std::string& strKey, int& value) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isInt()) {
        return false;
    }
    value = pMember->asInt();
    return true;
}

bool CJsonValue::Get(const std::string& strKey, unsigned int& value) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isUInt()) {
        return false;
    }
    value = pMember->asUInt();
    return true;
}

bool CJsonValue::Get(const std::string& strKey, long long& value) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isInt64()) {
        return false;
    }
    value = pMember->asInt64();
    return true;
}

bool CJsonValue::Get(const std::string& strKey, double& value) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isDouble()) {
        return false;
    }
    value = pMember->asDouble();
    return true;
}

bool CJsonValue::Get(const std::string& strKey, std::string& value) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isString()) {
        return false;
    }
    value = pMember->asString();
    return true;
}

bool CJsonValue::Get(const std::string& strKey, std::vector<int>& values) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isArray()) {
        return false;
    }
    std::vector<int> numbers;
    for (const Json::Value& element : *pMember) {
        if (!element.isInt()) {
            return false;
        }
        numbers.push_back(element.asInt());
    }
    values = std::move(numbers);
    return true;
}

bool CJsonValue::Get(const std::string& strKey, std::vector<std::string>& values) const {
    const Json::Value* pMember = m_Find(strKey);
    if (pMember == nullptr || !pMember->isArray()) {
        return false;
    }
    std::vector<std::string> texts;
    for (const Json::Value& element : *pMember) {
        if (!element.isString()) {
            return false;
        }
        texts.push_back(element.asString());
    }
    values = std::move(texts);
    return true;
}

bool CJsonValue::GetKeys(std::vector<std::string>& keys) const {
    if (!m_bValid) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "GetKeys fail. jsonvalue is invalid type[%d].", m_Value.type());
        return false;
    }
    keys = m_Value.getMemberNames();
    return true;
}

bool CJsonValue::Has(const std::string& strKey) const {
    return m_bValid && m_Value.isMember(strKey);
}

void CJsonValue::Remove(const std::string& strKey) {
    if (!m_bValid) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "GetKeys fail. jsonvalue is invalid type[%d].", m_Value.type());
        return;
    }
    m_Value.removeMember(strKey);
}

bool CJsonValue::IsInt(const std::string& strKey) const {
    return Has(strKey) && m_Value[strKey].isInt();
}

bool CJsonValue::IsString(const std::string& strKey) const {
    return Has(strKey) && m_Value[strKey].isString();
}

std::string CJsonValue::ToString() const {
    if (!m_bValid) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "ToString fail. jsonvalue is invalid type[%d].", m_Value.type());
        return "";
    }
    Json::FastWriter writer;
    if (m_bUtf8) {
        return writer.write(m_Value);
    }
    return writer.write(repaired(m_Value));
}

bool CJsonValue::m_CanSet() const {
    if (!m_bValid) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Set fail. jsonvalue is invalid type[%d].", m_Value.type());
    }
    return m_bValid;
}

const Json::Value* CJsonValue::m_Find(const std::string& strKey) const {
    if (!m_bValid) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Get fail. jsonvalue is invalid type[%d].", m_Value.type());
        return nullptr;
    }
    const Json::Value* pMember = m_Value.find(strKey.data(), strKey.data() + strKey.size());
    if (pMember == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "NO strKey[%s] in josn.", strKey.c_str());
    }
    return pMember;
}
