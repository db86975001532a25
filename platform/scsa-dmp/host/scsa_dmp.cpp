#include "scsa_dmp.h"

#include <exception>
#include <map>
#include <utility>

#include "platform/scsa-dmp/host/container_digest.h"
#include "platform/scsa-dmp/host/container_reader.h"
#include "platform/scsa-dmp/host/entry_name.h"
#include "platform/scsa-dmp/host/known_containers.h"
#include "platform/scsa-dmp/host/log.h"
#include "platform/scsa-dmp/host/sff_reader.h"

namespace {

using scsa_host::ByteRange;
using scsa_host::ByteSource;
using scsa_host::ContainerDigest;
using scsa_host::ContainerReader;
using scsa_host::EntryKind;
using scsa_host::ImageBytes;
using scsa_host::KeptText;
using scsa_host::KnownContainer;
using scsa_host::KnownContainers;
using scsa_host::MemorySource;
using scsa_host::PackageFile;
using scsa_host::PartSource;
using scsa_host::SffReader;

static_assert(static_cast<int>(EntryKind::kSff) == SCSA_DMP::FILE_TYPE_SFF);
static_assert(static_cast<int>(EntryKind::kPoster) == SCSA_DMP::FILE_TYPE_POSTER);

using Shelf = std::map<std::string, KeptText> ContainerDigest::*;

/// One question to a package: what it is about, for the log line that tells why it has no answer.
class Question {
public:
    Question(const char* function, const std::string& package, const std::string& entry)
        : function_(function), package_(package), entry_(entry) {}

    /// Opens the package and has it answered by `ask`, which takes the package's bytes.
    template <class Ask>
    bool answer(Ask ask) const {
        try {
            PackageFile file(package_);
            return file.is_open() ? ask(file) : fail("it cannot be opened as a file");
        } catch (const std::exception& error) {
            return fail(error.what());
        }
    }

    /// The same for a text, which of a container may be known already.
    template <class Ask>
    bool answer_text(Shelf shelf, std::string& xml, Ask ask) {
        xml.clear();
        const bool read = answer([&](PackageFile& file) {
            if (is_stand_alone()) {
                return ask(file);
            }
            const auto known = KnownContainers::instance().find(file.state());
            return answer_from(*known, shelf, xml, file, ask);
        });
        if (!read) {
            xml.clear();
        }
        return read;
    }

    bool fail(const char* reason) const {
        SCSA_DMP_LOG_WARNING("%s: package [%s], entry [%s]: %s", function_, package_.c_str(), entry_.c_str(),
                             reason);
        return false;
    }

    bool read_entry(ByteSource& file, ImageBytes& bytes) {
        ContainerReader container(file);
        return container.find(entry_) ? read_found(container, bytes) : fail(container.reason().c_str());
    }

    /// Has the SFF asked by `ask`: the package itself, or the entry.
    template <class Ask>
    bool ask_sff(ByteSource& file, Ask ask) {
        if (is_stand_alone()) {
            return ask_bytes(file, ask);
        }
        ContainerReader container(file);
        if (!container.find(entry_)) {
            return fail(container.reason().c_str());
        }
        ImageBytes bytes;
        if (container.is_stored()) {
            if (const auto place = container.stored_place()) {
                PartSource part(file, *place);
                return ask_bytes(part, ask);
            }
            return read_entry(file, bytes) && ask_memory(bytes, ask);
        }
        return read_found(container, bytes) && ask_memory(bytes, ask);
    }

private:
    /// Without an entry the package is asked itself, and is no container.
    bool is_stand_alone() const { return entry_.empty() || entry_ == package_; }

    /// Looks into what was kept of the container's texts, and asks only for one that was not.
    template <class Ask>
    bool answer_from(KnownContainer& known, Shelf shelf, std::string& xml, PackageFile& file, Ask ask) {
        if (const auto digest = known.digest()) {
            const auto& texts = (*digest).*shelf;
            const auto kept = texts.find(scsa_host::uri_of(entry_));
            if (kept != texts.end()) {
                xml = kept->second.text;
                return kept->second.reason.empty() || fail(kept->second.reason.c_str());
            }
        }
        if (known.is_too_costly()) {
            return fail("the texts of this container have cost too much");
        }
        const bool answered = ask(file);
        known.charge(file.cost() + unpacked_);
        return answered;
    }

