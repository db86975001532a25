#ifndef QRA_TESTS_UNIT_PLATFORM_SCSA_DMP_PACKAGES_TEST_H
#define QRA_TESTS_UNIT_PLATFORM_SCSA_DMP_PACKAGES_TEST_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "scsa_dmp.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/package_maker.h"
#include "tests/fakes/temp_dir.h"

/// A folder for packages, and short questions to them. "(failed)" stands for false, which has to come with
/// empty out-arguments and a line in the log.
class PackagesTest : public ::testing::Test {
protected:
    using Names = std::vector<std::string>;

    std::string path(const std::string& name) const { return folder_.path(name); }

    std::string write(const std::string& name, const std::string& bytes) const {
        return folder_.write(name, bytes);
    }

    std::string read(const std::string& name) const { return folder_.read(name); }

    std::string write_sff(const std::string& name, const package_maker::Sff& sff) const {
        EXPECT_TRUE(package_maker::write_sff(path(name), sff));
        return path(name);
    }

    Names list(const std::string& package) {
        Names names{"left from before"};
        const int lines = log.count("");
        if (!SCSA_DMP::MetaDataExtractor::GetFileList(package, names)) {
            EXPECT_TRUE(names.empty());
            EXPECT_EQ(log.count(""), lines + 1) << log.text();
            return {"(failed)"};
        }
        return names;
    }

    std::string xml(const std::string& package, const std::string& entry) {
        return text(
            [&](std::string& out) { return SCSA_DMP::MetaDataExtractor::GetXML(package, entry, out); });
    }

    std::string sff_xml(const std::string& package, const std::string& entry = "") {
        return text([&](std::string& out) {
            return SCSA_DMP::MetaDataExtractor::GetXMLFromSFF(package, entry, out);
        });
    }

    std::string image(const std::string& package, const std::string& entry) {
        return block([&](unsigned long long& size, char** out) {
            return SCSA_DMP::MetaDataExtractor::GetImageBuffer(package, entry, size, out);
        });
    }

    std::string sff_image(const std::string& package, const std::string& entry,
                          const std::string& reference) {
        return block([&](unsigned long long& size, char** out) {
            return SCSA_DMP::MetaDataExtractor::GetImageBufferFromSFF(package, entry, reference, size, out);
        });
    }

    LogCapture log;

private:
    template <class Ask>
    std::string text(Ask ask) {
        std::string out = "left from before";
        const int lines = log.count("");
        if (!ask(out)) {
            EXPECT_EQ(out, "");
            EXPECT_EQ(log.count(""), lines + 1) << log.text();
            return "(failed)";
        }
        return out.substr(0, out.find_last_not_of('\0') + 1);
    }

    template <class Ask>
    std::string block(Ask ask) {
        char left_from_before = 'x';
        char* out = &left_from_before;
        unsigned long long size = 7;
        const int lines = log.count("");
        if (!ask(size, &out)) {
            EXPECT_EQ(out, nullptr);
            EXPECT_EQ(size, 0u);
            EXPECT_EQ(log.count(""), lines + 1) << log.text();
            return "(failed)";
        }
        const std::string copy(out, static_cast<size_t>(size));
        std::free(out);
        return copy;
    }

    const TempDir folder_;
};

#endif
