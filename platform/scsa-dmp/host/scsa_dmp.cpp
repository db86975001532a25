#include "scsa_dmp.h"

#include <exception>

#include "platform/scsa-dmp/host/container_reader.h"
#include "platform/scsa-dmp/host/entry_name.h"
#include "platform/scsa-dmp/host/log.h"
#include "platform/scsa-dmp/host/sff_reader.h"

namespace {

using scsa_host::ByteRange;
using scsa_host::ByteSource;
using scsa_host::ContainerReader;
using scsa_host::EntryKind;
using scsa_host::ImageBytes;
using scsa_host::MemorySource;
using scsa_host::PackageFile;
using scsa_host::PartSource;
using scsa_host::SffReader;

static_assert(static_cast<int>(EntryKind::kSff) == SCSA_DMP::FILE_TYPE_SFF);
static_assert(static_cast<int>(EntryKind::kPoster) == SCSA_DMP::FILE_TYPE_POSTER);

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

    bool fail(const char* reason) const {
        SCSA_DMP_LOG_WARNING("%s: package [%s], entry [%s]: %s", function_, package_.c_str(), entry_.c_str(),
                             reason);
        return false;
    }

    bool read_entry(ByteSource& file, ImageBytes& bytes) const {
        ContainerReader container(file);
        return (container.find(entry_) && container.read(bytes)) || fail(container.reason().c_str());
    }

    /// Has the SFF asked by `ask`: the package itself, or the entry.
    template <class Ask>
    bool ask_sff(ByteSource& file, Ask ask) const {
        if (entry_.empty() || entry_ == package_) {
            return ask_bytes(file, ask);
        }
        ContainerReader container(file);
        if (!container.find(entry_)) {
            return fail(container.reason().c_str());
        }
        if (const auto place = container.stored_place()) {
            PartSource part(file, *place);
            return ask_bytes(part, ask);
        }
        return ask_unpacked(file, ask);
    }

private:
    template <class Ask>
    bool ask_unpacked(ByteSource& file, Ask ask) const {
        ImageBytes bytes;
        if (!read_entry(file, bytes)) {
            return false;
        }
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
    const Question question(__func__, package, no_entry);
    const bool listed = question.answer([&](ByteSource& file) {
        ContainerReader container(file);
        return container.list(files) || question.fail(container.reason().c_str());
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
    xml.clear();
    const Question question(__func__, package, entry);
    return question.answer([&](ByteSource& file) {
        ImageBytes bytes;
        if (!question.read_entry(file, bytes)) {
            return false;
        }
        xml.assign(bytes.data(), bytes.size());
        return true;
    });
}

bool MetaDataExtractor::GetXMLFromSFF(std::string package, std::string entry, std::string& xml) {
    xml.clear();
    const Question question(__func__, package, entry);
    const bool read = question.answer([&](ByteSource& file) {
        return question.ask_sff(file, [&](SffReader& reader) { return reader.read_xml(xml); });
    });
    if (!read) {
        xml.clear();
    }
    return read;
}

bool MetaDataExtractor::GetImageBuffer(std::string package, std::string image_path, unsigned long long& size,
                                       char** buffer) {
    const Question question(__func__, package, image_path);
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
    const Question question(__func__, package, image_path);
    ImageBytes bytes;
    const bool read = question.answer([&](ByteSource& file) {
        return question.ask_sff(file,
                                [&](SffReader& reader) { return reader.read_image(track_reference, bytes); });
    });
    return hand_out(read, bytes, size, buffer);
}

}  // namespace SCSA_DMP
