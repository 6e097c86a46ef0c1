// The incomplete beta function against closed forms, and its error.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/special_functions.h"

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
