#ifndef QRA_MEDIA_CONTENT_DATABASE_SQL_FUNCTIONS_H
#define QRA_MEDIA_CONTENT_DATABASE_SQL_FUNCTIONS_H

#include <sqlite3.h>

namespace media_content {

/**
 * Makes the functions known that conditions are made of. The second argument of the first two is folded
 * already.
 *   - qra_contains(text, part)   whether the folded text has the part in it
 *   - qra_like(text, pattern)    whether the folded text is what the pattern says
 *   - qra_sort_key(text)         the key that names are ordered and compared by
 *   - qra_drive_path(number)     the path of USBDrive<number>
 *   - qra_local_date(time)       "YYYY-MM-DD" of a time in seconds since 1970, in the local time zone
 */
void register_sql_functions(sqlite3* database);

}  // namespace media_content

#endif