    bool read_found(ContainerReader& container, ImageBytes& bytes) {
        const bool read = container.read(bytes);
        unpacked_ = container.unpacked();
        return read || fail(container.reason().c_str());
    }

    template <class Ask>
    bool ask_memory(ImageBytes& bytes, Ask ask) const {
        MemorySource memory(bytes.data(), bytes.size());
        return ask_bytes(memory, ask);
    }

    template <class Ask>
    bool ask_bytes(ByteSource& bytes, Ask ask) const {
        SffReader reader(bytes);
        return ask(reader) || fail(reader.reason());
    }

    const char* function_;
    const std::string& package_;
    const std::string& entry_;
    uint64_t unpacked_ = 0;  ///< by the walk that ended with the entry
};

bool hand_out(bool read, ImageBytes& bytes, unsigned long long& size, char** buffer) {
    size = read ? bytes.size() : 0;
    *buffer = read ? bytes.release() : nullptr;
    return read;
}

}  // namespace

namespace SCSA_DMP {

bool MetaDataExtractor::GetFileList(std::string package, std::vector<std::string>& files) {
    files.clear();
    const std::string no_entry;
    Question question(__func__, package, no_entry);
    const bool listed = question.answer([&](PackageFile& file) {
        ContainerReader container(file);
        ContainerDigest digest;
        if (!container.open() || !take_digest(container, digest)) {
            return question.fail(container.reason().c_str());
        }
        files = digest.names;
        if (container.is_compressed()) {
            KnownContainers::instance().find(file.state())->keep(std::move(digest));
        }
        return true;
    });
    if (!listed) {
        files.clear();
    }
    return listed;
}

int MetaDataExtractor::GetFileType(std::string entry) {
    return static_cast<int>(scsa_host::kind_of(entry));
}

bool MetaDataExtractor::GetXML(std::string package, std::string entry, std::string& xml) {
    Question question(__func__, package, entry);
    return question.answer_text(&ContainerDigest::texts, xml, [&](PackageFile& file) {
        ImageBytes bytes;
        if (!question.read_entry(file, bytes)) {
            return false;
        }
        xml.assign(bytes.data(), bytes.size());
        return true;
    });
}

bool MetaDataExtractor::GetXMLFromSFF(std::string package, std::string entry, std::string& xml) {
    Question question(__func__, package, entry);
    return question.answer_text(&ContainerDigest::sff_texts, xml, [&](PackageFile& file) {
        return question.ask_sff(file, [&](SffReader& reader) { return reader.read_xml(xml); });
    });
}

bool MetaDataExtractor::GetImageBuffer(std::string package, std::string image_path, unsigned long long& size,
                                       char** buffer) {
    Question question(__func__, package, image_path);
    ImageBytes bytes;
    const bool read = question.answer([&](ByteSource& file) {
        if (scsa_host::kind_of(image_path) == EntryKind::kSff) {
            return question.fail("an SFF is no picture");
        }
        return question.read_entry(file, bytes) && (bytes.size() != 0 || question.fail("it is empty"));
    });
    return hand_out(read, bytes, size, buffer);
}

bool MetaDataExtractor::GetImageBufferFromSFF(std::string package, std::string image_path,
                                              std::string track_reference, unsigned long long& size,
                                              char** buffer) {
    Question question(__func__, package, image_path);
    ImageBytes bytes;
    const bool read = question.answer([&](ByteSource& file) {
        return question.ask_sff(file,
                                [&](SffReader& reader) { return reader.read_image(track_reference, bytes); });
    });
    return hand_out(read, bytes, size, buffer);
}

}  // namespace SCSA_DMP
