#ifndef QRA_AGENT_SOURCE_QRA_SOURCE_BASE_H
#define QRA_AGENT_SOURCE_QRA_SOURCE_BASE_H

#include <qra/qra_types.h>

#include <string>

class CQRAGroupInfo;

/// Completion of a list request. Runs on a thread of the source, never from inside Execute(). The result is
/// not looked at.
using qra_source_complete_cb = bool (*)(qra_event_e eEvent, void* pUserData);
/// Progress of a transfer, in bytes to come and done for each direction.
using qra_source_transfer_cb = bool (*)(int nId, qra_event_e eEvent, char* pText, double dDownloadTotal,
                                        double dDownloadNow, double dUploadTotal, double dUploadNow,
                                        void* pUserData);

/**
 * Any kind of local content as the local agent sees it: opened, given one list request at a time, then walked
 * with a cursor over a flat list of items.
 *
 * Open(), then any number of rounds of Execute() and its completion, then Close(). The cursor and the values
 * mean something only after a completion, and belong to the client's thread. Every false answer leaves the
 * outputs as they were.
 */
class IQRASourceBase {
public:
    virtual ~IQRASourceBase() = default;

    /// Makes the source ready and starts its thread.
    virtual bool Open() = 0;
    /// Opens with a device or a server.
    virtual bool Open(char*) { return false; }
    /// True between Open() and Close().
    virtual bool IsOpen() = 0;
    /// Stops the source and releases everything. Waits for its thread.
    virtual bool Close() = 0;
    /// Sets the completion callback. Does not wait for one that is running.
    virtual bool SetCallback(qra_source_complete_cb cb, void* pUserData) = 0;
    /// Sets the transfer callback.
    virtual bool SetCallback(qra_source_transfer_cb cb, void* pUserData) = 0;
    /// Drops the callback, and returns when none is running.
    virtual bool UNSetCallback() = 0;
    /// Starts a list request; true when it was accepted. The record is read before the call returns.
    virtual bool Execute(qra_general_s* pParam) = 0;

    virtual bool MoveToIndex(int nIndex) = 0;
    virtual bool MoveToPrevious() = 0;
    virtual bool MoveToNext() = 0;
    virtual bool GetItemCount(int* pnCount) = 0;
    virtual bool GetItemCountByType(qra_media_type_e eType, int* pnCount) = 0;

    // Values of the item at the cursor. A text is malloc'ed, and freed by the caller.
    virtual bool GetValue(std::string strField, char** ppValue) = 0;
    virtual bool GetValue(std::string strField, int* pValue) = 0;
    virtual bool GetValue(std::string strField, unsigned long long* pValue) = 0;
    virtual bool GetValue(std::string strField, long* pValue) = 0;
    virtual bool GetValue(std::string strField, bool* pValue) = 0;
    virtual bool GetValue(std::string strField, double* pValue) = 0;
    virtual bool SetValue(const char* pField, long nValue) = 0;
    virtual bool SetValue(const char* pField, int nValue) = 0;
    virtual bool SetValue(const char* pField, const char* pValue) = 0;

    /// List index of an item, by its media id.
    virtual bool GetDBIndex(char*, int*) { return false; }
    /// A new copy of the group table, which the caller owns, or null.
    virtual CQRAGroupInfo* GetGroupInfo() { return nullptr; }
    /// Resume position of the item at the cursor.
    virtual bool GetBookMark(bool (*)(void*, int), void*) { return false; }
    /// Number of folders in the list.
    virtual int GetFolderCount() { return 0; }
    /// Size of the folder stack.
    virtual int GetFolderVectorSize() { return 0; }
    /// Finds an item by a text.
    virtual bool IndexSearch(char*, int*, int*) { return false; }
    /// Index among all content.
    virtual bool GetPlayIndexOnAllContent(char*, int*) { return false; }
    /// Item count of a group, by its name.
    virtual bool GetItemCountOfGroup(char*, int*) { return false; }
    /// Browse position at the server.
    virtual bool GetBrowseIndex(int, char*, int*) { return false; }
    /// Fetches an item.
    virtual bool Download(char*, char*, char*) { return false; }
    /// Fetches an item to a local path.
    virtual bool Download(char*, char*, char*, char*) { return false; }
    /// Sends a file.
    virtual bool UpLoad(char*, char*, char*) { return false; }
    /// Stops a transfer.
    virtual bool Stop(char*) { return false; }
    /// Id of the group at an index.
    virtual bool GetGroupId(int, std::string&) { return false; }
    /// Text of the parental rating.
    virtual bool GetRatingInfo(char**) { return false; }
    /// Cancels a running asynchronous request.
    virtual bool CancelAsync() { return false; }
};

#endif
