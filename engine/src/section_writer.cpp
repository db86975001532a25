#include "engine/src/section_writer.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "engine/src/engine_log.h"

namespace engine {

namespace {

template <class Entry>
std::string_view bytes_of(const Entry& entry) {
    return {reinterpret_cast<const char*>(&entry), sizeof(entry)};
}

template <class Entry>
std::string_view bytes_of(const std::vector<Entry>& table) {
    return {reinterpret_cast<const char*>(table.data()), table.size() * sizeof(Entry)};
}

bool fits(size_t bytes) {
    if (bytes <= INT32_MAX) {
        return true;
    }
    ENGINE_WARNING("%zu bytes are too long for an object", bytes);
    return false;
}

/// The parts of the groups that lie in the items first to last.
std::vector<_stQRAGroupEntry> cut(const std::vector<_stQRAGroupEntry>& groups, int32_t first, int32_t last) {
    std::vector<_stQRAGroupEntry> parts;
    for (const _stQRAGroupEntry& group : groups) {
        const _stQRAGroupEntry part = {std::max(group.nFirstIndex, first), std::min(group.nLastIndex, last)};
        if (part.nFirstIndex <= part.nLastIndex) {
            parts.push_back(part);
        }
    }
    return parts;
}

/// The last item of the block that starts with `first`.
int32_t end_of_block(const SectionContent& content, int32_t first) {
    const int32_t limit = std::min<int64_t>(content.last, int64_t{first} + SectionWriter::kMostItems - 1);
    size_t bytes = content.text(first).size();
    int32_t last = first;
    while (last < limit && bytes <= SectionWriter::kMostBytes) {
        bytes += content.text(last + 1).size();
        if (bytes <= SectionWriter::kMostBytes) {
            ++last;
        }
    }
    return last;
}

}  // namespace

size_t Section::size() const {
    size_t size = list_.size();
    for (const SharedObject& block : blocks_) {
        size += block.size();
    }
    return size;
}

std::optional<Section> SectionWriter::write(const SectionContent& content, uid_t reader) const {
    std::vector<_stQRAItemPlace> places;
    places.reserve(static_cast<size_t>(content.last - content.first) + 1);
    std::vector<SharedObject> blocks;
    for (int32_t first = content.first; first <= content.last;) {
        const int32_t last = end_of_block(content, first);
        auto block = write_block(content, first, last, reader);
        if (!block) {
            return std::nullopt;
        }
        for (int32_t item = 0; item <= last - first; ++item) {
            places.push_back({static_cast<int32_t>(blocks.size()), item});
        }
        blocks.push_back(std::move(*block));
        first = last + 1;
    }
    auto list = write_list(content, places, blocks, reader);
    if (!list) {
        return std::nullopt;
    }
    return Section(std::move(*list), std::move(blocks));
}

std::optional<SharedObject> SectionWriter::write_block(const SectionContent& content, int32_t first,
                                                       int32_t last, uid_t reader) const {
    const std::vector<_stQRAGroupEntry> groups = cut(content.groups, first, last);
    std::vector<_stQRATextOffset> offsets;
    std::vector<std::string_view> pieces(2);  // head and offsets, which are known at the end
    const size_t count = static_cast<size_t>(last - first) + 1;
    size_t end = sizeof(_stQRABlockHeader) + count * sizeof(_stQRATextOffset);
    for (int32_t index = first; index <= last; ++index) {
        pieces.push_back(content.text(index));
        offsets.push_back(static_cast<_stQRATextOffset>(end));
        end += pieces.back().size();
    }
    pieces.push_back(bytes_of(groups));
    const size_t size = end + pieces.back().size();
    if (!fits(size)) {
        return std::nullopt;
    }
    const _stQRABlockHeader head = {
        static_cast<int32_t>(end),           sizeof(_stQRABlockHeader), first, last, content.total,
        static_cast<int32_t>(groups.size()), static_cast<int32_t>(size)};
    pieces[0] = bytes_of(head);
    pieces[1] = bytes_of(offsets);
    return objects_.create(pieces, reader);
}

std::optional<SharedObject> SectionWriter::write_list(const SectionContent& content,
                                                      const std::vector<_stQRAItemPlace>& places,
                                                      const std::vector<SharedObject>& blocks,
                                                      uid_t reader) const {
    std::string names(blocks.size() * kQRABlockNameLength, '\0');
    for (size_t i = 0; i < blocks.size(); ++i) {
        blocks[i].name().copy(&names[i * kQRABlockNameLength], kQRABlockNameLength - 1);
    }
    const size_t index_table = sizeof(_stQRAResultListHeader) + bytes_of(content.groups).size();
    const size_t name_table = index_table + bytes_of(places).size();
    if (!fits(name_table + names.size())) {
        return std::nullopt;
    }
    const _stQRAResultListHeader head = {static_cast<int32_t>(name_table),
                                         static_cast<int32_t>(index_table),
                                         content.first,
                                         content.last,
                                         content.section,
                                         content.total,
                                         static_cast<int32_t>(content.groups.size()),
                                         static_cast<int32_t>(blocks.size()),
                                         static_cast<int32_t>(name_table + names.size())};
    return objects_.create({bytes_of(head), bytes_of(content.groups), bytes_of(places), names}, reader);
}

}  // namespace engine
