#ifndef QRA_AGENT_PLAYLIST_QRA_PLAYLIST_LOCATION_H
#define QRA_AGENT_PLAYLIST_QRA_PLAYLIST_LOCATION_H

#include <string>

/// True for a path that lies on a USB drive: it begins with the media root and "/USBDrive" or "/usb".
/// Everything else is internal storage.
bool qra_is_on_usb(const std::string& strPath);

#endif
