#ifndef QRA_TESTS_FAKES_PROCESS_RESOURCES_H
#define QRA_TESTS_FAKES_PROCESS_RESOURCES_H

#include <dirent.h>

#include <chrono>
#include <ostream>
#include <thread>

#include "tests/fakes/loop_sources.h"

/// What a process must not have more and more of; the sources are those of one main loop.
struct ProcessResources {
    explicit ProcessResources(const LoopSources& loop) : sources(loop.count()) {}

    static int entries_of(const char* directory) {
        int count = 0;
        DIR* open = opendir(directory);
        while (readdir(open) != nullptr) {
            ++count;
        }
        closedir(open);
        return count;
    }

    int descriptors = entries_of("/proc/self/fd");
    int threads = entries_of("/proc/self/task");
    int sources;
};

inline std::ostream& operator<<(std::ostream& out, const ProcessResources& resources) {
    return out << resources.descriptors << " descriptors, " << resources.threads << " threads, "
               << resources.sources << " sources";
}

/// Whether the process comes down to that again: GLib closes some things on threads of its own, and keeps a
/// pool of them that come and go as they please, up to its size.
inline bool settles_at(const ProcessResources& before, const LoopSources& loop) {
    constexpr int kPool = 12;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (true) {
        const ProcessResources now(loop);
        if (now.descriptors <= before.descriptors && now.threads <= before.threads + kPool &&
            now.sources <= before.sources) {
            return true;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

#endif
