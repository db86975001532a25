#include "engine/src/scans/folder_thumb.h"

#include <algorithm>
#include <climits>

#include "common/util/json_value.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"

namespace engine {

std::string failed_folder_thumb_text() {
    CJsonValue json;
    json.Set("qra_folder_thumbnail_error_code", 1);
    return json.ToString();
}

std::string folder_thumb_text(const std::string& path, const std::string& content_type, unsigned count) {
    CQRAMCFWrapper database;
    if (!database.ConnectMCF()) {
        return failed_folder_thumb_text();
    }
    _SMCFParam question;
    question.strRootPath = CQRAUtil::RemoveForwardSlashInPath(path);
    question.strContentType = content_type;
    std::string text;
    if (!database.InitParam(&question) ||
        !database.GetScannedFolderThumbPath(static_cast<int>(std::min<unsigned>(count, INT_MAX)), text)) {
        text = failed_folder_thumb_text();
    }
    database.DisconnectMCF();
    return text;
}

}  // namespace engine
