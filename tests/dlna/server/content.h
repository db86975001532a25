#ifndef QRA_TESTS_DLNA_SERVER_CONTENT_H
#define QRA_TESTS_DLNA_SERVER_CONTENT_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// One container or item. What is empty or negative is not told to clients.
struct Object {
    std::string id;
    std::string parent;
    std::string title;
    std::string upnp_class;
    std::string artist;
    std::string album;
    std::string genre;
    std::string date;
    std::string mime;
    std::string resolution;
    std::string file;  ///< what its resource holds; empty: bytes that count up
    std::int64_t size = -1;
    int seconds = -1;
    int position = -1;     ///< where playing stopped, in seconds
    bool imported = true;  ///< false: it waits for its bytes
    std::vector<std::string> children;

    bool is_container() const { return upnp_class.rfind("object.container", 0) == 0; }
    bool is_of(const std::string& kind) const { return upnp_class.rfind(kind, 0) == 0; }
};

/// Kinds of items that can be generated.
enum class Kind { image, video, music };

/**
 * The tree of a server: containers and items by id, "0" the root. Generated items have values that follow
 * from their number, so that a test can tell what it must see.
 */
class Content {
public:
    Content();

    const Object* find(const std::string& id) const;
    Object* find(const std::string& id);
    /// Puts the object under its parent, which must be there.
    Object& add(Object object);
    /// With everything below it.
    void remove(const std::string& id);
    /// Every item below the container, containers too if asked for, in the order of the tree.
    std::vector<const Object*> below(const std::string& id, bool containers) const;

    Object& add_container(const std::string& id, const std::string& parent, const std::string& title);
    /// `count` items of the kind, "ID-0" and so on, in a new container `id` under the root.
    void generate(const std::string& id, Kind kind, int count);
    /// Containers in containers, `depth` deep, each with `width` containers and an item.
    void generate_tree(const std::string& id, int depth, int width);
    /// The media files of a directory, in a new container under the root. False if it cannot be read.
    bool add_directory(const std::string& id, const std::string& directory);
    /// Containers of the server's own for the ordered views, made of what it holds now.
    void add_views();

    unsigned update_id() const { return update_id_; }
    void changed() { ++update_id_; }

private:
    void generate_level(const std::string& id, int depth, int width);
    using Keys = std::vector<std::string> (*)(const Object&);
    void add_view(const std::string& id, const std::string& kind, Keys keys,
                  const std::vector<Object>& items);

    std::map<std::string, Object> objects_;
    unsigned update_id_ = 1;
};

#endif
