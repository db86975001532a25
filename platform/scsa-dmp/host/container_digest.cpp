#include "platform/scsa-dmp/host/container_digest.h"

#include <set>
#include <utility>

#include "platform/scsa-dmp/host/entry_name.h"
#include "platform/scsa-dmp/host/limits.h"
#include "platform/scsa-dmp/host/sff_reader.h"

namespace scsa_host {
namespace {

/// Keeps texts as long as there is room for them.
class TextKeeper {
public:
    explicit TextKeeper(ContainerDigest& digest) : digest_(digest) {}

    /// Takes what the file that the reader turned to has of texts. Of two files of one name the first counts.
    void keep(ContainerReader& container, const std::string& name) {
        const EntryKind kind = kind_of(name);
        const bool is_wanted = kind == EntryKind::kXml || kind == EntryKind::kSff;
        ImageBytes bytes;
        if (!is_wanted || !seen_.insert(name).second || !container.read(bytes)) {
            return;
        }
        if (kind == EntryKind::kXml) {
            shelve({std::string(bytes.data(), bytes.size()), ""}, name, digest_.texts);
        } else {
            shelve(text_of_sff(bytes), name, digest_.sff_texts);
        }
    }

private:
    static KeptText text_of_sff(ImageBytes& bytes) {
        MemorySource memory(bytes.data(), bytes.size());
        SffReader reader(memory);
        KeptText kept;
        if (!reader.read_xml(kept.text)) {
            kept = {"", reader.reason()};
        }
        return kept;
    }

    void shelve(KeptText kept, const std::string& name, std::map<std::string, KeptText>& shelf) {
        if (kept.text.size() <= room_) {
            room_ -= kept.text.size();
            shelf.emplace(name, std::move(kept));
        }
    }

    ContainerDigest& digest_;
    std::set<std::string> seen_;
    size_t room_ = kMostKeptText;
};

}  // namespace

bool take_digest(ContainerReader& container, ContainerDigest& digest) {
    TextKeeper keeper(digest);
    while (container.next()) {
        digest.names.push_back(container.name());
        if (container.is_compressed()) {
            keeper.keep(container, digest.names.back());
        }
    }
    return container.reason().empty();
}

}  // namespace scsa_host
