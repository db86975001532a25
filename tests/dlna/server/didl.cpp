#include "tests/dlna/server/didl.h"

#include <glib.h>

#include "tests/dlna/server/description.h"

namespace {

std::string element(const char* name, const std::string& value) {
    return value.empty() ? "" : std::string("<") + name + ">" + escaped(value) + "</" + name + ">";
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + escaped(value) + "\"";
}

std::string clock_of(int seconds) {
    char text[64];
    g_snprintf(text, sizeof text, "%d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
    return text;
}

std::string position_of(const Object& object, const std::string& bookmark) {
    if (bookmark == "position" && object.position >= 0) {
        return element("upnp:lastPlaybackPosition", clock_of(object.position));
    }
    if (bookmark == "action") {
        std::string info = "CREATIONDATE=1234567,FOLDER=" + object.parent;
        if (object.position >= 0) {
            info += ",BM=" + std::to_string(object.position);
        }
        return element("kvr:dcmInfo", info);
    }
    return "";
}

std::string resource_of(const Object& object, const std::string& base) {
    char* id = g_uri_escape_string(object.id.c_str(), nullptr, FALSE);
    std::string text = "<res protocolInfo=\"http-get:*:" + object.mime + ":*\"";
    if (!object.imported) {
        text += attribute("importUri", base + "/import/" + id) + "></res>";
    } else {
        if (object.size >= 0) {
            text += attribute("size", std::to_string(object.size));
        }
        if (object.seconds >= 0) {
            text += attribute("duration", clock_of(object.seconds) + ".000");
        }
        if (!object.resolution.empty()) {
            text += attribute("resolution", object.resolution);
        }
        text += ">" + base + "/res/" + id + "</res>";
    }
    g_free(id);
    return text;
}

}  // namespace

std::string didl_of(const Object& object, const DidlStyle& style) {
    const char* kind = object.is_container() ? "container" : "item";
    std::string text = std::string("<") + kind + attribute("id", object.id) +
                       attribute("parentID", object.parent) + attribute("restricted", "1");
    if (object.is_container()) {
        text += attribute("childCount", std::to_string(object.children.size()));
    }
    text += ">" + element("dc:title", object.title) + element("upnp:class", object.upnp_class) +
            element("dc:creator", object.artist) + element("upnp:artist", object.artist) +
            element("upnp:album", object.album) + element("upnp:genre", object.genre) +
            element("dc:date", object.date);
    if (!object.is_container()) {
        text += position_of(object, style.bookmark) + resource_of(object, style.base);
    }
    return text + "</" + kind + ">";
}
