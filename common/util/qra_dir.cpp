#include "common/util/qra_dir.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/util/qra_file64.h"
#include "common/util/qra_log.h"

namespace {

int dotfilter(const dirent* entry) {
    return strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0;
}

}  // namespace

CQRADir::~CQRADir() {
    if (m_bCreated) {
        CQRADir::Destroy();
    }
}

bool CQRADir::Open(const char* name) {
    if (m_bCreated) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "FlagCreate() != false.");
        return false;
    }
    m_pDir = opendir(name);
    if (m_pDir == nullptr) {
        CQRAFile64::ErrMsg(errno);
        return false;
    }
    m_bCreated = true;
    const size_t length = std::min(strlen(name), kMaxName);
    memcpy(m_szName, name, length);
    m_szName[length] = '\0';
    if (!Update()) {
        Destroy();
        return false;
    }
    return true;
}

bool CQRADir::Update() {
    if (!m_bCreated) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "FlagCreate() != true");
        return false;
    }
    m_FreeEntries();
    // Through the descriptor, since the name may have been cut.
    const int nCount = scandirat(dirfd(m_pDir), ".", &m_ppEntries, dotfilter, alphasort);
    if (nCount < 0) {
        m_ppEntries = nullptr;
        CQRAFile64::ErrMsg(errno);
        return false;
    }
    m_nEntryCount = nCount;
    return SetPositionTop();
}

bool CQRADir::SetPositionTop() {
    if (!m_bCreated) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "FlagCreate() != true");
        return false;
    }
    m_nPosition = 0;
    return true;
}

void CQRADir::Destroy() {
    if (!m_bCreated) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "FlagCreate() != true");
        return;
    }
    if (closedir(m_pDir) != 0) {
        CQRAFile64::ErrMsg(errno);
    }
    m_FreeEntries();
    m_pDir = nullptr;
    m_bCreated = false;
    m_szName[0] = '\0';
}

const char* CQRADir::GetEntryName(int nIndex) const {
    return nIndex >= 0 && nIndex < m_nEntryCount ? m_ppEntries[nIndex]->d_name : nullptr;
}

void CQRADir::m_FreeEntries() {
    while (m_nEntryCount > 0) {
        free(m_ppEntries[--m_nEntryCount]);
    }
    free(m_ppEntries);
    m_ppEntries = nullptr;
    m_nPosition = 0;
}

bool CQRADir::Create(const char* name) {
    struct stat info;
    if (stat(name, &info) != 0) {
        if (mkdir(name, 0777) != 0) {
            CQRAFile64::ErrMsg(errno);
            return false;
        }
        return true;
    }
    if (!S_ISDIR(info.st_mode)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "CQRADir::Create() : S_ISDIR() failed.");
        return false;
    }
    return true;
}

bool CQRADir::Remove(const char* name) {
    if (rmdir(name) != 0) {
        CQRAFile64::ErrMsg(errno);
        return false;
    }
    return true;
}

bool CQRADir::DirExists(const char* name) {
    struct stat info;
    return stat(name, &info) == 0 && S_ISDIR(info.st_mode);
}
