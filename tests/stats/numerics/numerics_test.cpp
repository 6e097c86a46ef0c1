// Decomposition, fits and inverses against values computed with NumPy in double; the incomplete
// beta function against closed forms.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/linear_systems.h"

#include "stats/numerics/special_functions.h"
#include "support/scripted_messages.h"

#include <limits>
#include <numbers>
#include <random>

using namespace numerics;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

void expectNear(std::span<const float> found, std::vector<double> expected, double bound) {
    ASSERT_EQ(found.size(), expected.size());
    for (size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected[i], bound) << "at " << i;
}

std::vector<float> inverse(const std::vector<float>& a, int n) {
    std::vector<float> out(a.size(), 77.0f);
    EXPECT_TRUE(invertMatrix(a, out, n));
    return out;
}

} // namespace

TEST(InvertMatrix, RegularAndSingularMatricesMatchTheReference) {
    expectNear(inverse({4, 1, -2, 1, 3, 0.5f, -2, 0.5f, 5}, 3),
               {0.36875, -0.15, 0.1625, -0.15, 0.4, -0.1, 0.1625, -0.1, 0.275}, 1e-7);
    // Twice the same predictor: the weight is shared.
    expectNear(inverse({8, 8, 8, 8}, 2), {1 / 32., 1 / 32., 1 / 32., 1 / 32.}, 1e-8);
    expectNear(inverse({0, 0, 0, 0}, 2), {0, 0, 0, 0}, 0);
}

TEST(InvertMatrix, SingularValuesDecideWhatIsInverted) {
    expectNear(inverse({1000, 0, 0, 0.0011f}, 2), {0.001, 0, 0, 1 / 0.0011f}, 1e-3);
    expectNear(inverse({1000, 0, 0, 0.0009f}, 2), {0.001, 0, 0, 0}, 1e-9);
    expectNear(inverse({1, infinite, infinite, 1}, 2), {0, 0, 0, 0}, 0);
    expectNear(inverse({notANumber}, 1), {0}, 0);
    for (const bool absolute : {true, false}) {
        setAbsoluteSingularValues(absolute);
        expectNear(inverse({1, 2, 2, 1}, 2), {-1 / 3., 2 / 3., 2 / 3., -1 / 3.}, 1e-7);
    }
}

TEST(InvertNormalMatrix, ManyColumnsFollowTheSameRules) {
    constexpr size_t p = 70;
    constexpr size_t points = 100;
    struct Case {
        const char* what;
        double slope; ///< column 9 = slope * column 8 + part * its own values
        double part;
        int rank;
    };
    const Case cases[] = {{"regular", 0.0, 1.0, p},
                          {"other units", 0.0, 1e-5, p},
                          {"a column of zeros", 0.0, 0.0, p - 1},
                          {"an equal column", 1.0, 0.0, p - 1},
                          {"columns that differ too little", 1.0, 1e-6, p - 1},
                          {"columns that differ enough", 1.0, 1e-4, p}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::mt19937 random(7);
        std::vector<double> x(points * p);
        for (size_t t = 0; t < points; ++t) {
            for (size_t j = 0; j < p; ++j)
                x[t * p + j] = double(random() % 2001) / 1000.0 - 1.0;
            x[t * p + 9] = c.slope * x[t * p + 8] + c.part * x[t * p + 9];
        }
        const auto multiplied = [](const std::vector<double>& a, const std::vector<double>& b) {
            std::vector<double> result(p * p, 0.0);
            for (size_t i = 0; i < p; ++i)
                for (size_t k = 0; k < a.size() / p; ++k)
                    for (size_t j = 0; j < p; ++j)
                        result[i * p + j] += a[k * p + i] * b[k * p + j];
            return result;
        };
        const std::vector<double> xx = multiplied(x, x);
        NormalInverse inverted;
        ASSERT_TRUE(invertNormalMatrix(xx, int(p), inverted));
        EXPECT_EQ(inverted.rank, c.rank);
        // X'X iXX X'X = X'X; all are symmetric.
        const std::vector<double> again = multiplied(xx, multiplied(inverted.inverse, xx));
        for (size_t i = 0; i < xx.size(); ++i)
            ASSERT_NEAR(again[i], xx[i], 1e-6 * std::sqrt(xx[i / p * (p + 1)] * points)) << i;
        // Zeros, or the same weight as the equal column.
        if (c.part == 0.0) {
            EXPECT_NEAR(inverted.inverse[9 * p + 3], c.slope * inverted.inverse[8 * p + 3], 1e-9);
        }
    }
}

TEST(Svdfit, WeightedParabolaMatchesTheReference) {
    const std::vector<float> x = {0, 1, 2, 3, 4, 5, 6};
    const std::vector<float> y = {1, 2.5f, 3.1f, 7.2f, 11.9f, 19, 24.5f};
    const std::vector<float> sigma = {1, 2, 1, 0.5f, 1, 2, 1};
    const auto parabola = [](float at, std::span<float> values) {
        values[0] = 1, values[1] = at, values[2] = at * at;
    };
    SVDFit fit;
    ASSERT_TRUE(svdfit(x, y, sigma, 3, parabola, fit));
    expectNear(fit.coefficients, {0.8992470719, 0.1872141662, 0.6320552147}, 1e-6);
    EXPECT_NEAR(fit.chiSquare, 1.2261712214, 1e-6);
}

TEST(LinearSystems, WithoutSolutionEndTheProgram) {
    RecordedProgramEnd end;
    std::vector<float> u = {1, notANumber, 3, 4}, w(2, 5.0f), v(4, 5.0f), b;
    EXPECT_FALSE(svdcmp(u, 2, 2, w, v));
    expectNear(w, {0, 0}, 0);
    for (std::vector<float> a : {std::vector<float>{1, 2, 2, 4}, {notANumber, notANumber, 1, 1}})
        EXPECT_FALSE(gaussj(a, 2, b, 0));
    EXPECT_EQ(end.statuses, (std::vector<int>{1, 1, 1}));
}

TEST(Betai, MatchesClosedForms) {
    for (const double x : {0.0, 0.1, 0.37, 0.5, 0.9, 1.0}) {
        EXPECT_NEAR(betai(1, 3.5, x), 1 - std::pow(1 - x, 3.5), 1e-9);
        EXPECT_NEAR(betai(2.5, 1, x), std::pow(x, 2.5), 1e-9);
        EXPECT_NEAR(betai(0.5, 0.5, x), 2 / std::numbers::pi * std::asin(std::sqrt(x)), 1e-9);
        EXPECT_NEAR(betai(7, 2.2, x) + betai(2.2, 7, 1 - x), 1.0, 1e-12);
    }
    EXPECT_NEAR(betai(1e6, 1e6, 0.5), 0.5, 1e-6);
}

TEST(Betai, BadArgumentsEndTheProgramWithTheirText) {
    RecordedProgramEnd end;
    testing::internal::CaptureStderr();
    for (const double x : {-0.1, 1.1, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(betai(1, 1, x), 0.0);
    const std::string text = "Numerical Recipes run-time error...\nFATAL ERROR: Bad x in routine "
                             "betai.\n...now exiting to system...\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), text + text + text);
    EXPECT_EQ(betacf(1e12, 1e12, 0.5), 0.0);
    EXPECT_EQ(end.statuses, (std::vector<int>{1, 1, 1, 1}));
}
