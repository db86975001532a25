#ifndef QRA_AGENT_SOURCE_PTP_QRA_PTP_TEMP_FILE_H
#define QRA_AGENT_SOURCE_PTP_QRA_PTP_TEMP_FILE_H

#include <string>

/**
 * The name of a file below the user's application path that holds an object of a camera for a moment, and the
 * end of that file: whatever lies there is removed with this object.
 *
 * The folder is made when it is missing. A name of kMostBytes or more is refused: cut, it could be that of
 * another object.
 */
class CQRAPTPTempFile {
public:
    /// The name of an object's file in this process; `szExtension` is "JPG" or "MP4".
    CQRAPTPTempFile(int nObject, const char* szExtension);
    ~CQRAPTPTempFile();
    CQRAPTPTempFile(const CQRAPTPTempFile&) = delete;
    CQRAPTPTempFile& operator=(const CQRAPTPTempFile&) = delete;

    /// False, with a log line, for a name that is too long or a folder that cannot be made.
    bool IsUsable() const { return m_bUsable; }
    const std::string& GetPath() const { return m_strPath; }

    static constexpr size_t kMostBytes = 128;  ///< with the terminator

private:
    bool m_MakeFolder() const;

    std::string m_strPath;
    bool m_bUsable;
};

#endif
