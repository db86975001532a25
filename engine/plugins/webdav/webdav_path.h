#ifndef QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_PATH_H
#define QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_PATH_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace engine {

/*
 * How items of a WebDAV account are called.
 *
 * An item's id is its path below the account's address as people read it, without a slash at either end:
 * "Holiday 2024/Küste.jpg". A percent sign, control characters, bytes that are no UTF-8, and slashes within a
 * name stand in it as "%" and two digits, so that every name of a server comes back as it was.
 */

/// The name of one resource, bytes that are not empty, as a part of an id.
std::string id_of_name(std::string_view name);

/// What an id tells, "Holiday 2024/Küste.jpg" for example.
struct WebDavId {
    std::string id;         ///< as it is written here, however it came
    std::string folder_id;  ///< of the folder around it: "Holiday 2024"
    std::string name;       ///< in bytes: "Küste.jpg"; empty for the account's top
    std::string path;       ///< as a part of a URL's path: "Holiday%202024/K%C3%BCste.jpg"
};

/// Nothing for an id that would lead out of the account.
std::optional<WebDavId> parse_id(std::string_view id);

/// The folder that was asked, and what the addresses in its answer mean.
class WebDavFolder {
public:
    /// @param url an absolute URL, where the answer came from
    explicit WebDavFolder(const std::string& url);

    /// The name, in bytes, of the resource within this folder that the address tells; nothing for the folder
    /// itself, for what lies deeper, and for everything outside.
    std::optional<std::string> child(std::string_view href) const;
    /// Whether the address is that of the folder, or file, itself.
    bool is_itself(std::string_view href) const;
    /// Its own URL, as that of a folder or of a file.
    std::string url(bool folder) const;
    /// The URL of a resource in it.
    std::string url_of(const std::string& name, bool folder) const;

private:
    std::optional<std::vector<std::string>> names_of(std::string_view href) const;
    /// What follows the folder's path in an address that is written as most servers do; empty in all others.
    std::string_view segment_below(std::string_view href) const;

    std::string url_;                 ///< without what is no path, with a slash at its end
    std::string path_;                ///< its path alone; empty if that leads elsewhere
    std::vector<std::string> names_;  ///< the path's, in bytes
};

}  // namespace engine

#endif
