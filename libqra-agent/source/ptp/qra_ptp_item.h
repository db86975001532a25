#ifndef QRA_AGENT_SOURCE_PTP_QRA_PTP_ITEM_H
#define QRA_AGENT_SOURCE_PTP_QRA_PTP_ITEM_H

#include <string>

/// What a request wants of which camera.
struct _stPTPParam {
    std::string strSortCategory;
    std::string strContentType;
    std::string strModelName;
    std::string strExtension;  ///< the client's extension lists, JSON; "" for the default ones
    int nBusValue = 0;
    int nDeviceValue = 0;
    int nFolderId = 0;  ///< object handle of the folder; 0 is the root
};

/// The format of a folder, where a file has its extension.
constexpr char kPTPFolderFormat[] = "FOLDER";

/// An object of a camera.
struct _stPtpContentItem {
    std::string strDisplayName;    ///< the file name as the camera gives it
    std::string strFilePath;       ///< device handle "/" object handle
    std::string strThumbnailPath;  ///< "ptp://" bus ";" device ";" object handle
    std::string strTitle;          ///< the file name up to its last dot
    int nWidth = 0;                ///< pixels
    int nHeight = 0;
    unsigned long long uSize = 0;  ///< bytes
    int nModifiedTime = 0;         ///< seconds since 1970
    std::string strPlayPath;       ///< "ptp://" device handle "/" object handle
    std::string strFormat;         ///< what follows the last dot, or kPTPFolderFormat
    std::string strId;             ///< object handle
    bool bIs360 = false;
    int nStitchType = 0;  ///< how a 360-degree medium was put together, as its file tells
};

/// Takes an item of a list; false ends the list.
using qra_ptp_item_cb = bool (*)(_stPtpContentItem& item, void* pUserData);

#endif
