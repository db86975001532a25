#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/fakes/package_maker.h"

namespace {

namespace fs = std::filesystem;
using package_maker::Entry;
using package_maker::Form;
using package_maker::Sff;
using package_maker::XmlPlace;

struct Wishes {
    fs::path folder;
    fs::path package;
    bool xml_item = false;
    bool items_in_meta = false;
    uint64_t film = 0;
    Form form = Form::kZip;
};

const std::map<std::string, Form> kForms = {{"zip", Form::kZip},
                                            {"stored-zip", Form::kStoredZip},
                                            {"tar", Form::kTar},
                                            {"cpio", Form::kCpio},
                                            {"tar.gz", Form::kTarGz}};

constexpr uint32_t kFirstFreeItem = 100;

std::string bytes_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<fs::path> sorted(const fs::path& folder) {
    std::vector<fs::path> paths{fs::directory_iterator(folder), fs::directory_iterator()};
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool stands_alone(const fs::path& path) {
    std::string extension = path.extension();
    std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
    return extension == ".uvu" || extension == ".uva" || extension == ".uvt" || extension == ".scsa";
}

/// The number in a name such as "track-2.jpg"; 0 if it is none such.
uint32_t number_in(const std::string& name, const std::string& prefix) {
    return name.rfind(prefix, 0) == 0
               ? static_cast<uint32_t>(std::strtoul(name.c_str() + prefix.size(), nullptr, 10))
               : 0;
}

Sff sff_of(const fs::path& folder, const Wishes& wishes) {
    Sff sff;
    sff.xml_place = XmlPlace::kNowhere;
    sff.items_in_meta = wishes.items_in_meta;
    uint32_t next_item = kFirstFreeItem;
    for (const fs::path& path : sorted(folder)) {
        const std::string name = path.filename();
        const uint32_t track = number_in(name, "track-");
        const uint32_t item = number_in(name, "item-");
        if (path.extension() == ".xml") {
            sff.xml = bytes_of(path);
            sff.xml_place = wishes.xml_item ? XmlPlace::kItem : XmlPlace::kBox;
        } else if (track != 0) {
            sff.tracks.push_back({track, {bytes_of(path)}});
        } else {
            sff.items.push_back({item != 0 ? item : next_item++, name, bytes_of(path)});
        }
    }
    return sff;
}

void add_entries(const fs::path& folder, const std::string& prefix, const Wishes& wishes,
                 std::vector<Entry>& entries) {
    for (const fs::path& path : sorted(folder)) {
        const std::string name = prefix + path.filename().string();
        if (!fs::is_directory(path)) {
            entries.push_back({name, bytes_of(path)});
        } else if (stands_alone(path)) {
            entries.push_back({name, package_maker::sff_bytes(sff_of(path, wishes))});
        } else {
            add_entries(path, name + "/", wishes, entries);
        }
    }
}

bool make(const Wishes& wishes) {
    if (stands_alone(wishes.package)) {
        Sff sff = sff_of(wishes.folder, wishes);
        sff.film = wishes.film;
        return package_maker::write_sff(wishes.package, sff);
    }
    std::vector<Entry> entries;
    add_entries(wishes.folder, "", wishes, entries);
    return package_maker::write_container(wishes.package, entries, wishes.form);
}

}  // namespace

int main(int argc, char** argv) {
    Wishes wishes;
    CLI::App app(
        "Make an SCSA package of a folder. A PACKAGE that ends in .uvu, .uva, .uvt or .scsa becomes a "
        "stand-alone "
        "file: the folder's .xml is its metadata, track-2.jpg a picture as track 2, item-3.png one as item "
        "3, and "
        "any other file an item of its name. Any other PACKAGE becomes a container of all files, in which a "
        "sub-folder with such a name becomes an embedded SFF.",
        "make-package");
    app.add_option("FOLDER", wishes.folder)->required()->check(CLI::ExistingDirectory);
    app.add_option("PACKAGE", wishes.package)->required();
    app.add_flag("--xml-item", wishes.xml_item, "The XML of an SFF is an item, and has no box of its own");
    app.add_flag("--items-in-meta", wishes.items_in_meta, "Items lie in the meta box");
    app.add_option("--film", wishes.film, "A stand-alone file begins with a film of so many zeros");
    app.add_option("--form", wishes.form, "Of a container: zip, stored-zip, tar, cpio, tar.gz")
        ->transform(CLI::CheckedTransformer(kForms));
    CLI11_PARSE(app, argc, argv);
    try {
        if (make(wishes)) {
            return 0;
        }
        std::fprintf(stderr, "make-package: %s cannot be written\n", wishes.package.c_str());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make-package: %s\n", error.what());
    }
    return 2;
}
