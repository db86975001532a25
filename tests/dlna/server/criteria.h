#ifndef QRA_TESTS_DLNA_SERVER_CRITERIA_H
#define QRA_TESTS_DLNA_SERVER_CRITERIA_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/dlna/server/content.h"

/// Search criteria of a content directory: "*", or comparisons joined by "and" and "or".
class Criteria {
public:
    /// Nothing if the text is no criteria.
    static std::optional<Criteria> parse(const std::string& text);
    bool fits(const Object& object) const;

private:
    struct Token {
        enum class Type { open, close, conjunction, disjunction, comparison } type;
        std::string property;
        int operation = 0;
        std::string value;
    };
    friend struct CriteriaReader;

    bool fits_any(const Object& object, std::size_t& at) const;
    bool fits_all(const Object& object, std::size_t& at) const;
    bool fits_one(const Object& object, std::size_t& at) const;

    std::vector<Token> tokens_;
};

#endif
