#ifndef QRA_TESTS_INTEGRATION_BROWSE_TREE_H
#define QRA_TESTS_INTEGRATION_BROWSE_TREE_H

#include <filesystem>
#include <string>
#include <vector>

/**
 * A drive of some hundred small real files in a media database of its own, scanned. Its message bus is the
 * environment's. Everything is gone when it goes.
 *
 * The folder "show" holds, besides three folders:
 *   2021-05-06  IMG_1.jpg, IMG_2.jpg, IMG_10.jpg, clip 1.mp4, clip 2.mp4
 *   2021-05-07  Song.mp3, zebra.png, news.srf
 *   2020-01-02  old.jpg, sport.srf, weather.srf, film.um4, show.km4
 * "show/album 2" holds 120 pictures, "show/album 10" 80 songs, and "show/Zoo" 40 videos.
 */
class BrowseTree {
public:
    BrowseTree();
    ~BrowseTree();
    BrowseTree(const BrowseTree&) = delete;
    BrowseTree& operator=(const BrowseTree&) = delete;

    /// A path on the drive as a client gives it.
    std::string path(const std::string& relative) const { return drive_ + "/" + relative; }
    /// The same file where it really lies.
    std::filesystem::path target(const std::string& relative) const { return root_ / "stick" / relative; }

private:
    void add(const std::string& fixture, const std::string& relative, long time = kMay6) const;
    void add_recording(const std::string& name, const std::string& channel, int major, long time) const;
    void fill_show() const;
    void fill_albums() const;

    static constexpr long kMay6 = 1620302400;  // 2021-05-06 12:00 UTC
    static constexpr long kMay7 = kMay6 + 24 * 60 * 60;
    static constexpr long kJanuary2 = 1577966400;  // 2020-01-02 12:00 UTC

    std::filesystem::path root_;
    std::string drive_;
};

#endif
