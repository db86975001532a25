#ifndef QRA_TESTS_UNIT_PLATFORM_RECORDING_RECORDING_FIXTURE_H
#define QRA_TESTS_UNIT_PLATFORM_RECORDING_RECORDING_FIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "svc_pvr.h"
#include "tests/fakes/temp_dir.h"

/// A record as the service gives it, with its texts.
class ReadRecord {
public:
    explicit ReadRecord(const std::string& path) : result(svc_pvr_get_pvr_file_info(path.c_str(), &info)) {}
    ~ReadRecord() {
        for (char* text : {info.channel_name, info.channel_num, info.synopsis, info.genre}) {
            free(text);
        }
    }
    ReadRecord(const ReadRecord&) = delete;
    ReadRecord& operator=(const ReadRecord&) = delete;

    pvr_file_info_s info{};
    int result;
};

/// A directory of its own for recordings.
class RecordingTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return directory_.path(name); }

    std::vector<std::string> names() const { return names_in(directory_.path()); }

    static std::vector<std::string> names_in(const std::string& directory) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    static int lock(const std::string& recording, bool locked) {
        ReadRecord record(recording);
        record.info.content_lock = locked;
        return svc_pvr_set_pvr_file_info_ex(recording.c_str(), &record.info);
    }

    TempDir directory_;
};

#endif
