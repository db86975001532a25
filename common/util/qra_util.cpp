#include "common/util/qra_util.h"

#include <qra/qra_util.h>

#include <glib.h>
#include <sys/time.h>
#include <uuid/uuid.h>

#include <algorithm>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <sstream>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "platform_paths.h"
#include "vconf.h"

namespace {

bool is_empty(const char* text) {
    return text == nullptr || *text == '\0';
}

/// What follows the last `separator`; null without one.
const char* behind_last(const char* path, char separator) {
    const char* last = strrchr(path, separator);
    return last != nullptr ? last + 1 : nullptr;
}

std::string platform_path(platform_path_e variable, const std::string& path) {
    return CQRAUtil::CharToString(platform_path_get(variable)) + path;
}

bool contains_lower_case(const char* const* table, int count, const std::string& text) {
    const std::string lower = CQRAUtil::ToLower(text);
    return std::any_of(table, table + count, [&lower](const char* entry) { return lower == entry; });
}

/// The result of a vconf function; -1, the value that is not there, is no reason for a log line.
bool vconf_succeeded(int code) {
    if (code != 0 && code != -1) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Unexpected error code: %d", code);
    }
    return code == 0;
}

template <class Generator>
qra_error_code_e write_uuid(char* buffer, Generator generate) {
    if (buffer == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "szBuffer == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    uuid_t uuid;
    uuid_clear(uuid);
    generate(uuid);
    uuid_unparse_lower(uuid, buffer);
    return QRA_ERROR_NONE;
}

}  // namespace

long long CQRAUtil::GetCurrentSystemTime() {
    struct timeval now;
    gettimeofday(&now, nullptr);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_usec / 1000;
}

std::string CQRAUtil::ToLower(const std::string& text) {
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(), g_ascii_tolower);
    return lower;
}

void CQRAUtil::AssignValue(char** dst, const char* src) {
    QRA_ASSERT(dst != NULL);
    if (is_empty(src)) {
        return;
    }
    const size_t size = strlen(src) + 1;
    *dst = new char[size];
    memcpy(*dst, src, size);
}

void CQRAUtil::AssignValueByCStyle(char** dst, const char* src) {
    QRA_ASSERT(dst != NULL);
    if (src == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "src  == NULL");
        return;
    }
    if (*src != '\0') {
        *dst = strdup(src);
    }
}

std::string CQRAUtil::CharToString(const char* text) {
    return text != nullptr ? text : "";
}

int CQRAUtil::str2int(const std::string& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    int value = 0;
    stream >> value;
    return value;
}

std::string CQRAUtil::int2str(int value) {
    return std::to_string(value);
}

std::string CQRAUtil::long2str(long value) {
    return std::to_string(value);
}

std::string CQRAUtil::double2str(double value) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.str();
}

void CQRAUtil::SplitToDouble(const char* text, double* out, int* count) {
    constexpr int kMaxNumbers = 3;
    constexpr size_t kMaxToken = 255;
    QRA_ASSERT(text != NULL && out != NULL && count != NULL);
    *count = 0;
    for (const char* begin = text + strspn(text, " "); *begin != '\0' && *count < kMaxNumbers;) {
        const size_t length = strcspn(begin, " ");
        const std::string token(begin, std::min(length, kMaxToken));
        out[(*count)++] = g_ascii_strtod(token.c_str(), nullptr);
        begin += length;
        begin += strspn(begin, " ");
    }
}

std::string CQRAUtil::GetFileExtension(const char* path) {
    if (path == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "szPath == NULL");
        return "";
    }
    return CharToString(behind_last(path, '.'));
}

std::string CQRAUtil::GetFileName(const char* path) {
    if (path == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "szPath == NULL");
        return "";
    }
    return CharToString(behind_last(path, '/'));
}

std::string CQRAUtil::GetFileNameWithoutExt(const char* path) {
    if (path == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "szPath == NULL");
        return "";
    }
    const char* dot = strrchr(path, '.');
    return dot != nullptr ? std::string(path, dot) : "";
}

std::string CQRAUtil::AddQuoteInPath(const std::string& path) {
    std::string quoted;
    quoted.reserve(path.size());
    for (const char c : path) {
        quoted.append(c == '\'' ? 2 : 1, c);
    }
    return quoted;
}

std::string CQRAUtil::RemoveForwardSlashInPath(const std::string& path) {
    return path.substr(0, path.find_last_not_of('/') + 1);
}

std::string CQRAUtil::GetStoragePath(const std::string& path) {
    return platform_path(PLATFORM_PATH_MEDIA_ROOT, path);
}

std::string CQRAUtil::GetUserAppPath(const std::string& path) {
    return platform_path(PLATFORM_PATH_USER_APP, path);
}

bool CQRAUtil::CompareExtension(const char* const* table, int count, const std::string& extension) {
    return contains_lower_case(table, count, extension);
}

bool CQRAUtil::CompareField(const char* const* table, int count, const std::string& field) {
    return contains_lower_case(table, count, field);
}

bool CQRAUtil::CompareMediaExtension(const std::vector<std::string>& table, const std::string& extension) {
    return std::find(table.begin(), table.end(), ToLower(extension)) != table.end();
}

bool CQRAUtil::GetVConfigValueInt(const char* key, int* value) {
    if (key == nullptr || value == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Arguments key or value is NULL");
        return false;
    }
    return vconf_succeeded(vconf_get_int(key, value));
}

bool CQRAUtil::SetVConfigValueInt(const char* key, int value) {
    if (key == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Arguments key or value is NULL");
        return false;
    }
    return vconf_succeeded(vconf_set_int(key, value));
}

std::string CQRAUtil::GetUUID() {
    return boost::uuids::to_string(boost::uuids::random_generator()());
}

qra_error_code_e qra_uuid_time(char* szBuffer) {
    return write_uuid(szBuffer, uuid_generate_time_safe);
}

qra_error_code_e qra_uuid_random(char* szBuffer) {
    return write_uuid(szBuffer, uuid_generate_random);
}

void register_backtrace_handler(void) {}

void unregister_backtrace_handler(void) {}
