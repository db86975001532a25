#ifndef QRA_PLATFORM_MTP_VIRTUAL_CAMERA_CARD_H
#define QRA_PLATFORM_MTP_VIRTUAL_CAMERA_CARD_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/mtp/virtual-camera/description.h"

namespace virtual_camera {

/// A file or folder on a card.
struct Object {
    uint32_t handle = 0;
    uint32_t storage = 0;
    uint32_t parent = 0;  ///< 0: the root
    uint16_t format = 0;
    uint64_t size = 0;
    int64_t modified = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    std::string name;
    std::string path;  ///< empty: made up
};

/**
 * What the camera holds: the trees below its storages' folders, and pictures that are made up. Objects are
 * numbered in the order of their paths, so that every process gives the same numbers. Read once.
 */
class Card {
public:
    explicit Card(const Description& description);

    const std::vector<uint32_t>& storages() const { return storages_; }
    bool has_storage(uint32_t storage) const;
    /// Null for one that is not there.
    const Object* find(uint32_t handle) const;
    /// The objects of a folder, or of the roots of the storages.
    std::vector<uint32_t> children(uint32_t storage, uint32_t parent) const;
    void remove(uint32_t handle) { objects_.erase(handle); }

    /// Reads from the file, or makes the bytes up; fewer bytes than asked for at the end.
    static std::vector<uint8_t> read(const Object& object, uint64_t offset, size_t length);
    /// The small picture in a picture's head; a small JPEG file is its own. Empty for none.
    static std::vector<uint8_t> thumbnail(const Object& object);

private:
    void add_tree(uint32_t storage, uint32_t parent, const std::string& directory, int depth);
    void add_made_up(uint32_t storage, unsigned count);
    uint32_t add_folder(uint32_t storage, uint32_t parent, const std::string& name);
    uint32_t add(Object object);

    std::vector<uint32_t> storages_;
    std::map<uint32_t, Object> objects_;
    uint32_t last_handle_ = 0;
};

}  // namespace virtual_camera

#endif
