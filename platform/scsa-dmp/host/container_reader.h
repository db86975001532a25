#ifndef QRA_SCSA_DMP_CONTAINER_READER_H
#define QRA_SCSA_DMP_CONTAINER_READER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/scsa-dmp/host/image_bytes.h"
#include "platform/scsa-dmp/host/package_file.h"

struct archive;
struct archive_entry;

namespace scsa_host {

/**
 * A container, an archive that libarchive reads: ZIP, tar or cpio, the last two also as a whole in gzip.
 *
 * Only formats are taken whose reading needs little memory, and within a ZIP only files that are stored or
 * deflated. Files are skipped by seeking. Nothing is unpacked but the file that is asked for, and that into
 * memory; names are compared and handed out, and never used as paths. Links and folders are no files.
 *
 * One reader walks once: what it has walked over does not come again.
 */
class ContainerReader {
public:
    /// The source must outlive the reader.
    explicit ContainerReader(ByteSource& source);
    ~ContainerReader();
    ContainerReader(const ContainerReader&) = delete;
    ContainerReader& operator=(const ContainerReader&) = delete;

    bool open();
    /// Whether all of it is compressed, so that nothing is reached but by unpacking what precedes it.
    bool is_compressed() const;
    /// Turns to the next file; false at the end, and with a reason when the container is broken.
    bool next();

    /// Opens, and turns to the first file of a name.
    bool find(const std::string& name);

    // The file that the reader turned to.

    /// Its name, as a URI.
    std::string name() const;
    /// Whether its bytes lie in the container as they are.
    bool is_stored() const;
    /// Where they lie, if it is stored and in one piece. Nothing else can be asked of the reader then.
    std::optional<ByteRange> stored_place();
    /// All bytes.
    bool read(ImageBytes& bytes);

    /// How many bytes were unpacked so far.
    uint64_t unpacked() const;
    /// Why it failed.
    const std::string& reason() const { return reason_; }

private:
    class Input;

    void choose_formats();
    bool is_readable();
    bool fail(const char* reason);

    ByteSource& source_;
    std::unique_ptr<Input> input_;
    std::unique_ptr<archive, int (*)(archive*)> archive_;
    archive_entry* entry_ = nullptr;
    size_t entries_ = 0;
    bool is_empty_ = false;
    uint64_t unpacked_files_ = 0;
    std::string reason_;
};

}  // namespace scsa_host

#endif
