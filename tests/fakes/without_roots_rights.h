#ifndef QRA_TESTS_FAKES_WITHOUT_ROOTS_RIGHTS_H
#define QRA_TESTS_FAKES_WITHOUT_ROOTS_RIGHTS_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

/// Takes root's rights, which let everything pass, from a process that has them, for as long as it lives.
class WithoutRootsRights {
public:
    static constexpr uid_t kNobody = 65534;

    WithoutRootsRights() { has_changed_ = geteuid() == 0 && seteuid(kNobody) == 0; }
    ~WithoutRootsRights() {
        if (has_changed_ && seteuid(0) != 0) {
            ADD_FAILURE() << "the rights do not come back";
        }
    }
    WithoutRootsRights(const WithoutRootsRights&) = delete;
    WithoutRootsRights& operator=(const WithoutRootsRights&) = delete;

    /// This user sees what everybody may see in a directory, and nothing more.
    static bool are_usual_in(const std::string& directory) {
        return geteuid() != 0 && faccessat(AT_FDCWD, directory.c_str(), R_OK | X_OK, AT_EACCESS) == 0;
    }

private:
    bool has_changed_ = false;
};

#endif
