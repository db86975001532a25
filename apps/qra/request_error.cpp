#include "apps/qra/request_error.h"

#include "apps/qra/exit_status.h"

namespace {

struct ErrorText {
    qra_error_code_e code;
    const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {QRA_ERROR_INVALID_HANDLE, "the list is no longer there"},
    {QRA_ERROR_INVALID_PARAM, "the request or the page style is refused"},
    {QRA_ERROR_READ_FAILED, "reading failed"},
    {QRA_ERROR_WRITE_FAILED, "that part of the list has not arrived"},
    {QRA_ERROR_ENGINE, "the content engine does not answer"},
    {QRA_ERROR_OUT_OF_MEMORY, "out of memory"},
    {QRA_ERROR_NOT_SUPPORTED, "this build does not serve the source"},
};

std::string text_of(qra_error_code_e code) {
    for (const ErrorText& entry : kErrorTexts) {
        if (entry.code == code) {
            return entry.text;
        }
    }
    return "error " + std::to_string(code);
}

}  // namespace

void check(const std::string& what, qra_error_code_e code) {
    if (code != QRA_ERROR_NONE) {
        throw CommandError(code == QRA_ERROR_ENGINE ? ExitStatus::ServiceMissing : ExitStatus::RequestFailed,
                           what + ": " + text_of(code));
    }
}
