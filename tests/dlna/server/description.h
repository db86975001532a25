#ifndef QRA_TESTS_DLNA_SERVER_DESCRIPTION_H
#define QRA_TESTS_DLNA_SERVER_DESCRIPTION_H

#include <string>

/// What the server says of itself.
struct Identity {
    std::string name = "Test server";
    std::string id = "uuid:5f0c7a10-0000-4000-8000-000000000001";
    std::string maker = "Test maker";
    bool search = true;
    bool upload = true;
    bool feature_list = false;      ///< announces a feature list of its own kind
    std::string bookmark = "none";  ///< "none", "action", "position"
};

/// The name of the document, in the directory that write_description() filled.
constexpr char kDescriptionFile[] = "device.xml";

/// Writes the device's and the services' descriptions.
void write_description(const std::string& directory, const Identity& identity);

/// Text that may stand in XML. Bytes that are no UTF-8 stay what they are.
std::string escaped(const std::string& text);

#endif
