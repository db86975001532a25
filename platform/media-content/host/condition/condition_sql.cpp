#include "platform/media-content/host/condition/condition_sql.h"

#include <charconv>
#include <optional>
#include <set>
#include <utility>

#include "platform/media-content/host/storage/storage.h"
#include "platform/media-content/host/text/sort_key.h"

namespace media_content {

namespace {

constexpr const char* kNever = "0";

std::string as_text(const Condition& condition) {
    const auto* number = std::get_if<int64_t>(&condition.value);
    return number != nullptr ? std::to_string(*number) : std::get<std::string>(condition.value);
}

/// The number that a literal is; nothing for a text that no number is written as.
std::optional<int64_t> as_number(const Condition& condition) {
    if (const auto* number = std::get_if<int64_t>(&condition.value)) {
        return *number;
    }
    const std::string& text = std::get<std::string>(condition.value);
    int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return std::to_string(number) == text ? std::optional<int64_t>(number) : std::nullopt;
}

/// The extension that a pattern such as '%.jpg' asks for; nothing for all other patterns and columns.
std::optional<std::string> asked_extension(const Condition& condition) {
    const bool has_extension =
        condition.op == Condition::Op::kLike &&
        (condition.column->type == ColumnType::kFileName || condition.column->type == ColumnType::kMediaPath);
    if (!has_extension) {
        return std::nullopt;
    }
    const std::string& pattern = std::get<std::string>(condition.value);
    const bool simple =
        pattern.compare(0, 2, "%.") == 0 && pattern.find_first_of("%_./", 2) == std::string::npos;
    return simple ? std::optional<std::string>(fold(pattern.substr(2))) : std::nullopt;
}

/// The part of a pattern such as '%part%'.
std::optional<std::string> asked_part(const std::string& pattern) {
    const size_t size = pattern.size();
    const bool simple = size >= 2 && pattern.front() == '%' && pattern.back() == '%' &&
                        pattern.substr(1, size - 2).find_first_of("%_") == std::string::npos;
    return simple ? std::optional<std::string>(fold(pattern.substr(1, size - 2))) : std::nullopt;
}

class Builder {
public:
    Builder(Sql& sql, RowKind kind) : sql_(sql), kind_(kind) {}

    void append(const Condition& condition) {
        switch (condition.op) {
            case Condition::Op::kConstant:
                sql_.add(condition.constant ? "1" : kNever);
                break;
            case Condition::Op::kEquals:
                append_equals(condition);
                break;
            case Condition::Op::kLike:
                append_like(condition);
                break;
            case Condition::Op::kAnd:
                append_and(condition);
                break;
            case Condition::Op::kOr:
                append_or(condition);
                break;
        }
    }

private:
    void append_and(const Condition& condition) {
        std::vector<const Condition*> all;
        for (const Condition& child : condition.children) {
            all.push_back(&child);
        }
        sql_.add("(");
        append_chain(all.data(), all.size(), " AND ");
        sql_.add(")");
    }

    /// The database takes a chain for a tree as deep as the chain is long, so a long one is cut in two.
    void append_chain(const Condition* const* first, size_t count, const char* glue) {
        constexpr size_t kLongestFlat = 128;
        if (count > kLongestFlat) {
            sql_.add("(");
            append_chain(first, count / 2, glue);
            sql_.add(")").add(glue).add("(");
            append_chain(first + count / 2, count - count / 2, glue);
            sql_.add(")");
            return;
        }
        for (size_t i = 0; i < count; ++i) {
            sql_.add(i > 0 ? glue : "");
            append(*first[i]);
        }
    }

    /// All tests of what the file name ends with become one set; what can never be is left out.
    void append_or(const Condition& condition) {
        std::set<std::string> extensions;
        std::vector<const Condition*> others;
        for (const Condition& child : condition.children) {
            if (std::optional<std::string> extension = asked_extension(child)) {
                extensions.insert(std::move(*extension));
            } else if (child.op != Condition::Op::kConstant || child.constant) {
                others.push_back(&child);
            }
        }
        sql_.add("(");
        append_extensions(extensions);
        if (!others.empty()) {
            sql_.add(" OR ");
            append_chain(others.data(), others.size(), " OR ");
        }
        sql_.add(")");
    }

