#include "libqra-agent/playlist/qra_playlist_location.h"

#include "common/util/qra_util.h"

namespace {

bool StartsWith(const std::string& strText, const std::string& strPrefix) {
    return strText.compare(0, strPrefix.size(), strPrefix) == 0;
}

}  // namespace

bool qra_is_on_usb(const std::string& strPath) {
    const std::string strRoot = CQRAUtil::GetStoragePath("");
    return StartsWith(strPath, strRoot + "/USBDrive") || StartsWith(strPath, strRoot + "/usb");
}
