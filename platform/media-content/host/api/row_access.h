#ifndef QRA_MEDIA_CONTENT_API_ROW_ACCESS_H
#define QRA_MEDIA_CONTENT_API_ROW_ACCESS_H

#include <algorithm>
#include <climits>
#include <ctime>
#include <string>
#include <string_view>

#include "media_content_type.h"
#include "platform/media-content/host/api/guard.h"
#include "platform/media-content/host/rows/row_set.h"

// The steps that all functions on row handles are made of. A handle is the address of its row.

namespace media_content {

template <typename Handle>
Row* row_of(Handle handle) {
    return reinterpret_cast<Row*>(handle);
}

template <typename Handle>
Handle handle_of(Row& row) {
    return reinterpret_cast<Handle>(&row);
}

/// Gives `copy` one more reference to the row of `source`.
template <typename To, typename From>
int share_row(To* copy, From source) {
    if (copy == nullptr || source == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    row_of(source)->set->add_reference();
    *copy = reinterpret_cast<To>(source);
    return MEDIA_CONTENT_ERROR_NONE;
}

template <typename Handle>
int release_row(Handle handle) {
    if (handle == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    row_of(handle)->set->drop_reference();
    return MEDIA_CONTENT_ERROR_NONE;
}

/// Answers what `read` makes of the row.
template <typename Handle, typename Out, typename Read>
int read_row(const char* function, Handle handle, Out* out, Read read) {
    if (handle == nullptr || out == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(function, [&] { *out = read(*row_of(handle)); });
}

inline const ValueBlock& values_of(Row& row) {
    return row.set->values(row);
}

// A value out of the row's values, in the type of its out-argument.

inline void convert(const ValueBlock& values, size_t column, int* out) {
    *out = static_cast<int>(std::clamp<int64_t>(values.number(column), INT_MIN, INT_MAX));
}
inline void convert(const ValueBlock& values, size_t column, bool* out) {
    *out = values.number(column) != 0;
}
inline void convert(const ValueBlock& values, size_t column, unsigned long long* out) {
    *out = static_cast<unsigned long long>(std::max<int64_t>(values.number(column), 0));
}
inline void convert(const ValueBlock& values, size_t column, time_t* out) {
    *out = static_cast<time_t>(values.number(column));
}
inline void convert(const ValueBlock& values, size_t column, double* out) {
    *out = values.real(column);
}
inline void convert(const ValueBlock& values, size_t column, char** out) {
    *out = duplicate(values.text(column));
}

template <typename Handle, typename Value, typename Out>
int read_value(const char* function, Handle handle, Value column, Out* out) {
    if (handle == nullptr || out == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(function, [&] { convert(values_of(*row_of(handle)), static_cast<size_t>(column), out); });
}

template <typename Handle>
int read_id(const char* function, Handle handle, char** id) {
    return read_row(function, handle, id,
                    [](Row& row) { return duplicate(std::to_string(row.set->id(row))); });
}

template <typename Handle>
int read_path(const char* function, Handle handle, char** path) {
    return read_row(function, handle, path, [](Row& row) { return duplicate(row.path()); });
}

template <typename Handle>
int read_name(const char* function, Handle handle, char** name) {
    return read_row(function, handle, name, [](Row& row) { return duplicate(row.name()); });
}

template <typename Handle>
int assign_value(const char* function, Handle handle, Assignment assignment) {
    if (handle == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(function, [&] { row_of(handle)->set->assign(*row_of(handle), std::move(assignment)); });
}

template <typename Handle>
int write_values(const char* function, Handle handle) {
    if (handle == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(function, [&] { row_of(handle)->set->write_assignments(*row_of(handle)); });
}

/// The callback of the C interface behind that of a list.
template <typename Handle>
struct HandleCallback {
    bool (*callback)(Handle, void*);
    void* user_data;

    static bool call(Row& row, void* self) {
        const auto* target = static_cast<const HandleCallback*>(self);
        return target->callback(handle_of<Handle>(row), target->user_data);
    }
};

}  // namespace media_content

#endif
