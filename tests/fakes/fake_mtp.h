#ifndef QRA_TESTS_FAKES_FAKE_MTP_H
#define QRA_TESTS_FAKES_FAKE_MTP_H

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/**
 * Takes the place of the MTP service in a test program: the cameras are what the test says.
 *
 * The devices are set up while nobody calls the service, or changed by `before`, which runs on the caller's
 * thread; calls come from any thread. The records are read when the calls are done.
 */
class FakeMtp {
public:
    struct Object {
        int handle = 0;
        int parent = 0;
        int file_type = 0;
        std::string name;
        std::string content = {};
        int width = 0;
        int height = 0;
        int modified_time = 0;
        int storage = 1;
        std::string thumbnail = {};
    };

    struct Device {
        int handle = 0;
        int bus = 0;
        int number = 0;
        std::string model = "Plain";
        std::vector<int> storages = {1};
        std::vector<Object> objects = {};
    };

    static FakeMtp& instance();

    /// As after the start of the process.
    void reset();

    std::vector<Device> devices;
    /// Asked before each call, by its name without "mtp_": "get_object". A code other than 0 is the call's
    /// result.
    std::function<int(const std::string& call, int object)> before;
    /// The answer for the next object handles in place of the real one; by parent.
    std::map<int, std::vector<int>> children;
    /// Partial objects have that many bytes less than were asked for.
    unsigned short_by = 0;

    /// Number of calls of one name; of all for an empty one.
    int count(const std::string& call = "") const;
    /// The calls so far: name, a blank, object.
    std::vector<std::string> calls() const;
    /// Bytes that objects and ranges of them had.
    unsigned long long bytes() const;
    /// The files that were written to, in their order, each once.
    std::vector<std::string> files() const;

    // For the functions of the service.

    int enter(const std::string& call, int object = 0);
    Device* device(int handle);
    Object* object(int device, int handle);
    int write(const std::string& path, const std::string& content);

private:
    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
    std::vector<std::string> files_;
    unsigned long long bytes_ = 0;
};

#endif
