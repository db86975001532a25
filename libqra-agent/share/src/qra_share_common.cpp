#include "libqra-agent/share/src/qra_share_common.h"

#include <qra/qra_types.h>

#include <array>
#include <cstdio>

#include "common/util/qra_dir.h"
#include "common/util/qra_file64.h"
#include "common/util/qra_log.h"

namespace {

constexpr char kSeparators[] = "/\\";
constexpr wchar_t kWideSeparators[] = L"/\\";
constexpr int kFolderCount = 10;
constexpr int kNumberedNames = 99;

struct KindFolder {
    int nType;
    const char* szFolder;
};

constexpr KindFolder kKindFolders[] = {
    {QRA_MEDIA_TYPE_IMAGE, "/PHOTO"}, {QRA_MEDIA_TYPE_IMAGE_EXT, "/PHOTO"},
    {QRA_MEDIA_TYPE_VIDEO, "/VIDEO"}, {QRA_MEDIA_TYPE_VIDEO_EXT, "/VIDEO"},
    {QRA_MEDIA_TYPE_MUSIC, "/MUSIC"}, {QRA_MEDIA_TYPE_PVR, "/CONTENTS"},
};

template <class String>
String last_component(const String& path, const typename String::value_type* separators) {
    const size_t end = path.find_last_of(separators);
    return end == String::npos ? path : path.substr(end + 1);
}

template <class String>
String extension_of(const String& name) {
    const size_t dot = name.rfind('.');
    return dot == String::npos ? String() : name.substr(dot + 1);
}

std::string three_digits(int n) {
    std::array<char, 16> text;
    snprintf(text.data(), text.size(), "%03d", n);
    return text.data();
}

}  // namespace

std::string QRAShareCommon::ExtractExtension(const std::string& strPath) {
    return extension_of(last_component(strPath, kSeparators));
}

std::wstring QRAShareCommon::ExtractExtension(const std::wstring& strPath) {
    return extension_of(last_component(strPath, kWideSeparators));
}

std::string QRAShareCommon::ExtractFullFileName(std::string strPath) {
    return last_component(strPath, kSeparators);
}

std::string QRAShareCommon::ExtractFileNameNoExt(std::string strPath) {
    const std::string strName = ExtractFullFileName(std::move(strPath));
    return strName.substr(0, strName.rfind('.'));
}

std::string QRAShareCommon::ExtractFilePath(std::string strPath) {
    const size_t end = strPath.find_last_of(kSeparators);
    return end == std::string::npos ? std::string() : strPath.substr(0, end);
}

std::string QRAShareCommon::ExtractFullPathandNameNoExt(std::string strPath) {
    return strPath.substr(0, strPath.rfind('.'));
}

bool QRAShareCommon::MakeHDDFolder(std::string& strPath) {
    if (strPath.empty() || strPath.back() != '/') {
        strPath += '/';
    }
    strPath += "MP";
    return CQRADir::Create(strPath.c_str());
}

std::string QRAShareCommon::MakeLocalFolderName(int type, std::string strBase, int n) {
    for (const KindFolder& kind : kKindFolders) {
        if (kind.nType == type) {
            return strBase + kind.szFolder + (n != 0 ? three_digits(n) : "") + "/";
        }
    }
    return "";
}

bool QRAShareCommon::MakeLocalOutFolder(int type, std::string& strPath) {
    for (int n = 0; n < kFolderCount; ++n) {
        const std::string strFolder = MakeLocalFolderName(type, strPath, n);
        // Another job may make it in between, and have it refused to this one.
        if (CQRADir::DirExists(strFolder.c_str()) || CQRADir::Create(strFolder.c_str()) ||
            CQRADir::DirExists(strFolder.c_str())) {
            strPath = strFolder;
            return true;
        }
        QRA_LOG_WARNING(QRA_TAG_SEND, "Create dir [%s] faild.", strFolder.c_str());
    }
    return false;
}

bool QRAShareCommon::MakeOutputFileName(int type, std::string strPath, std::string strName,
                                        std::string& strOut) {
    std::string strExtension = ExtractExtension(strName);
    if (strExtension.empty()) {
        strExtension = "jpg";
        strName += ".jpg";
    }
    if (!MakeLocalOutFolder(type, strPath)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "MakeLocalOutFolder faild.");
        return false;
    }
    strOut = strPath + strName;
    if (!CQRAFile64::FileExists(strOut.c_str())) {
        return true;
    }
    const std::string strBase = ExtractFileNameNoExt(strName);
    if (strBase.empty()) {
        return false;
    }
    for (int n = 1; n <= kNumberedNames; ++n) {
        strOut = strPath + strBase + "_" + three_digits(n) + "." + strExtension;
        if (!CQRAFile64::FileExists(strOut.c_str())) {
            return true;
        }
    }
    QRA_LOG_WARNING(QRA_TAG_SEND, "Create dest file[%s] failed.", strOut.c_str());
    return false;
}
