#ifndef QRA_APPS_QRA_CONFIRMATION_H
#define QRA_APPS_QRA_CONFIRMATION_H

#include <string>

/// Asks on stderr and reads a line from stdin. @return the answer begins with "y"
/// @throws CommandError if a signal comes first
bool confirmed(const std::string& question);

#endif
