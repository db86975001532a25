#include "libqra-agent/source/local-source/qra_media_id_index.h"

#include <algorithm>

namespace {

uint32_t Hash(const std::string& strId) {
    return static_cast<uint32_t>(std::hash<std::string>()(strId));
}

}  // namespace

void CQRAMediaIdIndex::Append(const std::string& strId) {
    m_Hashes.push_back(Hash(strId));
}

int CQRAMediaIdIndex::Find(const std::string& strId, const HasId& hasId) const {
    const uint32_t nHash = Hash(strId);
    for (auto it = m_Hashes.begin(); (it = std::find(it, m_Hashes.end(), nHash)) != m_Hashes.end(); ++it) {
        const int nIndex = static_cast<int>(it - m_Hashes.begin());
        if (hasId(nIndex)) {
            return nIndex;
        }
    }
    return -1;
}

void CQRAMediaIdIndex::Clear() {
    m_Hashes = {};
}
