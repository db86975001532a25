#ifndef QRA_APPS_QRA_REQUEST_ERROR_H
#define QRA_APPS_QRA_REQUEST_ERROR_H

#include <qra/qra_types.h>

#include <string>

/// Tells people of a code of the library; QRA_ERROR_NONE is no error.
/// @param what  what failed, the beginning of the message
/// @throws CommandError ServiceMissing when the engine does not answer, else RequestFailed
void check(const std::string& what, qra_error_code_e code);

#endif