    void append_extensions(const std::set<std::string>& extensions) {
        static const Column& name = *find_column("MEDIA_DISPLAY_NAME");
        if (extensions.empty() || value_of(name, kind_).empty()) {
            sql_.add(kNever);
            return;
        }
        sql_.add("m.extension IN (");
        const char* comma = "";
        for (const std::string& extension : extensions) {
            sql_.add(std::string(comma) + "?", extension);
            comma = ",";
        }
        sql_.add(")");
    }

    void append_like(const Condition& condition) {
        if (std::optional<std::string> extension = asked_extension(condition)) {
            append_extensions({*extension});
            return;
        }
        const std::string value = value_of(*condition.column, kind_);
        const std::string& pattern = std::get<std::string>(condition.value);
        if (value.empty()) {
            sql_.add(kNever);
        } else if (std::optional<std::string> part = asked_part(pattern)) {
            sql_.add("qra_contains(" + value + ", ?)", std::move(*part));
        } else {
            sql_.add("qra_like(" + value + ", ?)", fold(pattern));
        }
    }

    void append_equals(const Condition& condition) {
        const Column& column = *condition.column;
        const std::string value = value_of(column, kind_);
        if (value.empty()) {
            sql_.add(kNever);
            return;
        }
        switch (column.type) {
            case ColumnType::kNumber:
                append_number(value, as_number(condition));
                break;
            case ColumnType::kText:
            case ColumnType::kFileName:
                sql_.add(key_of(column, kind_) + " = ?", Sql::Blob{sort_key(as_text(condition))});
                break;
            case ColumnType::kMediaPath:
            case ColumnType::kExactText:
                sql_.add(value + " = ?", as_text(condition));
                break;
            case ColumnType::kFolderPath:
                append_folder_path(value, as_text(condition));
                break;
            case ColumnType::kStoragePath:
                append_storage_path(value, as_text(condition));
                break;
        }
    }

    void append_number(const std::string& value, std::optional<int64_t> number) {
        number ? sql_.add(value + " = ?", *number) : sql_.add(kNever);
    }

    /// Folders are found through the index of their paths, which are stored without the drive's.
    void append_folder_path(const std::string& value, const std::string& path) {
        const std::optional<DrivePath> place = split_drive_path(path);
        if (kind_ != RowKind::kFolder) {
            sql_.add(value + " = ?", path);
        } else if (!place) {
            sql_.add(kNever);
        } else {
            sql_.add("(f.path = ?", place->relative).add(" AND s.number = ?)", place->number);
        }
    }

    void append_storage_path(const std::string& value, const std::string& path) {
        const std::optional<DrivePath> place = split_drive_path(path);
        if (!place || !place->relative.empty()) {
            sql_.add(kNever);
        } else if (kind_ == RowKind::kStorage || kind_ == RowKind::kFolder) {
            sql_.add("s.number = ?", place->number);
        } else {
            sql_.add(value + " = ?", path);
        }
    }

    Sql& sql_;
    RowKind kind_;
};

}  // namespace

Sql& Sql::add(const std::string& more) {
    text += more;
    return *this;
}

Sql& Sql::add(const std::string& more, Value value) {
    text += more;
    values.push_back(std::move(value));
    return *this;
}

void bind_values(Query& query, const std::vector<Sql::Value>& values) {
    for (const Sql::Value& value : values) {
        if (const auto* number = std::get_if<int64_t>(&value)) {
            query.bind(*number);
        } else if (const auto* text = std::get_if<std::string>(&value)) {
            query.bind(*text);
        } else {
            query.bind_blob(std::get<Sql::Blob>(value).bytes);
        }
    }
}

void append_condition(Sql& sql, const Condition& condition, RowKind kind) {
    Builder(sql, kind).append(condition);
}

}  // namespace media_content
