#include "foundation/symmetric_solve.h"

#include <gmock/gmock.h>

#include <vector>

using namespace tonewright;
using testing::Pointwise;

namespace {

struct System {
    const char* what;
    std::vector<double> a, b;
    bool isSolved;
    std::vector<double> x;
};

}  // namespace

TEST(SolveSymmetric, SolvesWhatIsPositiveDefinite) {
    // By hand: the middle one is L L^T of L = {2}, {6, 1}, {-8, 5, 3}, and its x goes back in.
    const System cases[] = {
        {"one unknown", {4}, {6}, true, {1.5}},
        {"three", {4, 12, -16, 12, 37, -43, -16, -43, 98}, {-20, -43, 192}, true, {1, 2, 3}},
        {"the upper triangle is not read", {2, 99, 1, 2}, {4, 5}, true, {1, 2}},
        {"singular", {1, 1, 1, 1}, {1, 1}, false, {}},
        {"indefinite", {1, 2, 2, 1}, {1, 1}, false, {}},
        {"zeros", {0, 0, 0, 0}, {0, 0}, false, {}},
    };
    for (System system : cases) {
        EXPECT_EQ(SolveSymmetric(system.a, system.b), system.isSolved) << system.what;
        if (!system.isSolved) continue;
        EXPECT_THAT(system.b, Pointwise(testing::DoubleNear(1e-12), system.x)) << system.what;
    }
}

TEST(SolveSymmetric, TheCallerSaysHowLittleOfADiagonalElementIsEnough) {
    const std::vector<double> almost = {1, 1, 1, 1 + 1e-13};
    std::vector<double> a = almost, b = {1, 1};
    EXPECT_FALSE(SolveSymmetric(a, b));
    a = almost;
    EXPECT_TRUE(SolveSymmetric(a, b, 0));
}
