#include "platform/files/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <utility>

namespace {

int open_anything() {
    return open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

bool is_open(int number) {
    return fcntl(number, F_GETFD) >= 0;
}

TEST(Descriptor, ClosesItsFileAtTheEnd) {
    const int number = open_anything();
    ASSERT_TRUE(is_open(number));

    { const files::Descriptor descriptor(number); }

    EXPECT_FALSE(is_open(number));
}

TEST(Descriptor, WithoutAFileIsFalse) {
    EXPECT_FALSE(files::Descriptor());
    EXPECT_FALSE(files::Descriptor(-1));
    EXPECT_TRUE(files::Descriptor(open_anything()));
}

TEST(Descriptor, HandsItsFileOn) {
    const int number = open_anything();
    files::Descriptor first(number);

    files::Descriptor second(std::move(first));
    files::Descriptor third;
    third = std::move(second);

    EXPECT_EQ(third.get(), number);
    EXPECT_TRUE(is_open(number));
}

}  // namespace
