#ifndef QRA_APPS_QRA_TERMINAL_H
#define QRA_APPS_QRA_TERMINAL_H

/// Cells of a line on the terminal behind a descriptor; without a terminal $COLUMNS, else 80.
int terminal_width(int descriptor);

/// Colours may be sent to the descriptor: it is a terminal, TERM is not "dumb", and NO_COLOR is not set.
bool wants_colour(int descriptor);

/// The user's locale says that its texts are UTF-8.
bool locale_is_utf8();

#endif
