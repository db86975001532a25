#ifndef QRA_TESTS_UNIT_NUBELINK_DLNA_ITEMS_H
#define QRA_TESTS_UNIT_NUBELINK_DLNA_ITEMS_H

#include <string>
#include <vector>

#include "libqra-agent/source/nubelink/qra_dlna_item.h"
#include "tests/fakes/fake_nubelink.h"

/// An item as a browse gives it.
inline _stDLNAMediaItem make_media(const FakeNubelink::Item& item) {
    _stDLNAMediaItem media;
    media.strContentId = item.id;
    *media.pItem.Receive() = FakeNubelink::make_item(item);
    media.eType = item.type;
    const auto extension = item.texts.find("extension");
    media.strExtension = extension != item.texts.end() ? extension->second : "";
    return media;
}

inline FakeNubelink::Item file(const std::string& id, int type, const std::string& extension) {
    return {id, "title " + id, type, {{"extension", extension}}, {}};
}

inline FakeNubelink::Item picture(const std::string& id) {
    return file(id, NBL_ITEM_TYPE_IMAGE, "jpg");
}

inline FakeNubelink::Item folder(const std::string& id, int children = 1, const std::string& title = "") {
    return {id, title.empty() ? "title " + id : title, NBL_ITEM_TYPE_FOLDER, {}, {{"child_count", children}}};
}

/// Pictures "first" to "first + count - 1".
inline std::vector<FakeNubelink::Item> pictures(int count, int first = 0) {
    std::vector<FakeNubelink::Item> items;
    for (int i = first; i < first + count; ++i) {
        items.push_back(picture(std::to_string(i)));
    }
    return items;
}

#endif
