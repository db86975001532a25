#include "platform/media-content/host/rows/row_set.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/text/sort_key.h"

namespace media_content {

namespace {

// A page of tiles has up to 18; a few more cost little and make the next page's first tile free.
constexpr size_t kRun = 20;

// A set of one row, for a question by id, stays small; long lists take few large pieces.
constexpr size_t kFirstChunk = 512;
constexpr size_t kLargestChunk = 256 * 1024;

void write_assignment(SqliteConnection& connection, int64_t id, const Assignment& assignment) {
    Sql sql;
    sql.add(std::string("UPDATE ") + assignment.table + " SET " + assignment.column + " = ?",
            assignment.value);
    if (assignment.key_column != nullptr) {
        sql.add(std::string(", ") + assignment.key_column + " = ?",
                Sql::Blob{sort_key(std::get<std::string>(assignment.value))});
    }
    if (assignment.user_set != 0) {
        sql.add(", user_set = user_set | ?", int64_t{assignment.user_set});
    }
    sql.add(" WHERE id = ?", id);
    Query update(connection, sql.text);
    bind_values(update, sql.values);
    update.run();
    if (connection.changes() == 0) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, "row " + std::to_string(id) + " is gone");
    }
}

}  // namespace

RowSet::~RowSet() {
    clear();
}

void RowSet::drop_reference() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete this;
    }
}

void* RowSet::allocate(size_t size) {
    size = (size + alignof(Row) - 1) / alignof(Row) * alignof(Row);
    if (chunk_used_ + size > chunk_size_) {
        const size_t wanted = chunks_.empty() ? kFirstChunk : std::min(chunk_size_ * 4, kLargestChunk);
        chunk_size_ = std::max(wanted, size);
        chunks_.push_back(std::unique_ptr<char[]>(new char[chunk_size_]));
        chunk_used_ = 0;
    }
    void* memory = chunks_.back().get() + chunk_used_;
    chunk_used_ += size;
    return memory;
}

Row& RowSet::add_row(int64_t id, uint8_t kind, bool is_360, const std::string* folder_path,
                     std::string_view name) {
    void* memory = allocate(sizeof(Row) + name.size());
    Row* row = new (memory)
        Row{this, id, folder_path, {nullptr}, {nullptr}, static_cast<uint32_t>(name.size()), kind, is_360};
    std::memcpy(static_cast<char*>(memory) + sizeof(Row), name.data(), name.size());
    if (last_ != nullptr) {
        last_->next.store(row, std::memory_order_release);
    } else {
        first_ = row;
    }
    last_ = row;
    return *row;
}

void RowSet::clear() {
    for (Row* row = first_; row != nullptr; row = row->next.load(std::memory_order_relaxed)) {
        delete row->values.load(std::memory_order_relaxed);
    }
    first_ = last_ = nullptr;
    if (chunks_.size() > 1) {
        chunks_.erase(chunks_.begin(), chunks_.end() - 1);
    }
    chunk_used_ = 0;
    const std::lock_guard<std::mutex> lock(mutex_);
    replaced_.clear();
    assignments_.clear();
}

const std::string* RowSet::folder_path(int64_t folder) const {
    const auto known = folder_paths_.find(folder);
    return known != folder_paths_.end() ? &known->second : nullptr;
}

const std::string* RowSet::add_folder_path(int64_t folder, std::string path) {
    return &folder_paths_.insert_or_assign(folder, std::move(path)).first->second;
}

const ValueBlock& RowSet::values(Row& row) {
    const ValueBlock* values = row.values.load(std::memory_order_acquire);
    if (values == nullptr) {
        read_run(row);
        values = row.values.load(std::memory_order_acquire);
    }
    if (values == nullptr) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, "row " + std::to_string(id(row)) + " is gone");
    }
    return *values;
}

void RowSet::read_run(Row& first) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (first.values.load(std::memory_order_relaxed) == nullptr) {
        read_values(run_from(first));
    }
}

std::vector<Row*> RowSet::run_from(Row& first) {
    std::vector<Row*> run;
    Row* row = &first;
    for (size_t seen = 0; row != nullptr && seen < kRun; ++seen) {
        if (row->values.load(std::memory_order_relaxed) == nullptr) {
            run.push_back(row);
        }
        row = row->next.load(std::memory_order_acquire);
    }
    return run;
}

/// To be called with the mutex held. Rows that are gone get nothing.
void RowSet::read_values(const std::vector<Row*>& run) {
    const auto database = connected_database();
    // A large copy reads its rows while the copies' rows are on their way, and must not wait for them.
    Database::ReadLease reader(
        *database, late_id_.valid() ? Database::LateRows::kAwaited : Database::LateRows::kIgnored);
    // Two statements serve all: one for a run and one for a single row.
    const size_t marks = run.size() == 1 ? 1 : kRun;
    Query query(reader.connection(), select_values(value_table_, marks));
    for (size_t i = 0; i < marks; ++i) {
        query.bind(id(*run[std::min(i, run.size() - 1)]));
    }
    while (query.step()) {
        const int64_t found = query.integer(0);
        const auto row =
            std::find_if(run.begin(), run.end(), [&](const Row* each) { return id(*each) == found; });
        if (row != run.end()) {
            (*row)->values.store(ValueBlock::read(value_table_, query, 1).release(),
                                 std::memory_order_release);
        }
    }
}

void RowSet::assign(Row& row, Assignment assignment) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto earlier = std::find_if(assignments_.begin(), assignments_.end(), [&](const auto& entry) {
        return entry.first == &row && std::strcmp(entry.second.column, assignment.column) == 0;
    });
    if (earlier != assignments_.end()) {
        earlier->second = std::move(assignment);
    } else {
        assignments_.emplace_back(&row, std::move(assignment));
    }
}

std::vector<Assignment> RowSet::assignments_of(const Row& row) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<Assignment> found;
    for (const auto& [owner, assignment] : assignments_) {
        if (owner == &row) {
            found.push_back(assignment);
        }
    }
    return found;
}

void RowSet::write_assignments(Row& row) {
    const std::vector<Assignment> assignments = assignments_of(row);
    if (assignments.empty()) {
        return;
    }
    {
        const auto database = connected_database();
        const int64_t row_id = id(row);
        Database::WriteLease lease(*database);
        for (const Assignment& assignment : assignments) {
            write_assignment(lease.connection(), row_id, assignment);
        }
        lease.commit();
    }
    replace_values(row);
}

/// The written row shows its new values, and nobody who still reads the old ones is disturbed.
void RowSet::replace_values(Row& row) {
    const std::lock_guard<std::mutex> lock(mutex_);
    assignments_.erase(std::remove_if(assignments_.begin(), assignments_.end(),
                                      [&](const auto& entry) { return entry.first == &row; }),
                       assignments_.end());
    replaced_.emplace_back(row.values.exchange(nullptr, std::memory_order_acq_rel));
    read_values({&row});
}

}  // namespace media_content
