#include "tests/dlna/server/description.h"

#include <fstream>
#include <vector>

namespace {

struct Argument {
    const char* name;
    const char* variable;
    bool out;
};

struct Action {
    const char* name;
    std::vector<Argument> arguments;
};

struct Variable {
    const char* name;
    const char* type;
    bool evented;
};

const Variable kVariables[] = {
    {"SystemUpdateID", "ui4", true},
    {"ContainerUpdateIDs", "string", true},
    {"TransferIDs", "string", true},
    {"SearchCapabilities", "string", false},
    {"SortCapabilities", "string", false},
    {"FeatureList", "string", false},
    {"A_ARG_TYPE_ObjectID", "string", false},
    {"A_ARG_TYPE_Result", "string", false},
    {"A_ARG_TYPE_BrowseFlag", "string", false},
    {"A_ARG_TYPE_Filter", "string", false},
    {"A_ARG_TYPE_SortCriteria", "string", false},
    {"A_ARG_TYPE_SearchCriteria", "string", false},
    {"A_ARG_TYPE_Index", "ui4", false},
    {"A_ARG_TYPE_Count", "ui4", false},
    {"A_ARG_TYPE_UpdateID", "ui4", false},
    {"A_ARG_TYPE_TagValueList", "string", false},
    {"A_ARG_TYPE_PosSec", "ui4", false},
};

std::vector<Argument> page_arguments() {
    return {{"Filter", "A_ARG_TYPE_Filter", false},        {"StartingIndex", "A_ARG_TYPE_Index", false},
            {"RequestedCount", "A_ARG_TYPE_Count", false}, {"SortCriteria", "A_ARG_TYPE_SortCriteria", false},
            {"Result", "A_ARG_TYPE_Result", true},         {"NumberReturned", "A_ARG_TYPE_Count", true},
            {"TotalMatches", "A_ARG_TYPE_Count", true},    {"UpdateID", "A_ARG_TYPE_UpdateID", true}};
}

std::vector<Argument> with_page(std::vector<Argument> first) {
    for (const Argument& argument : page_arguments()) {
        first.push_back(argument);
    }
    return first;
}

std::vector<Action> actions_of(const Identity& identity) {
    std::vector<Action> actions = {
        {"GetSearchCapabilities", {{"SearchCaps", "SearchCapabilities", true}}},
        {"GetSortCapabilities", {{"SortCaps", "SortCapabilities", true}}},
        {"GetSystemUpdateID", {{"Id", "SystemUpdateID", true}}},
        {"Browse", with_page({{"ObjectID", "A_ARG_TYPE_ObjectID", false},
                              {"BrowseFlag", "A_ARG_TYPE_BrowseFlag", false}})},
    };
    if (identity.search) {
        actions.push_back({"Search", with_page({{"ContainerID", "A_ARG_TYPE_ObjectID", false},
                                                {"SearchCriteria", "A_ARG_TYPE_SearchCriteria", false}})});
    }
    if (identity.upload) {
        actions.push_back({"CreateObject",
                           {{"ContainerID", "A_ARG_TYPE_ObjectID", false},
                            {"Elements", "A_ARG_TYPE_Result", false},
                            {"ObjectID", "A_ARG_TYPE_ObjectID", true},
                            {"Result", "A_ARG_TYPE_Result", true}}});
        actions.push_back({"DestroyObject", {{"ObjectID", "A_ARG_TYPE_ObjectID", false}}});
    }
    if (identity.feature_list) {
        actions.push_back({"X_GetFeatureList", {{"FeatureList", "FeatureList", true}}});
    }
    if (identity.bookmark == "action") {
        actions.push_back({"X_SetBookmark",
                           {{"CategoryType", "A_ARG_TYPE_Index", false},
                            {"RID", "A_ARG_TYPE_Index", false},
                            {"ObjectID", "A_ARG_TYPE_ObjectID", false},
                            {"PosSecond", "A_ARG_TYPE_PosSec", false}}});
    }
    if (identity.bookmark == "position") {
        actions.push_back({"UpdateObject",
                           {{"ObjectID", "A_ARG_TYPE_ObjectID", false},
                            {"CurrentTagValue", "A_ARG_TYPE_TagValueList", false},
                            {"NewTagValue", "A_ARG_TYPE_TagValueList", false}}});
    }
    return actions;
}

std::string tag(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
}

constexpr char kScpdStart[] =
    "<?xml version=\"1.0\"?><scpd xmlns=\"urn:schemas-upnp-org:service-1-0\">"
    "<specVersion><major>1</major><minor>0</minor></specVersion>";

std::string directory_scpd(const Identity& identity) {
    std::string actions;
    for (const Action& action : actions_of(identity)) {
        std::string arguments;
        for (const Argument& argument : action.arguments) {
            arguments +=
                tag("argument", tag("name", argument.name) + tag("direction", argument.out ? "out" : "in") +
                                    tag("relatedStateVariable", argument.variable));
        }
        actions += tag("action", tag("name", action.name) + tag("argumentList", arguments));
    }
    std::string variables;
    for (const Variable& variable : kVariables) {
        variables += std::string("<stateVariable sendEvents=\"") + (variable.evented ? "yes" : "no") + "\">" +
                     tag("name", variable.name) + tag("dataType", variable.type) + "</stateVariable>";
    }
    return kScpdStart + tag("actionList", actions) + tag("serviceStateTable", variables) + "</scpd>";
}

std::string connection_scpd() {
    return std::string(kScpdStart) +
           "<actionList><action><name>GetProtocolInfo</name><argumentList>"
           "<argument><name>Source</name><direction>out</direction>"
           "<relatedStateVariable>SourceProtocolInfo</relatedStateVariable></argument>"
           "<argument><name>Sink</name><direction>out</direction>"
           "<relatedStateVariable>SinkProtocolInfo</relatedStateVariable></argument>"
           "</argumentList></action></actionList><serviceStateTable>"
           "<stateVariable sendEvents=\"yes\"><name>SourceProtocolInfo</name><dataType>string</dataType>"
           "</stateVariable><stateVariable sendEvents=\"yes\"><name>SinkProtocolInfo</name>"
           "<dataType>string</dataType></stateVariable></serviceStateTable></scpd>";
}

std::string service(const std::string& name) {
    return tag("service",
               tag("serviceType", "urn:schemas-upnp-org:service:" + name + ":1") +
                   tag("serviceId", "urn:upnp-org:serviceId:" + name) + tag("SCPDURL", "/" + name + ".xml") +
                   tag("controlURL", "/" + name + "/control") + tag("eventSubURL", "/" + name + "/event"));
}

void write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

void write_description(const std::string& directory, const Identity& identity) {
    const std::string device = tag("deviceType", "urn:schemas-upnp-org:device:MediaServer:1") +
                               tag("friendlyName", escaped(identity.name)) +
                               (identity.maker.empty() ? "" : tag("manufacturer", escaped(identity.maker))) +
                               tag("modelName", "Test model") + tag("UDN", identity.id) +
                               tag("serviceList", service("ContentDirectory") + service("ConnectionManager"));
    write(directory + "/" + kDescriptionFile,
          "<?xml version=\"1.0\"?><root xmlns=\"urn:schemas-upnp-org:device-1-0\">"
          "<specVersion><major>1</major><minor>0</minor></specVersion>" +
              tag("device", device) + "</root>");
    write(directory + "/ContentDirectory.xml", directory_scpd(identity));
    write(directory + "/ConnectionManager.xml", connection_scpd());
}
