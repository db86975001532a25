#ifndef QRA_BENCH_MEDIA_TREE_H
#define QRA_BENCH_MEDIA_TREE_H

#include <string>
#include <vector>

namespace bench {

/**
 * A data directory, a media root and a folder of pictures of its own for one benchmark program, below the
 * temporary directory; removed at the end. The pictures are copies of one small photograph
 * with EXIF, since what is measured here begins at the database.
 */
class MediaTree {
public:
    MediaTree();
    ~MediaTree();
    MediaTree(const MediaTree&) = delete;
    MediaTree& operator=(const MediaTree&) = delete;

    /// Adds the folder `name` with `count` pictures, attaches the tree and scans it. Gives the folder's path
    /// below the media root. Ends the program with a message when that fails.
    std::string add_pictures(const std::string& name, int count);

    std::string database_path() const;

private:
    std::string m_directory;
};

}  // namespace bench

#endif
