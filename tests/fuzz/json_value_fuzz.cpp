// A client's extension text, and any other JSON text: whatever it is, what comes out again is JSON that means
// the same.
#include "common/util/json_value.h"

#include <cstdint>
#include <cstdlib>
#include <string>

#include "common/util/qra_extensionlist.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    const std::string written = CJsonValue(text).ToString();
    if (!written.empty() && CJsonValue(written).ToString() != written) {
        std::abort();
    }

    CQRAExtensionList list;
    list.ClearExtension();
    if (list.GetExtensionFromApp(text) == text.empty()) {
        std::abort();
    }
    return 0;
}
