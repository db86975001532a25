#ifndef QRA_ENGINE_FOLDER_THUMB_H
#define QRA_ENGINE_FOLDER_THUMB_H

#include <string>

namespace engine {

/**
 * What the tile of a folder shows, as the JSON text that clients receive: the paths of the first `count`
 * media of the content type that lie in the folder itself, or that it has none but folders, or that it is
 * empty. Reads the media database; the error code in the text is 1 if the folder is not in it.
 *
 * @param path  the folder, below the media root
 */
std::string folder_thumb_text(const std::string& path, const std::string& content_type, unsigned count);

/// The text that says that nothing could be found out.
std::string failed_folder_thumb_text();

}  // namespace engine

#endif
