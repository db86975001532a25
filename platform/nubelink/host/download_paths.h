#ifndef QRA_NUBELINK_DOWNLOAD_PATHS_H
#define QRA_NUBELINK_DOWNLOAD_PATHS_H

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace nbl {

/**
 * The files that downloads of the process are writing, so that no two write the same one: a download that
 * fails removes its file. All functions may be called from any thread; one mutex covers everything, and is
 * held across no call of others.
 */
class DownloadPaths {
public:
    /// One download's file, as long as it lives or until its download is cancelled.
    class Hold {
    public:
        Hold(DownloadPaths& paths, std::string path) : paths_(paths), path_(std::move(path)) {}
        ~Hold() { paths_.release(*this); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        friend class DownloadPaths;
        DownloadPaths& paths_;
        const std::string path_;
        int token_ = 0;  // by the mutex of the paths
    };

    static DownloadPaths& instance();

    /// Null if another download has the file.
    std::shared_ptr<Hold> hold(const std::string& path);
    /// The download that holds the file has that token.
    void name(Hold& hold, int token);
    /// The download with that token is cancelled: the next one may have the file, since it begins after that
    /// end.
    void give_up(int token);
    void release(const Hold& hold);

private:
    std::mutex mutex_;
    std::map<std::string, Hold*> held_;  // by mutex_
};

}  // namespace nbl

#endif
