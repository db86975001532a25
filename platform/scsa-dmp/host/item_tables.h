#ifndef QRA_SCSA_DMP_ITEM_TABLES_H
#define QRA_SCSA_DMP_ITEM_TABLES_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/scsa-dmp/host/package_file.h"

namespace media_content {
class ByteCursor;
struct Box;
}  // namespace media_content

namespace scsa_host {

/// Where something lies in a file, piece after piece.
using Extents = std::vector<ByteRange>;

/// What a "meta" box of an SFF holds: an XML text, and items with the tables that tell where they are.
class ItemTables {
public:
    /// Reads the payload of a "meta" box. Broken tables leave out what they cannot tell.
    ItemTables(ByteSource& source, ByteRange meta);

    /// Where the metadata's XML is: in a box of its own, or an item; empty if there is none.
    Extents xml() const;
    /// Where the item of a name or of a number is; empty if there is none.
    Extents item_named(std::string_view name) const;
    Extents item_numbered(uint32_t number) const;

private:
    struct Item {
        uint32_t number = 0;
        bool is_xml = false;
        std::string name;
    };

    void read_primary_item(const media_content::Box& box);
    void read_item_infos(const media_content::Box& box);
    void read_item_info();
    void read_places(const media_content::Box& box);
    bool read_place(media_content::ByteCursor& cursor, uint8_t version, const size_t (&widths)[4]);
    std::optional<ByteRange> place(uint16_t method, uint64_t offset, uint64_t length) const;

    ByteSource& source_;
    std::vector<uint8_t> bytes_;
    std::optional<ByteRange> xml_box_;
    std::optional<ByteRange> item_data_;
    uint32_t primary_ = 0;
    std::vector<Item> items_;
    std::map<uint32_t, Extents> places_;
    size_t extents_left_ = kMostExtents;
};

}  // namespace scsa_host

#endif
