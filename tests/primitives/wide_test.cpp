#include "primitives/wide.h"

#include <gtest/gtest.h>

#include <string>

using namespace tonewright;

namespace {

constexpr const char* kNames[] = {"Plain", "Avx2", "Avx512"};

class Forms : public testing::TestWithParam<RowForm> {};

// The tests of rows pass over the forms that a machine lacks; here they are skipped by name.
TEST_P(Forms, AreTriedHereAndTheWidestIsTaken) {
    if (!HasForm(GetParam())) GTEST_SKIP() << "this machine lacks the instructions: no test tries this form";
    const int before = ctiv_GetAccelerationLevel();
    ctiv_SetAccelerationLevel(1);
    EXPECT_GE(GetRowForm(), GetParam());
    ctiv_SetAccelerationLevel(0);
    EXPECT_EQ(GetRowForm(), RowForm::Plain);
    ctiv_SetAccelerationLevel(before);
}

INSTANTIATE_TEST_SUITE_P(Wide, Forms, testing::ValuesIn(kRowForms),
                         [](const auto& form) { return std::string(kNames[static_cast<int>(form.param)]); });

}  // namespace
