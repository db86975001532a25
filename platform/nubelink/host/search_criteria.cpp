#include "platform/nubelink/host/search_criteria.h"

#include <string_view>

namespace nbl {

namespace {

struct TypeClass {
    int type;
    std::string_view upnp_class;
};
constexpr TypeClass kTypeClasses[] = {
    {NBL_ITEM_TYPE_IMAGE, "object.item.imageItem"},
    {NBL_ITEM_TYPE_MUSIC, "object.item.audioItem"},
    {NBL_ITEM_TYPE_VIDEO, "object.item.videoItem"},
};

std::string quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + '"';
}

std::string class_condition(std::string_view upnp_class) {
    return "upnp:class derivedfrom " + quoted(upnp_class);
}

}  // namespace

std::string search_text(const nbl_searchcriteria_s& criteria) {
    std::string classes;
    for (const TypeClass& row : kTypeClasses) {
        if ((criteria.types & row.type) != 0) {
            classes += (classes.empty() ? "" : " or ") + class_condition(row.upnp_class);
        }
    }
    const std::string of_types = classes.empty() ? class_condition("object.item") : '(' + classes + ')';
    return criteria.keyword.empty() ? of_types
                                    : of_types + " and dc:title contains " + quoted(criteria.keyword);
}

}  // namespace nbl
