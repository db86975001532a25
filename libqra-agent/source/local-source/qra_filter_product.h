#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_FILTER_PRODUCT_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_FILTER_PRODUCT_H

#include <string>

#include "media_content.h"

class CQRAExtensionList;

/// What a keyword search looks through; SEARCH_NONE in every other request.
enum ESearchType { SEARCH_NONE = 0, SEARCH_MEDIA = 1, SEARCH_PVR = 2, SEARCH_UHD = 3, SEARCH_PHOTO = 4 };

/// The kinds of query; each has a product class of its own.
enum EFilterType {
    Filter_None = 0,
    Filter_DateGroup = 1,
    Filter_PVRDateGroup = 2,
    Filter_ChannelGroup = 3,
    Filter_ChannelNumGroup = 4,
    Filter_PVRDateDCMGroup = 5,
    Filter_ChannelDCMGroup = 6,
    Filter_ChannelNumDCMGroup = 7,
    Filter_FolderID = 8,
    Filter_FolderList = 9,
    Filter_MediaList = 10,
    Filter_PVRList = 11,
    Filter_UHDList = 12,
    Filter_UHDUpdate = 13,
    Filter_MediaSearch = 14,
    Filter_PVRSearch = 15,
    Filter_UHDSearch = 16,
    Filter_MediaDCM = 17,
    Filter_PVRDCM = 18,
    Filter_UHDDCM = 19,
    Filter_FolderThumbFolderCount = 20,
    Filter_FolderThumbMediaCount = 21,
    Filter_FolderThumbMediaList = 22,
    Filter_LargePhotoList = 23
};

/// What a filter product makes its filter from.
struct _SFilterParam {
    std::string strContentType;
    std::string strCategory;
    std::string strPath;
    std::string strStorageId;
    std::string strFolderId;
    std::string strKeyword;
    ESearchType nSearchType = SEARCH_NONE;
    bool bIsUHDDevice = false;
    CQRAExtensionList* pExtensionList = nullptr;  ///< not owned
};

/**
 * Makes the filter of one query to the media database: a storage, a condition text and an order.
 *
 * CreateAndSetFilter() is the sequence; a subclass for each kind of query supplies the condition and the
 * order. Nothing in a condition is escaped here. An object serves one query, on one thread.
 */
class CQRAFilterProductBase {
public:
    virtual ~CQRAFilterProductBase() = default;

    /// Takes over the query's parameters; false for null.
    bool InitParam(const _SFilterParam* pParam);
    /// Makes the filter, which the caller destroys. After a false there is none.
    bool CreateAndSetFilter(filter_h& hFilter);

protected:
    virtual std::string t_GetCondition() = 0;
    /// An empty key, as it comes, sets no order.
    virtual void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) = 0;

    /// The condition on the file name that the content type and the search type stand for, in parentheses.
    std::string t_GetExtensionFilter();
    /// The same for UHD titles; selects nothing unless the device shows them.
    std::string t_GetUHDExtensionFilter();

    std::string t_strContentType;
    std::string t_strCategory;
    std::string t_strPath;
    std::string t_strStorageId;
    std::string t_strFolderId;
    std::string t_strKeyword;
    ESearchType t_nSearchType = SEARCH_NONE;
    bool t_bIsUHDDevice = false;
    bool t_bPVR = false;

private:
    void m_GetDisplayNameFilter(const std::string& strType, std::string& strFilter);
    bool m_SetFilter(filter_h hFilter);

    CQRAExtensionList* m_pExtensionList = nullptr;
};

/// Media of a folder, by date.
class CQRAFilterDateGroup : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// Recordings of a folder, by date.
class CQRAFilterPVRDateGroup : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// Recordings of a folder, by channel name.
class CQRAFilterChannelGroup : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// Recordings of a folder, by channel number.
class CQRAFilterChannelNumGroup : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// All recordings of a storage, by date.
class CQRAFilterPVRDateDCMGroup : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// All recordings of a storage, by channel name.
class CQRAFilterChannelDCMGroup : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// All recordings of a storage, by channel number.
class CQRAFilterChannelNumDCMGroup : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The folder of a path.
class CQRAFilterFolderID : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The folders of a folder.
class CQRAFilterFolderList : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The media of a folder.
class CQRAFilterMediaList : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The recordings of a folder.
class CQRAFilterPVRList : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The UHD titles of a folder.
class CQRAFilterUHDList : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The UHD titles of a folder whose metadata are missing.
class CQRAFilterUHDUpdate : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// Media of a storage whose name holds the keyword.
class CQRAFilterMediaSearch : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// Recordings of a storage whose title holds the keyword.
class CQRAFilterPVRSearch : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// UHD titles of a storage whose name holds the keyword.
class CQRAFilterUHDSearch : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// All media of a storage.
class CQRAFilterMediaDCM : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// All recordings of a storage, or those not watched yet, or those made by a timer.
class CQRAFilterPVRDCM : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// All UHD titles of a storage.
class CQRAFilterUHDDCM : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The folders that a folder's thumbnail counts.
class CQRAFilterFolderThumbFolderCount : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The media that a folder's thumbnail counts.
class CQRAFilterFolderThumbMediaCount : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// The media that a folder's thumbnail shows.
class CQRAFilterFolderThumbMediaList : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

/// All pictures of a storage, the latest first.
class CQRAFilterLargePhotoList : public CQRAFilterProductBase {
protected:
    std::string t_GetCondition() override;
    void t_GetOrder(std::string& strKey, media_content_order_e& eOrder) override;
};

#endif
