#include "tests/dlna/server/criteria.h"

#include <libgupnp-av/gupnp-av.h>

#include <algorithm>
#include <cctype>

namespace {

std::string folded(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string property_of(const Object& object, const std::string& name) {
    struct Property {
        const char* name;
        std::string Object::*value;
    };
    static constexpr Property kProperties[] = {
        {"@id", &Object::id},
        {"@parentID", &Object::parent},
        {"dc:title", &Object::title},
        {"dc:creator", &Object::artist},
        {"dc:date", &Object::date},
        {"upnp:artist", &Object::artist},
        {"upnp:album", &Object::album},
        {"upnp:genre", &Object::genre},
        {"upnp:class", &Object::upnp_class},
    };
    for (const Property& property : kProperties) {
        if (name == property.name) {
            return object.*property.value;
        }
    }
    return "";
}

bool compares(const std::string& have, int operation, const std::string& want) {
    const bool contains = folded(have).find(folded(want)) != std::string::npos;
    switch (operation) {
        case GUPNP_SEARCH_CRITERIA_OP_EQ:
            return have == want;
        case GUPNP_SEARCH_CRITERIA_OP_NEQ:
            return have != want;
        case GUPNP_SEARCH_CRITERIA_OP_LESS:
            return have < want;
        case GUPNP_SEARCH_CRITERIA_OP_LEQ:
            return have <= want;
        case GUPNP_SEARCH_CRITERIA_OP_GREATER:
            return have > want;
        case GUPNP_SEARCH_CRITERIA_OP_GEQ:
            return have >= want;
        case GUPNP_SEARCH_CRITERIA_OP_CONTAINS:
            return contains;
        case GUPNP_SEARCH_CRITERIA_OP_DOES_NOT_CONTAIN:
            return !contains;
        case GUPNP_SEARCH_CRITERIA_OP_DERIVED_FROM:
            return have.rfind(want, 0) == 0;
        case GUPNP_SEARCH_CRITERIA_OP_EXISTS:
            return have.empty() == (want == "false");
        default:
            return false;
    }
}

}  // namespace

/// Takes the tokens down as the parser meets them.
struct CriteriaReader {
    using Type = Criteria::Token::Type;

    static void on_open(GUPnPSearchCriteriaParser*, Criteria* self) {
        self->tokens_.push_back({Type::open, "", 0, ""});
    }
    static void on_close(GUPnPSearchCriteriaParser*, Criteria* self) {
        self->tokens_.push_back({Type::close, "", 0, ""});
    }
    static void on_and(GUPnPSearchCriteriaParser*, Criteria* self) {
        self->tokens_.push_back({Type::conjunction, "", 0, ""});
    }
    static void on_or(GUPnPSearchCriteriaParser*, Criteria* self) {
        self->tokens_.push_back({Type::disjunction, "", 0, ""});
    }
    static gboolean on_comparison(GUPnPSearchCriteriaParser*, const char* property,
                                  GUPnPSearchCriteriaOp operation, const char* value, void*, Criteria* self) {
        self->tokens_.push_back({Type::comparison, property, operation, value ? value : ""});
        return TRUE;
    }
};

std::optional<Criteria> Criteria::parse(const std::string& text) {
    Criteria criteria;
    if (text == "*") {
        return criteria;
    }
    GUPnPSearchCriteriaParser* parser = gupnp_search_criteria_parser_new();
    g_signal_connect(parser, "begin-parens", G_CALLBACK(CriteriaReader::on_open), &criteria);
    g_signal_connect(parser, "end-parens", G_CALLBACK(CriteriaReader::on_close), &criteria);
    g_signal_connect(parser, "conjunction", G_CALLBACK(CriteriaReader::on_and), &criteria);
    g_signal_connect(parser, "disjunction", G_CALLBACK(CriteriaReader::on_or), &criteria);
    g_signal_connect(parser, "expression", G_CALLBACK(CriteriaReader::on_comparison), &criteria);
    const bool parsed = gupnp_search_criteria_parser_parse_text(parser, text.c_str(), nullptr);
    g_object_unref(parser);
    return parsed ? std::optional<Criteria>(std::move(criteria)) : std::nullopt;
}

bool Criteria::fits(const Object& object) const {
    std::size_t at = 0;
    return tokens_.empty() || fits_any(object, at);
}

bool Criteria::fits_any(const Object& object, std::size_t& at) const {
    bool any = fits_all(object, at);
    while (at < tokens_.size() && tokens_[at].type == Token::Type::disjunction) {
        ++at;
        any = fits_all(object, at) || any;
    }
    return any;
}

bool Criteria::fits_all(const Object& object, std::size_t& at) const {
    bool all = fits_one(object, at);
    while (at < tokens_.size() && tokens_[at].type == Token::Type::conjunction) {
        ++at;
        all = fits_one(object, at) && all;
    }
    return all;
}

bool Criteria::fits_one(const Object& object, std::size_t& at) const {
    if (at >= tokens_.size()) {
        return false;
    }
    const Token& token = tokens_[at++];
    if (token.type != Token::Type::open) {
        return compares(property_of(object, token.property), token.operation, token.value);
    }
    const bool inner = fits_any(object, at);
    ++at;  // the closing one
    return inner;
}
