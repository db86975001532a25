#ifndef QRA_MEDIA_CONTENT_DATABASE_SCHEMA_H
#define QRA_MEDIA_CONTENT_DATABASE_SCHEMA_H

#include "platform/media-content/host/database/sqlite_connection.h"

namespace media_content {

/// The version that this code reads and writes.
int schema_version();

/**
 * Brings the database to the current version, in one transaction that several processes may race for. An
 * older one is migrated step by step. Throws MediaError: MEDIA_CONTENT_ERROR_NEWER_SCHEMA for one that a
 * newer version made, which is left alone; MEDIA_CONTENT_ERROR_CORRUPT; MEDIA_CONTENT_ERROR_DISK_FULL.
 */
void migrate(SqliteConnection& connection);

}  // namespace media_content

#endif
