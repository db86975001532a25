#include "platform/media-content/host/scanner/scan_rules.h"

#include <strings.h>

#include <algorithm>
#include <iterator>

namespace media_content {
namespace {

// Compared without regard to case, as the systems that make them do.
constexpr std::string_view kUnlisted[] = {
    "$RECYCLE.BIN", "RECYCLER",  "RECYCLED", "System Volume Information",
    "lost+found",   "LOST.DIR",  "#recycle", "@Recycle",
    "@eaDir",       "#snapshot", "__MACOSX", "$WINDOWS.~BT",
    "FOUND.000"};

bool equals_no_case(std::string_view left, std::string_view right) {
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace

bool is_unlisted_name(std::string_view name) {
    return name.empty() || name[0] == '.' ||
           std::any_of(std::begin(kUnlisted), std::end(kUnlisted),
                       [&](std::string_view unlisted) { return equals_no_case(name, unlisted); });
}

}  // namespace media_content
