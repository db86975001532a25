#ifndef QRA_MEDIA_CONTENT_CONDITION_CONDITION_H
#define QRA_MEDIA_CONTENT_CONDITION_CONDITION_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/media-content/host/condition/columns.h"

namespace media_content {

/// A condition as a tree. Chains of AND and of OR are one node with many children.
struct Condition {
    enum class Op { kConstant, kEquals, kLike, kAnd, kOr };

    Op op = Op::kConstant;
    bool constant = true;                      ///< kConstant
    const Column* column = nullptr;            ///< kEquals, kLike
    std::variant<int64_t, std::string> value;  ///< kEquals; kLike has a pattern
    std::vector<Condition> children;           ///< kAnd, kOr
};

/// Why a text is no condition.
class ConditionError : public std::runtime_error {
public:
    ConditionError(const char* what, size_t at) : std::runtime_error(what), at_(at) {}
    size_t at() const { return at_; }  ///< offset of the byte where it was noticed

private:
    size_t at_;
};

/// Longer and deeper texts than any client can need are refused.
constexpr size_t kLongestCondition = 128 * 1024;
constexpr size_t kLongestLiteral = 8 * 1024;
constexpr int kDeepestCondition = 16;
constexpr size_t kMostComparisons = 4096;

/// Reads a condition; the language is told in media_filter.h. Any bytes may be given. Throws ConditionError.
Condition parse_condition(std::string_view text);

/// The text as one log line: what is no visible ASCII stands as "\xNN", and a long text is cut.
std::string printable(std::string_view text);

}  // namespace media_content

#endif
