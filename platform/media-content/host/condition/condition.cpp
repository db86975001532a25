#include "platform/media-content/host/condition/condition.h"

#include <strings.h>

#include <charconv>
#include <cstdio>
#include <utility>

namespace media_content {

namespace {

enum class TokenType { kEnd, kOpen, kClose, kEquals, kWord, kNumber, kText };

struct Token {
    TokenType type = TokenType::kEnd;
    size_t at = 0;
    std::string_view word;  ///< kWord
    int64_t number = 0;     ///< kNumber
    std::string text;       ///< kText, with its quotes resolved

    bool is(const char* keyword) const {
        return type == TokenType::kWord && word.size() == std::string_view(keyword).size() &&
               strncasecmp(word.data(), keyword, word.size()) == 0;
    }
};

bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}

    Token next() {
        while (at_ < text_.size() &&
               (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\n' || text_[at_] == '\r')) {
            ++at_;
        }
        Token token;
        token.at = at_;
        if (at_ == text_.size()) {
            return token;
        }
        const char c = text_[at_];
        if (c == '\'') {
            read_text(token);
        } else if (is_letter(c)) {
            read_word(token);
        } else if (is_digit(c) || c == '-') {
            read_number(token);
        } else {
            read_sign(token);
        }
        return token;
    }

private:
    void read_sign(Token& token) {
        switch (text_[at_]) {
            case '(':
                token.type = TokenType::kOpen;
                break;
            case ')':
                token.type = TokenType::kClose;
                break;
            case '=':
                token.type = TokenType::kEquals;
                break;
            default:
                throw ConditionError("unexpected character", at_);
        }
        ++at_;
    }

    void read_word(Token& token) {
        token.type = TokenType::kWord;
        while (at_ < text_.size() && (is_letter(text_[at_]) || is_digit(text_[at_]))) {
            ++at_;
        }
        token.word = text_.substr(token.at, at_ - token.at);
    }

    void read_number(Token& token) {
        token.type = TokenType::kNumber;
        const char* end = text_.data() + text_.size();
        const auto [stop, error] = std::from_chars(text_.data() + at_, end, token.number);
        if (error != std::errc()) {
            throw ConditionError("not a number", at_);
        }
        at_ = static_cast<size_t>(stop - text_.data());
    }

    void read_text(Token& token) {
        token.type = TokenType::kText;
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] == '\'') {
                if (at_ + 1 == text_.size() || text_[at_ + 1] != '\'') {
                    ++at_;
                    return;
                }
                ++at_;
            }
            if (token.text.size() == kLongestLiteral) {
                throw ConditionError("text too long", token.at);
            }
            token.text.push_back(text_[at_]);
        }
        throw ConditionError("text without an end", token.at);
    }

    std::string_view text_;
    size_t at_ = 0;
};

/// Recursive descent, with one token read ahead.
class Parser {
public:
    explicit Parser(std::string_view text) : lexer_(text) { advance(); }

    Condition parse() {
        Condition condition = parse_or();
        if (token_.type != TokenType::kEnd) {
            throw ConditionError("AND, OR or the end expected", token_.at);
        }
        return condition;
    }

private:
    void advance() { token_ = lexer_.next(); }

    Condition parse_or() { return parse_chain(Condition::Op::kOr, "OR", &Parser::parse_and); }
    Condition parse_and() { return parse_chain(Condition::Op::kAnd, "AND", &Parser::parse_primary); }

    Condition parse_chain(Condition::Op op, const char* keyword, Condition (Parser::*parse_child)()) {
        Condition first = (this->*parse_child)();
        if (!token_.is(keyword)) {
            return first;
        }
        Condition chain;
        chain.op = op;
        chain.children.push_back(std::move(first));
        while (token_.is(keyword)) {
            advance();
            chain.children.push_back((this->*parse_child)());
        }
        return chain;
    }

    Condition parse_primary() {
        if (token_.type == TokenType::kOpen) {
            return parse_parentheses();
        }
        if (++comparisons_ > kMostComparisons) {
            throw ConditionError("too many comparisons", token_.at);
        }
        return token_.type == TokenType::kNumber ? parse_constant() : parse_comparison();
    }

    Condition parse_parentheses() {
        if (++depth_ > kDeepestCondition) {
            throw ConditionError("too many parentheses", token_.at);
        }
        advance();
        Condition inner = parse_or();
        expect(TokenType::kClose, ") expected");
        --depth_;
        return inner;
    }

    Condition parse_constant() {
        Condition condition;
        const int64_t left = token_.number;
        advance();
        expect(TokenType::kEquals, "= expected");
        condition.constant = left == token_.number;
        expect(TokenType::kNumber, "number expected");
        return condition;
    }

    Condition parse_comparison() {
        Condition condition;
        if (token_.type == TokenType::kWord) {
            condition.column = find_column(token_.word);
        }
        if (condition.column == nullptr) {
            throw ConditionError("column expected", token_.at);
        }
        advance();
        if (token_.is("LIKE")) {
            condition.op = Condition::Op::kLike;
            advance();
            condition.value = token_.text;
            expect(TokenType::kText, "pattern expected");
            return condition;
        }
        condition.op = Condition::Op::kEquals;
        expect(TokenType::kEquals, "= or LIKE expected");
        if (token_.type == TokenType::kNumber) {
            condition.value = token_.number;
            advance();
            return condition;
        }
        condition.value = token_.text;
        expect(TokenType::kText, "text or number expected");
        return condition;
    }

    void expect(TokenType type, const char* message) {
        if (token_.type != type) {
            throw ConditionError(message, token_.at);
        }
        advance();
    }

    Lexer lexer_;
    Token token_;
    int depth_ = 0;
    size_t comparisons_ = 0;
};

}  // namespace

Condition parse_condition(std::string_view text) {
    if (text.size() > kLongestCondition) {
        throw ConditionError("too long", kLongestCondition);
    }
    return Parser(text).parse();
}

std::string printable(std::string_view text) {
    constexpr size_t kMost = 3000;
    std::string line;
    for (const char c : text.substr(0, kMost)) {
        if (c >= ' ' && c <= '~') {
            line.push_back(c);
        } else {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02x",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
            line += escaped;
        }
    }
    return text.size() > kMost ? line + "..." : line;
}

}  // namespace media_content
