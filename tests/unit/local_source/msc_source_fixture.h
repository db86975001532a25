#ifndef QRA_TESTS_UNIT_LOCAL_SOURCE_MSC_SOURCE_FIXTURE_H
#define QRA_TESTS_UNIT_LOCAL_SOURCE_MSC_SOURCE_FIXTURE_H

#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/local-source/qra_msc_source.h"
#include "tests/fakes/fake_extractor.h"
#include "tests/unit/local_source/sample_drive.h"
#include "tests/unit/scsa/package_xml.h"

/// Packages count as films here, since no built-in list has them.
inline char g_extensions[] =
    R"({"param_media_extension_image":["jpg","txt2"],"param_media_extension_video":["mp4","uvu"],)"
    R"("param_media_extension_music":["mp3"],"param_media_extension_pvr":["srf"],"param_media_extension_uhd":["um4"]})";

/// Collects the completions of a source.
class Completions {
public:
    static bool on_complete(qra_event_e event, void* completions) {
        auto* const self = static_cast<Completions*>(completions);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->events_.push_back(event);
        self->threads_.push_back(std::this_thread::get_id());
        self->came_.notify_all();
        return true;
    }

    /// Waits for the next completion; -1 if none comes within 30 seconds.
    int wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!came_.wait_for(lock, std::chrono::seconds(30), [&] { return events_.size() > taken_; })) {
            return -1;
        }
        return events_[taken_++];
    }

    std::thread::id last_thread() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return threads_.back();
    }

    size_t count() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return events_.size();
    }

private:
    std::mutex mutex_;
    std::condition_variable came_;
    std::vector<qra_event_e> events_;
    std::vector<std::thread::id> threads_;
    size_t taken_ = 0;
};

struct Request {
    std::string path;
    std::string content = "CONTENT-FOLDER";
    std::string category = "CATEGORY-FOLDER-TITLE";
    std::string keyword = {};
    bool uhd = false;
};

class CQRAMSCSourceOnDrive : public SampleDrive {
protected:
    ~CQRAMSCSourceOnDrive() override {
        if (source.IsOpen()) {
            source.Close();
        }
    }

    void open() {
        ASSERT_TRUE(source.Open());
        ASSERT_TRUE(source.SetCallback(Completions::on_complete, &completions));
    }

    bool execute(const Request& request) {
        std::string root = path(request.path);
        qra_general_s param;
        param.szPath = root.data();
        param.szContentType = const_cast<char*>(request.content.c_str());
        param.szSortCategory = const_cast<char*>(request.category.c_str());
        param.szKeyWord = const_cast<char*>(request.keyword.c_str());
        param.szExtension = g_extensions;
        param.bIsUHDMeta = request.uhd;
        return source.Execute(&param);
    }

    /// Runs a request to its completion; the event, or -2 if it was not accepted.
    int run(const Request& request) { return execute(request) ? completions.wait() : -2; }

    int count() {
        int items = -1;
        EXPECT_TRUE(source.GetItemCount(&items));
        return items;
    }

    int count_of(int type) {
        int items = -1;
        EXPECT_TRUE(source.GetItemCountByType(static_cast<qra_media_type_e>(type), &items));
        return items;
    }

    std::string text(const std::string& field) {
        char* value = nullptr;
        return source.GetValue(field, &value) ? take(value) : "(failed)";
    }

    int number(const std::string& field) {
        int value = -1;
        return source.GetValue(field, &value) ? value : -1;
    }

    /// File names in list order.
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (int i = 0; i < count(); ++i) {
            EXPECT_TRUE(source.MoveToIndex(i));
            all.push_back(std::filesystem::path(text("FILE_PATH")).filename());
        }
        source.MoveToIndex(0);
        return all;
    }

    /// The groups as "name: start, count".
    std::vector<std::string> groups() {
        const std::unique_ptr<CQRAGroupInfo> info(source.GetGroupInfo());
        std::vector<std::string> all;
        for (int i = 0; i < info->GetGroupCount(); ++i) {
            int start = 0;
            int items = 0;
            std::string name;
            info->GetGroup(i, start, items, name);
            all.push_back(name + ": " + std::to_string(start) + ", " + std::to_string(items));
        }
        return all;
    }

    using Names = std::vector<std::string>;
    CQRAMSCSource source;
    Completions completions;
};

/// With a file of each kind in the folder "show", scanned, and the source open.
class CQRAMSCSourceOpen : public CQRAMSCSourceOnDrive {
protected:
    CQRAMSCSourceOpen() {
        write("show/a.jpg");
        write("show/b.mp4");
        write("show/c.mp3");
        write_recording("show/d", "program_title=News\nchannel_name=BBC\nmajor=1\nminor=2\n");
        write("show/e.um4");
        write("show/f.uvu");
        fake_extractor::packages[path("show/f.uvu")].sff_xml[""] = metadata_xml("Film");
        write("show/deep/g.jpg");
        write("show/Lost+Found/h.jpg");
        std::filesystem::copy_file(QRA_TEST_FIXTURES "/music/song.mp3", path("show/song.mp3"));
        scan();
        open();
    }

    /// Puts the cursor on a file of the folder list.
    void move_to(const std::string& name) {
        ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
        const Names all = names();
        for (size_t i = 0; i < all.size(); ++i) {
            if (all[i] == name) {
                ASSERT_TRUE(source.MoveToIndex(static_cast<int>(i)));
                return;
            }
        }
        FAIL() << name;
    }
};

#endif
