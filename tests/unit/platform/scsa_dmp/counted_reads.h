#ifndef QRA_TESTS_UNIT_PLATFORM_SCSA_DMP_COUNTED_READS_H
#define QRA_TESTS_UNIT_PLATFORM_SCSA_DMP_COUNTED_READS_H

#include <cstdint>

// Every pread() of this test program, and of the libraries that it uses, is counted.

void forget_reads();
uint64_t bytes_read();
uint64_t reads();

#endif
