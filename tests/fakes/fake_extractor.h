#ifndef QRA_TESTS_FAKES_FAKE_EXTRACTOR_H
#define QRA_TESTS_FAKES_FAKE_EXTRACTOR_H

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/**
 * Stands in for the platform's reader of packages: a test program that links fake-extractor asks this one.
 *
 * A package has what the test gave it; what it lacks cannot be read. Calls are noted in their order. For one
 * thread at a time.
 */
namespace fake_extractor {

struct Package {
    std::optional<std::vector<std::string>> files;  ///< without them the list cannot be read
    std::map<std::string, std::string> xml;         ///< by entry
    std::map<std::string, std::string> sff_xml;     ///< by entry, "" being the package itself
    std::map<std::string, std::string> images;      ///< by entry
    std::map<std::pair<std::string, std::string>, std::string> sff_images;  ///< by entry and track
};

/// What GetFileType() tells of entries that are not named here: 1.
extern std::map<std::string, int> types;

/// By path.
extern std::map<std::string, Package> packages;

/// "GetXML /p a.xml" and so on; GetFileType() is not noted.
extern std::vector<std::string> calls;

void reset();

}  // namespace fake_extractor

#endif
