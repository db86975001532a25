#ifndef QRA_PLATFORM_SCSA_DMP_H
#define QRA_PLATFORM_SCSA_DMP_H

#include <string>
#include <vector>

/**
 * Contract of the reader of SCSA packages.
 *
 * A package is one file on a drive, in one of two forms. A stand-alone package is itself an SFF file: the XML
 * of its metadata and its pictures are inside it. A container holds a list of embedded files: XML texts,
 * pictures, SFF files. Whoever calls knows which form a file has; docs/packages.md tells both.
 *
 * No state: every call opens the package anew, and any thread may call any function. A call may take long. A
 * package is foreign data: whatever is wrong with it ends in false and a line in the log, with the
 * out-arguments empty. Nothing is thrown.
 */
namespace SCSA_DMP {

// What GetFileType() tells; any other number is neither.
constexpr int FILE_TYPE_SFF = 0;
constexpr int FILE_TYPE_POSTER = 2;

class __attribute__((visibility("default"))) MetaDataExtractor {
public:
    /**
     * The names of a container's embedded files, in its order.
     * They are URIs as far as colons go, which are written as "%3A"; all else is as it is stored.
     * @return true with an empty list for a container that is empty
     */
    static bool GetFileList(std::string package, std::vector<std::string>& files);

    /** The kind of an embedded file, by its name as GetFileList() gives it. */
    static int GetFileType(std::string entry);

    /**
     * The text of an embedded XML.
     * @param entry  its name as GetFileList() gives it
     * @param xml    the text, which may be padded with NULs at its end
     */
    static bool GetXML(std::string package, std::string entry, std::string& xml);

    /**
     * The XML of the metadata inside an SFF.
     * @param entry  the embedded SFF of a container, or "" for a stand-alone package
     * @param xml    as in GetXML()
     */
    static bool GetXMLFromSFF(std::string package, std::string entry, std::string& xml);

    /**
     * The bytes of an embedded picture.
     * @param image_path  its name as GetFileList() gives it
     * @param size        number of bytes; 0 on failure
     * @param buffer      a malloc block, which the caller frees with free(); null on failure. Must not be
     * null
     */
    static bool GetImageBuffer(std::string package, std::string image_path, unsigned long long& size,
                               char** buffer);

    /**
     * The bytes of a picture inside an SFF.
     * @param image_path       the embedded SFF of a container; "" or the package itself if it is stand-alone
     * @param track_reference  names the picture as the metadata of that SFF does
     * @param size, buffer     as in GetImageBuffer()
     */
    static bool GetImageBufferFromSFF(std::string package, std::string image_path,
                                      std::string track_reference, unsigned long long& size, char** buffer);
};

}  // namespace SCSA_DMP

#endif
