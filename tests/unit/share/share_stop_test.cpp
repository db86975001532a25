// Jobs that are stopped at every moment of their work.

#include <algorithm>

#include "tests/unit/share/faulty_calls.h"
#include "tests/unit/share/share_fixture.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRounds = 500;

/// Lets one thread wait for the moment at which a job makes its `number`th call.
class Moment {
public:
    explicit Moment(int number) : number_(number) {}

    void call() {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (++calls_ == number_) {
            reached_ = true;
            changed_.notify_all();
        }
    }
    void end() {
        const std::lock_guard<std::mutex> lock(mutex_);
        reached_ = true;
        changed_.notify_all();
    }
    void wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        EXPECT_TRUE(changed_.wait_for(lock, std::chrono::seconds(60), [&] { return reached_; }));
    }
    int calls() const { return calls_; }

private:
    const int number_;
    std::mutex mutex_;
    std::condition_variable changed_;
    int calls_ = 0;
    bool reached_ = false;
};

class ShareStop : public ShareTest {
protected:
    ShareStop() {
        FaultyCalls::reset();
        FaultyCalls::real_fsync = false;
        select("empty.jpg", "");
        select("small.jpg", std::string(10, 's'));
        select("movie.avi", std::string(200000, 'm'), QRA_MEDIA_TYPE_VIDEO);
        dir_.write("source/movie.srt", std::string(70000, 't'));
        select("large.jpg", std::string(1200000, 'l'));
    }
    ~ShareStop() override { FaultyCalls::reset(); }

    /// Runs a job and stops it at its `number`th call; the number of calls that it came to.
    int stop_at(int number, qra_processor_type_e type, BatchClient& client) {
        Moment moment(number);
        FaultyCalls::before = [&](const std::string&, const std::string&) {
            moment.call();
            return 0;
        };
        client.on_event([&](CQRASendHandle*, const BatchEvent& event) {
            moment.call();
            if (event.event == QRA_EVENT_BATCH_FAILED || event.event == QRA_EVENT_BATCH_FINISHED) {
                moment.end();
            }
        });
        CQRASendHandle* job = nullptr;
        EXPECT_EQ(qra_batch_process_v2(type, &param_, list_, client.param(), &job), QRA_ERROR_NONE);
        if (number > 0) {
            moment.wait();
        }
        EXPECT_EQ(qra_stop_batch_process_v2(job), QRA_ERROR_NONE);
        return moment.calls();
    }
};

}  // namespace

TEST_F(ShareStop, ACopyThatIsStoppedAtAnyMomentLeavesWholeFilesOnly) {
    BatchClient undisturbed;
    const int calls = stop_at(1 << 30, QRA_PROCESSOR_TYPE_COPY, undisturbed);
    ASSERT_GT(calls, 20);
    int early = 0;
    for (int round = 0; round < kRounds; ++round) {
        fs::remove_all(dest_);
        fs::create_directories(dest_);
        script_.added.clear();
        BatchClient client;
        stop_at(round % calls, QRA_PROCESSOR_TYPE_COPY, client);
        for (const char* folder : {"PHOTO", "VIDEO"}) {
            for (const std::string& name : copied(folder)) {
                if (name != "movie.srt") {  // a companion belongs to the file before it
                    ASSERT_EQ(fs::file_size(dest_ + "/" + folder + "/" + name),
                              fs::file_size(dir_.path("source/" + name)))
                        << round << " " << name;
                }
            }
        }
        ASSERT_EQ(client.count(QRA_EVENT_BATCH_FILE_DONE), static_cast<int>(script_.added.size())) << round;
        ASSERT_EQ(copied("PHOTO").size() + copied("VIDEO").size() -
                      (fs::exists(dest_ + "/VIDEO/movie.srt") ? 1 : 0),
                  script_.added.size())
            << round;
        ASSERT_EQ(descriptors_below(dir_.path()), 0) << round;
        early += script_.added.size() < 4 ? 1 : 0;
    }
    EXPECT_GT(early, 0);
}

TEST_F(ShareStop, ADeleteThatIsStoppedAtAnyMomentHasTheRowsOfWhatItRemoved) {
    const std::string source = dir_.path("source");
    const std::string kept = dir_.path("kept");
    fs::copy(source, kept);
    for (int round = 0; round < 100; ++round) {
        fs::remove_all(source);
        fs::copy(kept, source);
        script_.deleted.clear();
        BatchClient client;
        stop_at(round % 10, QRA_PROCESSOR_TYPE_DELETE, client);
        for (const SharedItem& item : script_.items) {
            const bool gone = !fs::exists(item.texts.at("FILE_PATH"));
            const bool reported =
                std::count(script_.deleted.begin(), script_.deleted.end(), item.texts.at("ID_QRA")) == 1;
            ASSERT_EQ(gone, reported) << round << item.texts.at("FILE_PATH");
        }
    }
}
