#ifndef QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_VALUE_H
#define QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_VALUE_H

#include <string>

#include "libqra-agent/source/nubelink/qra_dlna_item.h"

/**
 * Values of an item by their key. A false answer leaves the output as it was; so does "MEDIA_TYPE" of an item
 * of no known type in a folder, which is true.
 *
 * `bFolderView`: the item is one of a folder's list, in which folders are shown as such.
 */

/// A text, malloc'ed; the caller frees it.
bool qra_dlna_get_text(const _stDLNAMediaItem& item, const std::string& strField, bool bFolderView,
                       char** ppValue);
bool qra_dlna_get_int(const _stDLNAMediaItem& item, const std::string& strField, bool bFolderView,
                      int* pValue);
bool qra_dlna_get_number(const _stDLNAMediaItem& item, const std::string& strField,
                         unsigned long long* pValue);

#endif
