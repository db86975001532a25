#ifndef QRA_MEDIA_CONTENT_CONDITION_COLUMNS_H
#define QRA_MEDIA_CONTENT_CONDITION_COLUMNS_H

#include <optional>
#include <string>
#include <string_view>

namespace media_content {

/// What the rows of a query are.
enum class RowKind { kStorage, kFolder, kMedia, kRecording, kUhd };

/// The table that has a column: storage s, folder f, media m, pvr p, uhd u.
enum class Owner { kStorage, kFolder, kMedia, kPvr, kUhd };

enum class ColumnType {
    kNumber,      ///< also ids
    kText,        ///< compares by its sort key: without regard to case
    kFileName,    ///< the same, and a test of what it ends with may use the stored extension
    kMediaPath,   ///< compares byte by byte, and ends as the file name does
    kExactText,   ///< compares byte by byte
    kFolderPath,  ///< names a drive and a path on it
    kStoragePath  ///< names a drive
};

/// A column as conditions and orders name it.
struct Column {
    std::string_view name;
    ColumnType type;
    Owner owner;
    const char* value;                  ///< SQL over the owner's letter
    const char* key = nullptr;          ///< SQL of the stored sort key, where there is one
    const char* order = nullptr;        ///< what is ordered by, where it is neither the key nor the value ...
    Owner order_owner = Owner::kMedia;  ///< ... and whose that is
};

/// Null for a name that there is not. Names may be of either case.
const Column* find_column(std::string_view name);

/// An expression over the letters of a query's tables. Empty where rows of that kind have no such value.
std::string value_of(const Column& column, RowKind kind);
/// The sort key of a text column.
std::string key_of(const Column& column, RowKind kind);
std::string order_of(const Column& column, RowKind kind);

}  // namespace media_content

#endif
