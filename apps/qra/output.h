#ifndef QRA_APPS_QRA_OUTPUT_H
#define QRA_APPS_QRA_OUTPUT_H

#include <string_view>

/// Writes bytes to stdout. @throws CommandError if that fails; without a message if the reader has gone
void print(std::string_view bytes);

/// Writes out what is buffered, with the same failures.
void flush_output();

/// A line on stderr, after the tool's name.
void print_note(std::string_view text);

#endif
