#ifndef QRA_TESTS_INTEGRATION_HELD_SCANS_H
#define QRA_TESTS_INTEGRATION_HELD_SCANS_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "media_content_admin.h"

/// While it lives every scan of whatever process waits, like one of a drive that is slow.
class HeldScans {
public:
    HeldScans() {
        char* database = nullptr;
        EXPECT_EQ(0, media_content_admin_database_path(&database));
        lock_ = open((std::string(database) + ".scan-lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        free(database);
        struct flock all = {};
        all.l_type = F_WRLCK;
        all.l_whence = SEEK_SET;
        EXPECT_EQ(0, fcntl(lock_, F_OFD_SETLK, &all)) << strerror(errno);
    }
    ~HeldScans() { close(lock_); }
    HeldScans(const HeldScans&) = delete;
    HeldScans& operator=(const HeldScans&) = delete;

private:
    int lock_;
};

#endif
