#ifndef QRA_ENGINE_SECTION_WRITER_H
#define QRA_ENGINE_SECTION_WRITER_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "common/datamodel/result_list_layout.h"
#include "engine/src/shared_objects.h"

namespace engine {

/// What goes into one section of a list.
struct SectionContent {
    int32_t first;                                        ///< list index of the section's first item
    int32_t last;                                         ///< and of its last, not below the first
    int32_t section;                                      ///< its number
    int32_t total;                                        ///< items of the whole list
    std::vector<_stQRAGroupEntry> groups;                 ///< of the whole list
    std::function<std::string_view(int32_t index)> text;  ///< of the item at a list index
};

/// A section in shared memory; its end unlinks all of it.
class Section {
public:
    Section(SharedObject list, std::vector<SharedObject> blocks)
        : list_(std::move(list)), blocks_(std::move(blocks)) {}

    /// The name of the result list, by which clients know the section.
    const std::string& name() const { return list_.name(); }
    size_t size() const;
    size_t object_count() const { return 1 + blocks_.size(); }

private:
    SharedObject list_;
    std::vector<SharedObject> blocks_;
};

/**
 * Writes sections: a result list object, and block objects with the item texts. A block takes at most
 * kMostItems items and kMostBytes of texts; a text that is longer has a block of its own. An open block costs
 * its reader a descriptor, so that the section of 200 items that clients ask for is one block as a rule.
 */
class SectionWriter {
public:
    static constexpr int32_t kMostItems = 256;
    static constexpr size_t kMostBytes = 128 * 1024;

    /// The objects outlive the writer.
    explicit SectionWriter(const SharedObjects& objects) : objects_(objects) {}

    /// Nothing, with a log line, if there is no shared memory for it, or if it is too long for the format.
    std::optional<Section> write(const SectionContent& content, uid_t reader) const;

private:
    std::optional<SharedObject> write_block(const SectionContent& content, int32_t first, int32_t last,
                                            uid_t reader) const;
    std::optional<SharedObject> write_list(const SectionContent& content,
                                           const std::vector<_stQRAItemPlace>& places,
                                           const std::vector<SharedObject>& blocks, uid_t reader) const;

    const SharedObjects& objects_;
};

}  // namespace engine

#endif
