#include "calibration/svd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "calibration/color_fit.h"

using namespace tonewright;

namespace {

DoubleMatrix Make(int rows, int columns, const std::function<double(int, int)>& entry) {
    DoubleMatrix matrix(rows, columns);
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < columns; ++j) matrix[i][j] = entry(i, j);
    }
    return matrix;
}

DoubleMatrix Random(int rows, int columns, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> draw(-1.0, 1.0);
    return Make(rows, columns, [&](int, int) { return draw(random); });
}

struct NamedMatrix {
    const char* name;
    DoubleMatrix matrix;
};

std::vector<NamedMatrix> Matrices() {
    const auto low = Random(24, 2, 3);
    return {{"tall", Random(24, 10, 1)},
            {"square", Random(10, 10, 2)},
            {"fewer rows than columns", Random(3, 10, 4)},
            {"one row", Random(1, 4, 5)},
            {"rank one", Make(24, 4, [](int, int j) { return j + 1.0; })},
            {"rank two", Make(24, 7, [&](int i, int j) { return low[i][0] * j + low[i][1] * (j * j - 2); })},
            {"zero", DoubleMatrix(24, 4)},
            {"zero on the diagonal", Make(4, 4, [](int i, int j) { return j == i + 1 ? 1.0 + i : 0.0; })},
            {"equal values", Make(6, 4, [](int i, int j) { return i == 3 - j ? -2.0 : 0.0; })},
            {"small and large", Make(8, 4, [](int i, int j) { return std::pow(10.0, -4 * j) * std::cos(i * j + i); })},
            {"Hilbert", Make(10, 10, [](int i, int j) { return 1.0 / (i + j + 1); })}};
}

/// Solves the normal equations A^T A x = A^T b by elimination with pivots, in long double.
std::vector<double> NormalEquations(const DoubleMatrix& a, const std::vector<double>& b) {
    const int n = a.GetColumns();
    std::vector<std::vector<long double>> m(n, std::vector<long double>(n + 1));
    for (int r = 0; r < n; ++r) {
        for (int i = 0; i < a.GetRows(); ++i) {
            for (int c = 0; c < n; ++c) m[r][c] += static_cast<long double>(a[i][r]) * a[i][c];
            m[r][n] += static_cast<long double>(a[i][r]) * b[i];
        }
    }
    for (int p = 0; p < n; ++p) {
        std::swap(m[p], *std::max_element(m.begin() + p, m.end(), [p](const auto& one, const auto& other) {
                      return std::fabs(one[p]) < std::fabs(other[p]);
                  }));
        for (int r = 0; r < n; ++r) {
            if (r == p) continue;
            const long double factor = m[r][p] / m[p][p];
            for (int c = p; c <= n; ++c) m[r][c] -= factor * m[p][c];
        }
    }
    std::vector<double> x;
    for (int r = 0; r < n; ++r) x.push_back(static_cast<double>(m[r][n] / m[r][r]));
    return x;
}

double ColumnDot(const DoubleMatrix& matrix, int one, int other) {
    double sum = 0.0;
    for (int i = 0; i < matrix.GetRows(); ++i) sum += matrix[i][one] * matrix[i][other];
    return sum;
}

int Negatives(const DoubleMatrix& matrix, int column) {
    int count = 0;
    for (int i = 0; i < matrix.GetRows(); ++i) count += matrix[i][column] < 0;
    return count;
}

}  // namespace

TEST(Svd, FactorsGiveTheMatrixBackAndAreOrthonormalSortedAndSigned) {
    for (const auto& [name, a] : Matrices()) {
        SCOPED_TRACE(name);
        const Svd svd(a);
        const int rows = a.GetRows(), columns = a.GetColumns();
        ASSERT_EQ(svd.U().GetRows(), rows);
        const double tolerance = 1e-14 * std::max(svd.W()[0], 1e-300) * 10;
        for (int i = 0; i < rows; ++i) {
            for (int j = 0; j < columns; ++j) {
                double sum = 0.0;
                for (int k = 0; k < columns; ++k) sum += svd.U()[i][k] * svd.W()[k] * svd.V()[j][k];
                EXPECT_NEAR(sum, a[i][j], tolerance) << i << "," << j;
            }
        }
        EXPECT_TRUE(std::is_sorted(svd.W().rbegin(), svd.W().rend()));
        EXPECT_GE(svd.W().back(), 0.0);
        for (int k = 0; k < columns; ++k) {
            for (int l = 0; l <= k; ++l) {
                EXPECT_NEAR(ColumnDot(svd.V(), k, l), k == l, 1e-13);
                if (svd.W()[k] <= svd.GetThreshold() * 1e3) continue;
                EXPECT_NEAR(ColumnDot(svd.U(), k, l), k == l, 1e-9);
            }
            EXPECT_LE(Negatives(svd.U(), k) + Negatives(svd.V(), k), (rows + columns) / 2);
        }
        EXPECT_DOUBLE_EQ(svd.GetThreshold(), 0.5 * std::sqrt(rows + columns + 1.0) * svd.W()[0] * 0x1p-52);
    }
}

