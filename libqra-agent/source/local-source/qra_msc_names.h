#ifndef QRA_LOCAL_SOURCE_QRA_MSC_NAMES_H
#define QRA_LOCAL_SOURCE_QRA_MSC_NAMES_H

#include <cstddef>
#include <string>

// Sort categories and content types that the source and its wrapper treat alike.

constexpr const char* UHD_FOLDER_CATEGORIES[] = {"CATEGORY-UHD-FOLDER", "CATEGORY-UHD-FOLDER-WITHUPFOLDER"};
constexpr const char* PVR_CONTENT_TYPES[] = {"CONTENT-PVR", "CONTENT-PVR-UNWATCHED", "CONTENT-PVR-SCHEDULED"};

/// Whether a text is one of a table of names.
template <size_t N>
bool IsOneOf(const std::string& strText, const char* const (&texts)[N]) {
    for (const char* const pText : texts) {
        if (strText == pText) {
            return true;
        }
    }
    return false;
}

#endif
