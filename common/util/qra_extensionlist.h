#ifndef QRA_COMMON_UTIL_QRA_EXTENSIONLIST_H
#define QRA_COMMON_UTIL_QRA_EXTENSIONLIST_H

#include <map>
#include <string>
#include <vector>

/**
 * Which file extensions, without the dot, make up each content type ("CONTENT-IMAGE" and its kin).
 *
 * Use: ClearExtension(), GetExtensionFromApp(), and SetDefaultExtension() when that gave false. Filling never
 * replaces an entry that is there. Belongs to one thread at a time.
 */
class CQRAExtensionList {
public:
    void ClearExtension();
    void SetDefaultExtension();
    /// Fills all five entries from a client's JSON text; false for an empty text, which fills nothing. A list
    /// that the text lacks becomes empty.
    bool GetExtensionFromApp(const std::string& strExtension);
    void SetExtension(const std::string& type, const std::vector<std::string>& extensions);
    /// Copies the list of a type; an unknown type gets an empty entry, and `out` becomes empty.
    void GetExtensionByType(const std::string& type, std::vector<std::string>& out);
    /// Number of extensions of a type, 0 for an unknown one.
    int GetExtensionCountByType(const std::string& type) const;

private:
    std::map<std::string, std::vector<std::string>> m_Extensions;
};

#endif