TEST(Svd, SolvesWellConditionedLeastSquaresAsTheNormalEquationsDo) {
    for (const int columns : {4, 7, 10}) {
        const DoubleMatrix a = Random(24, columns, static_cast<unsigned>(columns));
        std::vector<double> b, x(static_cast<std::size_t>(columns));
        for (int i = 0; i < 24; ++i) b.push_back(std::sin(i * 1.7));
        Svd(a).Solve(b, x);
        const std::vector<double> expected = NormalEquations(a, b);
        for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(x[i], expected[i], 1e-12);
    }
}

TEST(Svd, RankOneAndUnderdeterminedSystemsGiveTheShortestSolution) {
    // 24 equal rows a and a mean target of 11.5: x = a 11.5 / |a|^2.
    const Svd equalRows(Make(24, 4, [](int, int j) { return j + 1.0; }));
    std::vector<double> b, x(4);
    for (int i = 0; i < 24; ++i) b.push_back(i);
    equalRows.Solve(b, x);
    for (std::size_t j = 0; j < 4; ++j) EXPECT_NEAR(x[j], (static_cast<double>(j) + 1) * 11.5 / 30, 1e-14);

    // Two orthogonal rows: x is their combination with weights b / |row|^2.
    const double rows[2][4] = {{1, 2, 0, 2}, {2, -1, 4, 0}};
    const std::vector<double> two = {18, 42};
    Svd(Make(2, 4, [&](int i, int j) { return rows[i][j]; })).Solve(two, x);
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(x[static_cast<std::size_t>(j)], 2 * rows[0][j] + 2 * rows[1][j], 1e-14);
}

TEST(Svd, ThrowsItsTextsForBadSizesAndForWhatDoesNotConverge) {
    const Svd svd(Random(5, 4, 9));
    std::vector<double> four(4), five(5), six(6);
    const auto thrown = [](const auto& action) -> std::string {
        try {
            action();
        } catch (const char* text) {
            return text;
        }
        return "nothing";
    };
    EXPECT_EQ(thrown([&] { svd.Solve(six, four); }), "SVD::solve bad sizes");
    EXPECT_EQ(thrown([&] { svd.Solve(five, five); }), "SVD::solve bad sizes");
    EXPECT_EQ(thrown([&] { svd.Solve(five, four); }), "nothing");
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        const auto a = Make(24, 10, [bad](int i, int j) { return i == 3 && j == 2 ? bad : std::cos(i * j + i); });
        EXPECT_EQ(thrown([&] { Svd decomposition(a); }), "no convergence in 30 svdcmp iterations") << bad;
    }
}

TEST(ColorFit, RecoversThePolynomialThatMadeTheTargets) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> draw(0.0f, 1.0f);
    std::vector<NormalisedColor> raw(24), targets(24);
    for (auto& color : raw) color = {draw(random), draw(random), draw(random), 0};
    for (const int terms : {4, 7, 10}) {
        for (std::size_t i = 0; i < raw.size(); ++i) {  // a weight of its own for each term
            const float r = raw[i][0], g = raw[i][1], b = raw[i][2];
            const float four = 0.1f + 0.2f * r + 0.3f * g + 0.4f * b;
            const float seven = 0.5f * r * r + 0.6f * g * g + 0.7f * b * b;
            const float ten = 0.5f * r * r + 0.6f * r * g + 0.7f * r * b + 0.8f * g * g + 0.9f * g * b + b * b;
            targets[i][1] = terms == 4 ? four : terms == 7 ? four + seven : four + ten;
        }
        const auto fit = FitColors(raw, targets, terms);
        ASSERT_TRUE(fit);
        for (int t = 0; t < terms; ++t) {
            EXPECT_NEAR((*fit)[1][t], 0.1 * (t + 1), 5e-5) << terms << " " << t;
            EXPECT_EQ((*fit)[0][t], 0.0);
        }
    }
    for (const int terms : {0, -4, 5, 0x7fffffff}) EXPECT_FALSE(FitColors(raw, targets, terms));
}
