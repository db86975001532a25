#include "libqra-agent/source/scsa/qra_dmp_xml_check.h"

#include <strings.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr size_t SHORT_TEXT = 32 << 10;
constexpr size_t LONGEST_TAG = SHORT_TEXT;
constexpr int MOST_ATTRIBUTES = 256;
constexpr int MOST_NAMESPACES = 1024;

constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";
constexpr std::string_view DECLARATION = "<?xml";
constexpr std::string_view DECLARATION_END = "?>";

/// What a declaration may say. In these encodings the signs of XML are the bytes that they are in ASCII.
constexpr std::string_view DECLARED_VALUES[] = {
    "1.0",          "1.1",       "yes",    "no",     "utf-8",  "us-ascii", "iso-8859-1", "iso-8859-15",
    "windows-1252", "shift_jis", "euc-jp", "euc-kr", "gb2312", "gbk",      "gb18030",    "big5",
};

bool IsDeclaredValue(std::string_view value) {
    return std::any_of(std::begin(DECLARED_VALUES), std::end(DECLARED_VALUES), [&](std::string_view known) {
        return known.size() == value.size() && strncasecmp(known.data(), value.data(), known.size()) == 0;
    });
}

/// Every quoted value counts, so that it does not matter which of them libxml2 takes for the encoding.
bool IsDeclarationPlain(std::string_view declaration) {
    while (true) {
        const size_t nBegin = declaration.find_first_of("\"'");
        if (nBegin == std::string_view::npos) {
            return true;
        }
        const size_t nEnd = declaration.find(declaration[nBegin], nBegin + 1);
        if (nEnd == std::string_view::npos ||
            !IsDeclaredValue(declaration.substr(nBegin + 1, nEnd - nBegin - 1))) {
            return false;
        }
        declaration.remove_prefix(nEnd + 1);
    }
}

/// Whether the signs of XML are the bytes that they are in ASCII. libxml2 tells other encodings by the first
/// four bytes, which begin no document in ASCII, or by the declaration.
bool IsEncodingPlain(std::string_view text) {
    if (text.substr(0, UTF8_MARK.size()) == UTF8_MARK) {
        text.remove_prefix(UTF8_MARK.size());
    }
    const std::string_view begin = text.substr(0, 4);
    if (std::any_of(begin.begin(), begin.end(), [](char c) { return c <= '\0'; })) {
        return false;
    }
    if (text.substr(0, DECLARATION.size()) != DECLARATION ||
        text.find_first_of(" \t\r\n", DECLARATION.size()) != DECLARATION.size()) {
        return true;
    }
    const size_t nEnd = text.find(DECLARATION_END);
    return nEnd != std::string_view::npos && IsDeclarationPlain(text.substr(0, nEnd));
}

/// Whether the tag that begins in front of `text` ends soon and has few attributes, if it is one.
bool IsTagSmall(std::string_view text) {
    if (!text.empty() && (text.front() == '!' || text.front() == '?')) {
        return true;
    }
    const std::string_view tag = text.substr(0, LONGEST_TAG);
    int nAttributes = 0;
    char cQuote = '\0';
    for (const char c : tag) {
        if (cQuote != '\0') {
            cQuote = c == cQuote ? '\0' : cQuote;
        } else if (c == '"' || c == '\'') {
            cQuote = c;
        } else if (c == '>') {
            return true;
        } else if (c == '=' && ++nAttributes > MOST_ATTRIBUTES) {
            return false;
        }
    }
    return tag.size() == text.size();
}

/// A tag has no "<" in it, not even in its attributes: what lies between two of them is seen alone.
bool AreTagsSmall(std::string_view text) {
    for (size_t nAt = text.find('<'); nAt != std::string_view::npos;) {
        const size_t nNext = text.find('<', nAt + 1);
        if (!IsTagSmall(text.substr(nAt + 1, nNext - nAt - 1))) {
            return false;
        }
        nAt = nNext;
    }
    return true;
}

/// Each name of an element is looked for in all namespaces around it.
bool HasFewNamespaces(std::string_view text) {
    constexpr std::string_view XMLNS = "xmlns";
    int nCount = 0;
    for (size_t nAt = text.find(XMLNS); nAt != std::string_view::npos; nAt = text.find(XMLNS, nAt + 1)) {
        ++nCount;
    }
    return nCount <= MOST_NAMESPACES;
}

}  // namespace

bool IsReadableInTime(std::string_view text) {
    return text.size() <= SHORT_TEXT ||
           (IsEncodingPlain(text) && text.find("<!DOCTYPE") == std::string_view::npos && AreTagsSmall(text) &&
            HasFewNamespaces(text));
}
