#ifndef QRA_NUBELINK_ITEM_RECORD_H
#define QRA_NUBELINK_ITEM_RECORD_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "nubelink.h"

namespace nbl {
class ItemBuilder;
}

/**
 * An item: an immutable record of properties in one piece of memory, with a reference count.
 *
 * A property is a name and a text, as a server gave it ("dc:title", "@id", "res@size") or as the service adds
 * it ("#thumbnail"). Names that are common take one byte. A record may be read and its references be taken
 * and given back on any thread.
 */
struct nbl_item_s final {
public:
    /// The value of the property; none if the item does not have it. Lives as long as the record.
    std::optional<std::string_view> find(std::string_view name) const;
    /// The same, empty for none.
    std::string_view text(std::string_view name) const { return find(name).value_or(std::string_view()); }

    /// An nbl_item_type_e.
    int type() const { return type_; }
    /// The server that it is of; null for an item that is of none.
    nbl_provider_t provider() const { return provider_; }
    /// All properties as they are kept: two records of one server are alike if these are.
    std::string_view bytes() const { return {reinterpret_cast<const char*>(this + 1), size_}; }

    void take() { references_.fetch_add(1, std::memory_order_relaxed); }
    void give_back();

private:
    friend class nbl::ItemBuilder;
    nbl_item_s(uint8_t type, nbl_provider_t provider, uint32_t size)
        : type_(type), size_(size), provider_(provider) {}

    std::atomic<uint32_t> references_{1};
    const uint8_t type_;
    const uint32_t size_;
    nbl_provider_t const provider_;
};

namespace nbl {

struct GiveBackItem {
    void operator()(nbl_item_t item) const { item->give_back(); }
};
/// One reference to an item.
using ItemPtr = std::unique_ptr<nbl_item_s, GiveBackItem>;

inline ItemPtr share(nbl_item_t item) {
    item->take();
    return ItemPtr(item);
}

/// Names of properties that are the service's own.
namespace property {
constexpr std::string_view kThumbnail = "#thumbnail";  ///< address of a small picture
constexpr std::string_view kSubtitle = "#subtitle";    ///< address of subtitles
constexpr std::string_view kMimeType = "#mimetype";    ///< of content to be sent
constexpr std::string_view kPath = "#path";            ///< local file to be sent
constexpr std::string_view kFifo = "#fifo";            ///< FIFO to be sent
constexpr std::string_view kFileName = "#filename";    ///< the file name that sent content gets
}  // namespace property

/**
 * Gathers an item's properties, and may then be used for the next item.
 *
 * What a server can make the service hold is bounded: a value is cut at kLargestValue bytes, between two
 * characters, and properties that would make the record larger than kLargestRecord are left out.
 */
class ItemBuilder {
public:
    static constexpr size_t kLargestValue = 16 * 1024;
    static constexpr size_t kLargestRecord = 64 * 1024;

    /// Adds a property; of two of one name the first one counts. An empty value is left out. The texts must
    /// not be the builder's own.
    void add(std::string_view name, std::string_view value);
    /// Adds all properties of an item, as add() does.
    void add_all(const nbl_item_s& item);
    bool has(std::string_view name) const;
    std::string_view text(std::string_view name) const;
    size_t size() const { return bytes_.size(); }
    void clear() {
        bytes_.clear();
        coded_ = 0;
    }

    /// The record; the builder is empty then.
    ItemPtr build(int type, nbl_provider_t provider = nullptr);

private:
    std::string bytes_;
    uint64_t coded_ = 0;  ///< the names with a code that are there, a bit for each code
};

/// The same item with another number of children.
ItemPtr with_child_count(const nbl_item_s& item, int64_t count);

}  // namespace nbl

#endif
