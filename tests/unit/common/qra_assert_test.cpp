#include "common/util/qra_assert.h"

#include <gtest/gtest.h>

TEST(QraAssert, PrintsANullTestAsTheCompilerSeesIt) {
    const char* pHandle = NULL;
    EXPECT_DEATH(QRA_ASSERT(pHandle != NULL), "Assertion `pHandle != __null' failed");
}

TEST(QraAssert, LetsATrueConditionPass) {
    QRA_ASSERT(1 + 1 == 2);
}

TEST(QraAssert, TakesAConditionWithACommaInIt) {
    const auto is_less = [](int a, int b) { return a < b; };
    EXPECT_DEATH(QRA_ASSERT(is_less(2, 1)), "is_less\\(2, 1\\)");
}
