#include "foundation/fixed_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace tonewright;

TEST(FixedText, NumbersArePlain) {
    EXPECT_EQ(FixedText(3.14159, 2), "3.14");
    EXPECT_EQ(FixedText(-0.04, 1), "0.0");
    EXPECT_EQ(FixedText(-1.26, 1), "-1.3");
    EXPECT_EQ(FixedText(std::nan(""), 1), "no number");
    EXPECT_EQ(FixedText(-std::numeric_limits<double>::infinity(), 1, "–"), "–");
    EXPECT_EQ(FixedText(1e308, 0).size(), 309u);
}
