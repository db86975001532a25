#ifndef QRA_APPS_QRA_LIST_REQUEST_H
#define QRA_APPS_QRA_LIST_REQUEST_H

#include <qra/qra_content_agent.h>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>

/// The source of drives and folders.
inline constexpr const char* kDriveSource = "SOURCE_MSC";

/// What `qra list` and `qra get` ask for.
struct ListOptions {
    std::string source = kDriveSource;
    std::string content_type = "CONTENT-FOLDER";
    std::string sort_category = "CATEGORY-FOLDER-TITLE";
    std::string keyword;
    std::string extension;  ///< the JSON text of the extension lists
    bool uhd = false;
    int bus = 0;            ///< of a camera
    int device = 0;         ///< of a camera
    std::string folder_id;  ///< of a camera's or a media server's folder
    std::string playlist;   ///< name of the playlist whose items are listed
    int mask = 0x26;        ///< folders, media, and the up-folder tile
    qra_page_order_e order = QRA_PAGE_ORDER_COLUMN;
    int group = -1;
    int rows = 2;
    int columns = 9;
};

/// Whether the library knows a content type of this name. It takes any other for one that no media are of.
bool is_content_type(const std::string& name);

/// What a page shows, as its mask tells.
inline constexpr int kMedia = 0x04;
inline constexpr int kFoldersAndMedia = 0x06;
inline constexpr int kGroupHeaders = 0x08;

/// The source of the content engine's accounts.
inline constexpr const char* kCloudSource = "CloudSource";

/// The source of cameras and phones.
inline constexpr const char* kCameraSource = "SOURCE_PTP";

/// The source of media servers.
inline constexpr const char* kServerSource = "SOURCE_DLNA";

/// The source of the items of a playlist on a drive.
inline constexpr const char* kPlaylistSource = "SOURCE_PLAYLIST";

/// All other sources are the content engine's.
bool is_source_of_this_machine(const std::string& source);

/// One list request from its start to its disconnect, for the thread that makes it. The library's callback
/// only stores the event and wakes that thread.
class ListRequest {
public:
    /// Sends the request, waits for the answer and lays out the page.
    /// @throws CommandError when the library refuses the request or reports failure, or a signal comes
    ListRequest(const ListOptions& options, const std::string& path);
    ~ListRequest();
    ListRequest(const ListRequest&) = delete;
    ListRequest& operator=(const ListRequest&) = delete;

    int tile_count() const { return tile_count_; }
    int count_of(qra_media_type_e type) const;

    /// The groups of the list. The library does not tell for all sources: a page of nothing but group headers
    /// does. The page is laid out anew with the options afterwards.
    int group_count(const ListOptions& options);

    // A packaged film that cannot be read is a tile that the cursor cannot be put on.

    /// The tile's text exactly as qra_get_item_v2() gives it; the cursor stands on the tile afterwards.
    /// Nothing for a tile that cannot be read.
    std::optional<std::string> item(int index);
    /// False for a tile that cannot be read.
    bool reach(int index);
    /// Moves one tile on, along a list of all its folders and files; reads no package.
    bool step();
    /// @throws CommandError where reach() fails
    void move_to(int index);

    /// For reading values at the cursor.
    qra_agent_handler_h handle() const { return handle_; }

private:
    static bool on_list_complete(void* user_data, CQRAAgentHandle* handle, qra_event_e event, int value,
                                 const char* text);
    void send(const ListOptions& options, const std::string& path);
    qra_event_e wait_for_answer();
    void lay_out(const ListOptions& options);
    /// The library takes a group index as a promise that there is such a group.
    void check_group(const ListOptions& options);
    void apply(const ListOptions& options);

    qra_agent_handler_h handle_ = nullptr;
    int tile_count_ = 0;

    std::mutex mutex_;  // covers the two below
    std::condition_variable answered_;
    std::optional<qra_event_e> event_;
    bool interrupted_ = false;
};

#endif
