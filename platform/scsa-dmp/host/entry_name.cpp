#include "platform/scsa-dmp/host/entry_name.h"

#include <algorithm>

namespace scsa_host {
namespace {

struct Extension {
    std::string_view name;
    EntryKind kind;
};

constexpr Extension kExtensions[] = {
    {"uvu", EntryKind::kSff},      {"uva", EntryKind::kSff},      {"uvt", EntryKind::kSff},
    {"scsa", EntryKind::kSff},     {"xml", EntryKind::kXml},      {"jpg", EntryKind::kPicture},
    {"jpeg", EntryKind::kPicture}, {"png", EntryKind::kPicture},  {"gif", EntryKind::kPicture},
    {"bmp", EntryKind::kPicture},  {"webp", EntryKind::kPicture},
};

std::string lower(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

}  // namespace

EntryKind kind_of(std::string_view name) {
    const size_t slash = name.rfind('/');
    const std::string file = lower(slash == std::string_view::npos ? name : name.substr(slash + 1));
    const size_t dot = file.rfind('.');
    if (dot == std::string::npos) {
        return EntryKind::kOther;
    }
    const auto* known =
        std::find_if(std::begin(kExtensions), std::end(kExtensions), [&](const Extension& extension) {
            return file.compare(dot + 1, std::string::npos, extension.name) == 0;
        });
    if (known == std::end(kExtensions)) {
        return EntryKind::kOther;
    }
    const bool poster = known->kind == EntryKind::kPicture && file.find("poster") < dot;
    return poster ? EntryKind::kPoster : known->kind;
}

std::string uri_of(std::string_view name) {
    std::string uri;
    for (const char c : name) {
        if (c == ':') {
            uri += "%3A";
        } else {
            uri += c;
        }
    }
    return uri;
}

}  // namespace scsa_host
