// Special functions against published tables and closed forms; sorting, splines, products.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/matrix_products.h"
#include "stats/numerics/sorting.h"
#include "stats/numerics/special_functions.h"
#include "stats/numerics/spline.h"

#include "support/scripted_messages.h"

#include <limits>
#include <numbers>

using namespace numerics;

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

TEST(Sorting, IsStableAndPutsWhatIsNotANumberLast) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(indexx(std::vector<float>{3, nan, 1, 3, -2, 1}),
              (std::vector<int>{4, 2, 5, 0, 3, 1}));
    std::vector<float> keys = {2, 1, 2, 0}, companions = {10, 20, 30, 40};
    sort2(keys, companions);
    EXPECT_EQ(keys, (std::vector<float>{0, 1, 2, 2}));
    EXPECT_EQ(companions, (std::vector<float>{40, 20, 10, 30}));
}

TEST(Spline, FollowsTheNaturalSplineOfThreePoints) {
    // Through (0,0), (1,1), (2,0): y'' = -3 in the middle; 1.5 t - 0.5 t^3 on the first piece.
    const std::vector<float> x = {0, 1, 2}, y = {0, 1, 0};
    const std::vector<float> bend = splineSecondDerivatives(x, y);
    EXPECT_EQ(bend, (std::vector<float>{0, -3, 0}));
    for (const float t : {0.0f, 0.25f, 1.0f, 1.5f}) {
        const double s = std::min(t, 2 - t); // symmetric
        EXPECT_NEAR(splineValue(x, y, bend, t), 1.5 * s - 0.5 * std::pow(s, 3), 1e-6);
    }
}

TEST(Products, BlasAgreesWithPlainLoops) {
    initialiseNumerics();
    const std::vector<float> a = {1, 2, 3, 4, 5, 6};  // 2 x 3
    const std::vector<float> b = {1, 0, 2, -1, 3, 1}; // 3 x 2
    std::vector<float> plain(4), blas(4), transposed(9);
    matMul(a, b, plain, 2, 3, 2);
    EXPECT_EQ(plain, (std::vector<float>{14, 1, 32, 1}));
    t_intel_matrix_matrix_mult_f(a.data(), b.data(), blas.data(), 2, 2, 3, false, false);
    EXPECT_EQ(blas, plain);
    t_intel_matrix_matrix_mult_f(a.data(), a.data(), transposed.data(), 3, 3, 2, true, false);
    EXPECT_EQ(transposed, (std::vector<float>{17, 22, 27, 22, 29, 36, 27, 36, 45}));
    t_intel_matrix_matrix_mult_f(a.data(), a.data(), blas.data(), 2, 2, 3, false, true);
    EXPECT_EQ(blas, (std::vector<float>{14, 32, 32, 77}));

    const std::vector<double> d = {1, 2, 3, 4}, e = {5, 6, 7, 8};
    std::vector<double> f(4);
    t_intel_matrix_matrix_mult_d(d.data(), e.data(), f.data(), 2, 2, 2, true, true);
    EXPECT_EQ(f, (std::vector<double>{23, 31, 34, 46}));
}
