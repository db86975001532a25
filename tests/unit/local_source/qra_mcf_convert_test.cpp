#include "libqra-agent/source/local-source/qra_mcf_convert.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>

TEST(ClampNumber, KeepsWhatFits) {
    EXPECT_EQ(ClampNumber<int>(-5L), -5);
    EXPECT_EQ(ClampNumber<long>(7), 7L);
    EXPECT_EQ(ClampNumber<unsigned long long>(7), 7u);
    EXPECT_EQ(ClampNumber<double>(-3), -3.0);
    EXPECT_EQ(ClampNumber<int>(2.9), 2);
    EXPECT_EQ(ClampNumber<int>(-2.9), -2);
}

TEST(ClampNumber, CutsWhatIsTooLarge) {
    EXPECT_EQ(ClampNumber<int>(ULLONG_MAX), INT_MAX);
    EXPECT_EQ(ClampNumber<int>(static_cast<long long>(INT_MAX) + 1), INT_MAX);
    EXPECT_EQ(ClampNumber<int>(static_cast<long long>(INT_MIN) - 1), INT_MIN);
    EXPECT_EQ(ClampNumber<long>(ULLONG_MAX), LONG_MAX);
    EXPECT_EQ(ClampNumber<unsigned long long>(-1), 0u);
    EXPECT_EQ(ClampNumber<int>(1e30), INT_MAX);
    EXPECT_EQ(ClampNumber<int>(-1e30), INT_MIN);
    EXPECT_EQ(ClampNumber<unsigned long long>(-0.5), 0u);
    EXPECT_EQ(ClampNumber<int>(std::nan("")), 0);
    EXPECT_EQ(ClampNumber<unsigned long long>(std::nan("")), 0u);
}

TEST(ClampNumber, ABoolIsZeroOrOne) {
    EXPECT_EQ(ClampNumber<int>(true), 1);
    EXPECT_EQ(ClampNumber<unsigned long long>(false), 0u);
    EXPECT_TRUE(ClampNumber<bool>(-2));
    EXPECT_TRUE(ClampNumber<bool>(0.5));
    EXPECT_FALSE(ClampNumber<bool>(0L));
}

TEST(StoreNumber, WritesTheTypeThatWasAskedFor) {
    unsigned long long wide = 0;
    int narrow = 0;
    bool flag = false;
    EXPECT_TRUE(StoreNumber(mcf_out(&wide), 5));
    EXPECT_TRUE(StoreNumber(mcf_out(&narrow), time_t(LONG_MAX)));
    EXPECT_TRUE(StoreNumber(mcf_out(&flag), 3));
    EXPECT_EQ(wide, 5u);
    EXPECT_EQ(narrow, INT_MAX);
    EXPECT_TRUE(flag);
}

TEST(StoreNumber, IsNoText) {
    char* text = nullptr;
    EXPECT_FALSE(StoreNumber(mcf_out(&text), 5));
    EXPECT_EQ(text, nullptr);
}

TEST(StoreText, HandsOverATextAndNothingElse) {
    char* text = nullptr;
    int number = 3;
    EXPECT_TRUE(StoreText(mcf_out(&text), CMallocText(strdup("a"))));
    EXPECT_STREQ(text, "a");
    std::free(text);
    EXPECT_FALSE(StoreText(mcf_out(&number), CMallocText(strdup("4"))));
    EXPECT_EQ(number, 3);
}
