#ifndef QRA_AGENT_SHARE_SRC_QRA_SHARE_COMMON_H
#define QRA_AGENT_SHARE_SRC_QRA_SHARE_COMMON_H

#include <string>

/**
 * Paths of batch jobs: their parts, and where a copied file goes. Both "/" and "\" end a component, as the
 * names may come from a camera. No state; may be called from any thread.
 *
 * `type` is an item's qra_media_type_e.
 */
class QRAShareCommon {
public:
    /// What follows the last "." of the last component; "" without one.
    static std::string ExtractExtension(const std::string& strPath);
    static std::wstring ExtractExtension(const std::wstring& strPath);
    /// The last component.
    static std::string ExtractFullFileName(std::string strPath);
    /// The last component up to its last ".".
    static std::string ExtractFileNameNoExt(std::string strPath);
    /// What precedes the last component and its separator; "" without one.
    static std::string ExtractFilePath(std::string strPath);
    /// The whole text up to its last ".".
    static std::string ExtractFullPathandNameNoExt(std::string strPath);

    /// Appends the directory "MP" to the path, and makes it.
    static bool MakeHDDFolder(std::string& strPath);
    /// The `n`th folder for a kind of item in a directory, with a "/" at its end: "base/PHOTO/",
    /// "base/PHOTO001/". "" for a kind that has none.
    static std::string MakeLocalFolderName(int type, std::string strBase, int n);
    /// Makes the first folder for a kind that can be made, or is there, and appends it to the path. Gives up
    /// after ten.
    static bool MakeLocalOutFolder(int type, std::string& strPath);
    /// Finds a name for a copy that is free now: "path/PHOTO/name.jpg", then "name_001.jpg" up to
    /// "name_099.jpg". Makes the folder. A name without an extension is given ".jpg".
    static bool MakeOutputFileName(int type, std::string strPath, std::string strName, std::string& strOut);
};

#endif
