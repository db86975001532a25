#ifndef QRA_APPS_QRA_DIRECTORY_PATH_H
#define QRA_APPS_QRA_DIRECTORY_PATH_H

#include <string>

/// The path without links and relative parts. @throws CommandError if it is no directory
std::string existing_directory(const std::string& path);

/// The same for a directory whose contents this user may see. @throws CommandError for any other
std::string readable_directory(const std::string& path);

#endif
