#include "libqra-agent/source/scsa/qra_dmp_xml_check.h"

#include <strings.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace {

constexpr size_t SHORT_TEXT = 2 << 10;
constexpr size_t LONGEST_TAG = 32 << 10;
constexpr size_t MOST_ATTRIBUTES = 256;
constexpr size_t MOST_NAMESPACES = 1024;
constexpr size_t MOST_LOOKUPS = 64 << 20;

constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";
constexpr std::string_view DECLARATION = "<?xml";
constexpr std::string_view DECLARATION_END = "?>";

/// What a declaration may say beside the encoding.
constexpr std::string_view DECLARED_VALUES[] = {"1.0", "1.1", "yes", "no"};
/// In these encodings the signs of XML are the bytes that they are in ASCII.
constexpr std::string_view PLAIN_ENCODINGS[] = {
    "utf-8",  "us-ascii", "iso-8859-1", "iso-8859-15", "windows-1252", "shift_jis",
    "euc-jp", "euc-kr",   "gb2312",     "gbk",         "gb18030",      "big5",
};
constexpr std::string_view UTF16_ENCODINGS[] = {"utf-16"};

template <size_t N>
bool IsOneOf(std::string_view value, const std::string_view (&values)[N]) {
    return std::any_of(std::begin(values), std::end(values), [&](std::string_view known) {
        return known.size() == value.size() && strncasecmp(known.data(), value.data(), known.size()) == 0;
    });
}

/// Whether a text declares no other encoding than these, or none. Every quoted value counts, so that it does
/// not matter which of them libxml2 takes for the encoding.
template <size_t N>
bool DeclaresOneOf(std::string_view text, const std::string_view (&encodings)[N]) {
    if (text.substr(0, DECLARATION.size()) != DECLARATION ||
        text.find_first_of(" \t\r\n", DECLARATION.size()) != DECLARATION.size()) {
        return true;
    }
    std::string_view declaration = text.substr(0, text.find(DECLARATION_END));
    bool bPlain = declaration.size() < text.size();
    while (bPlain) {
        const size_t nBegin = declaration.find_first_of("\"'");
        if (nBegin == std::string_view::npos) {
            break;
        }
        const size_t nEnd = declaration.find(declaration[nBegin], nBegin + 1);
        const std::string_view value = declaration.substr(nBegin + 1, nEnd - nBegin - 1);
        bPlain =
            nEnd != std::string_view::npos && (IsOneOf(value, DECLARED_VALUES) || IsOneOf(value, encodings));
        declaration.remove_prefix(std::min(nEnd, declaration.size() - 1) + 1);
    }
    return bPlain;
}

/// Whether the signs of XML are the bytes that they are in ASCII. libxml2 tells other encodings by the first
/// four bytes, which begin no document in ASCII, or by the declaration.
bool IsEncodingPlain(std::string_view text) {
    if (text.substr(0, UTF8_MARK.size()) == UTF8_MARK) {
        text.remove_prefix(UTF8_MARK.size());
    }
    const std::string_view begin = text.substr(0, 4);
    return std::all_of(begin.begin(), begin.end(), [](char c) { return c > '\0'; }) &&
           DeclaresOneOf(text, PLAIN_ENCODINGS);
}

/// How the first two signs of a text in UTF-16 look: a mark, or "<?".
constexpr std::string_view UTF16_BEGINS[] = {{"\xFF\xFE", 2}, {"\xFE\xFF", 2}, {"<\0?\0", 4}, {"\0<\0?", 4}};

bool IsUtf16(std::string_view text) {
    return std::any_of(std::begin(UTF16_BEGINS), std::end(UTF16_BEGINS),
                       [&](std::string_view begin) { return text.substr(0, begin.size()) == begin; });
}

/// A text in UTF-16 with one byte for each sign: those of ASCII as they are, and "x" for any other. The mark
/// goes.
std::string Narrow(std::string_view text) {
    const bool bLittleEnd = text.front() == UTF16_BEGINS[0].front() || text.front() == '<';
    std::string strNarrow;
    for (size_t nAt = text.front() < '\0' ? 2 : 0; nAt + 1 < text.size(); nAt += 2) {
        const char cLow = text[bLittleEnd ? nAt : nAt + 1];
        const char cHigh = text[bLittleEnd ? nAt + 1 : nAt];
        strNarrow += cHigh == '\0' && cLow >= '\0' ? cLow : 'x';
    }
    return strNarrow;
}

/// A document type may name a file, which is not read, but declare nothing itself: it could add attributes to
/// every element. Its own part stands in "[" and holds another "<".
bool DeclaresNothing(std::string_view text) {
    const size_t nType = text.find("<!DOCTYPE");
    return nType == std::string_view::npos ||
           text.substr(nType, text.find('<', nType + 1) - nType).find('[') == std::string_view::npos;
}

/// Whether the tag that begins in front of `text` ends soon and has few attributes, if it is one. Its names
/// are counted.
bool IsTagSmall(std::string_view text, size_t& nNames) {
    if (!text.empty() && (text.front() == '!' || text.front() == '?')) {
        return true;
    }
    const std::string_view tag = text.substr(0, LONGEST_TAG);
    size_t nAttributes = 0;
    char cQuote = '\0';
    for (const char c : tag) {
        if (cQuote != '\0') {
            cQuote = c == cQuote ? '\0' : cQuote;
        } else if (c == '"' || c == '\'') {
            cQuote = c;
        } else if (c == '>') {
            nNames += 1 + nAttributes;
            return true;
        } else if (c == '=' && ++nAttributes > MOST_ATTRIBUTES) {
            return false;
        }
    }
    nNames += 1 + nAttributes;
    return tag.size() == text.size();
}

/// A tag has no "<" in it, not even in its attributes: what lies between two of them is seen alone.
bool AreTagsSmall(std::string_view text, size_t& nNames) {
    for (size_t nAt = text.find('<'); nAt != std::string_view::npos;) {
        const size_t nNext = text.find('<', nAt + 1);
        if (!IsTagSmall(text.substr(nAt + 1, nNext - nAt - 1), nNames)) {
            return false;
        }
        nAt = nNext;
    }
    return true;
}

size_t CountNamespaces(std::string_view text) {
    constexpr std::string_view XMLNS = "xmlns";
    size_t nCount = 0;
    for (size_t nAt = text.find(XMLNS); nAt != std::string_view::npos; nAt = text.find(XMLNS, nAt + 1)) {
        ++nCount;
    }
    return nCount;
}

/// The same for a text in which the signs of XML are the bytes that they are in ASCII. Each name is looked
/// for in all namespaces around it.
bool IsPlainTextReadable(std::string_view text) {
    size_t nNames = 0;
    if (!DeclaresNothing(text) || !AreTagsSmall(text, nNames)) {
        return false;
    }
    const size_t nNamespaces = CountNamespaces(text);
    return nNamespaces <= MOST_NAMESPACES && nNames * nNamespaces <= MOST_LOOKUPS;
}

}  // namespace

bool IsReadableInTime(std::string_view text) {
    if (text.size() <= SHORT_TEXT) {
        return true;
    }
    if (IsUtf16(text)) {
        const std::string strNarrow = Narrow(text);
        return DeclaresOneOf(strNarrow, UTF16_ENCODINGS) && IsPlainTextReadable(strNarrow);
    }
    return IsEncodingPlain(text) && IsPlainTextReadable(text);
}
