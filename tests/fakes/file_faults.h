#ifndef QRA_TESTS_FAKES_FILE_FAULTS_H
#define QRA_TESTS_FAKES_FILE_FAULTS_H

#include <string>
#include <vector>

/**
 * Takes the place of the system calls open, write, fsync and rename in a test program that links this
 * library, and in the shared libraries that it uses. They count and go on to the system, until one is told to
 * fail with ENOSPC.
 */
namespace file_faults {

/// Begins to count, and lets the n-th call from now on fail; 0: none.
void fail_call(int n);

/// Ends it: all calls work. @return the calls since fail_call(), by name, the failed one included
std::vector<std::string> stop();

}  // namespace file_faults

#endif
