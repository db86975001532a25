#include "libqra-agent/share/src/qra_ptp_file.h"

std::unique_ptr<IQRAPTPFile> qra_make_ptp_file() {
    return nullptr;
}
