#ifndef QRA_SCSA_DMP_SFF_READER_H
#define QRA_SCSA_DMP_SFF_READER_H

#include <string>
#include <vector>

#include "platform/scsa-dmp/host/image_bytes.h"
#include "platform/scsa-dmp/host/item_tables.h"

namespace scsa_host {

/**
 * An SFF, a file of the ISO base media family. Steps over boxes that do not matter without reading them, and
 * goes no deeper than the boxes that it knows.
 */
class SffReader {
public:
    /// The source must outlive the reader.
    explicit SffReader(ByteSource& source) : source_(source) {}

    /// The XML of the file's own metadata; if it has none, that of its movie.
    bool read_xml(std::string& xml);

    /// The picture of a reference: the item of that name; else, by the number that the reference is or ends
    /// with behind a colon, the samples of the track, else the item of that number.
    bool read_image(const std::string& reference, ImageBytes& image);

    /// Why it failed.
    const char* reason() const { return reason_; }

private:
    void find_boxes();
    Extents find_image(const std::string& reference);
    /// The size of all pieces together; false if they leave the file or are too large.
    bool measure(const Extents& extents, size_t& size);
    bool copy(const Extents& extents, char* out);
    bool fail(const char* reason);

    ByteSource& source_;
    std::vector<ByteRange> metas_;  ///< in the order in which they are asked
    std::vector<ByteRange> movies_;
    const char* reason_ = "";
};

}  // namespace scsa_host

#endif
