#ifndef QRA_APPS_QRA_CONFIRMATION_H
#define QRA_APPS_QRA_CONFIRMATION_H

#include <string>

/// Refuses a command that has to ask first where nobody can answer.
/// @throws CommandError if stdin is no terminal
void require_someone_to_ask();

/// Asks on stderr and reads a line from stdin. @return the answer begins with "y"
/// @throws CommandError if a signal comes first
bool confirmed(const std::string& question);

#endif
