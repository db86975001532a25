#ifndef QRA_MEDIA_CONTENT_ROWS_ROW_SET_H
#define QRA_MEDIA_CONTENT_ROWS_ROW_SET_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/media-content/host/condition/condition_sql.h"
#include "platform/media-content/host/database/late_id.h"
#include "platform/media-content/host/rows/value_table.h"

namespace media_content {

class RowSet;

/**
 * A row of a media list, and what media_info_h, media_pvr_h, media_uhd_h and the per-kind handles point to.
 * It lives in the memory of its list, and a reference to it is a reference to the list.
 *
 * What the list has read never changes. The other values come at their first use, for a run of rows in one
 * query, and stay.
 */
struct Row {
    RowSet* set;
    int64_t known_id;                       ///< 0 where it is a late one; to be read with RowSet::id()
    const std::string* folder_path;         ///< with a slash at its end; the set's
    std::atomic<Row*> next;                 ///< in the order of the list
    std::atomic<const ValueBlock*> values;  ///< owned; null until they are asked for
    uint32_t name_length;
    uint8_t kind;  ///< media_content_type_e
    bool is_360;

    std::string_view name() const { return {reinterpret_cast<const char*>(this + 1), name_length}; }
    std::string path() const { return *folder_path + std::string(name()); }
};

/// A value that was set on a row and waits to be written.
struct Assignment {
    const char* table;
    const char* column;
    Sql::Value value;
    const char* key_column = nullptr;  ///< the column of the value's sort key, where there is one
    int user_set = 0;                  ///< a UserSet bit; 0 for columns that no scan writes
};

/**
 * The rows of one list. Counted references: the list that is being filled holds one, and each handle another
 * one.
 *
 * One thread adds rows. Any thread may read rows that it has got, add and drop references.
 */
class RowSet {
public:
    /// With one reference, the caller's.
    explicit RowSet(const ValueTable& values) : value_table_(values) {}
    /// The same, for one row whose id is not known yet.
    RowSet(const ValueTable& values, LateId id) : value_table_(values), late_id_(std::move(id)) {}
    RowSet(const RowSet&) = delete;
    RowSet& operator=(const RowSet&) = delete;

    void add_reference() { references_.fetch_add(1, std::memory_order_relaxed); }
    void drop_reference();
    /// Whether the caller's reference is the only one.
    bool is_unshared() const { return references_.load(std::memory_order_acquire) == 1; }

    Row& add_row(int64_t id, uint8_t kind, bool is_360, const std::string* folder_path,
                 std::string_view name);
    /// Forgets all rows. Only for a set that is not shared.
    void clear();

    /// The path of a folder as rows share it; null if it was not added yet.
    const std::string* folder_path(int64_t folder) const;
    const std::string* add_folder_path(int64_t folder, std::string path);

    /// The id of a row of this set. Waits for one that is late; throws MediaError if its row was not written.
    int64_t id(const Row& row) const { return late_id_.valid() ? late_id_.get() : row.known_id; }

    /// The values of a row of this set, read from the database now if need be. They stay valid as long as the
    /// set. Throws MediaError.
    const ValueBlock& values(Row& row);

    /// Sets a value, in place of one that was set before and not written yet.
    void assign(Row& row, Assignment assignment);
    /// Writes what was assigned to the row. Throws MediaError; then it stays assigned.
    void write_assignments(Row& row);

private:
    ~RowSet();

    void* allocate(size_t size);
    void read_run(Row& first);
    static std::vector<Row*> run_from(Row& first);
    void read_values(const std::vector<Row*>& run);
    void replace_values(Row& row);
    std::vector<Assignment> assignments_of(const Row& row);

    const ValueTable& value_table_;
    const LateId late_id_;
    std::atomic<int64_t> references_{1};

    // Used by the thread that adds rows.
    std::vector<std::unique_ptr<char[]>> chunks_;
    size_t chunk_size_ = 0;
    size_t chunk_used_ = 0;
    Row* first_ = nullptr;
    Row* last_ = nullptr;
    std::unordered_map<int64_t, std::string> folder_paths_;

    std::mutex mutex_;
    std::vector<std::unique_ptr<const ValueBlock>>
        replaced_;  // guarded by mutex_; others may still read them
    std::vector<std::pair<const Row*, Assignment>> assignments_;  // guarded by mutex_
};

}  // namespace media_content

#endif
