#ifndef QRA_SCSA_DMP_ENTRY_NAME_H
#define QRA_SCSA_DMP_ENTRY_NAME_H

#include <string>
#include <string_view>

namespace scsa_host {

/// What an embedded file is, by its name; the first and the third are numbers of the contract.
enum class EntryKind { kSff = 0, kXml = 1, kPoster = 2, kPicture = 3, kOther = 4 };

EntryKind kind_of(std::string_view name);

/// A name with its colons as "%3A".
std::string uri_of(std::string_view name);

}  // namespace scsa_host

#endif
