// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_betas.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

constexpr int nrOfVolumes = 60;

/// Two conditions, the second from volume 30 on, a constant and a trend; a curve of them with a
/// wave as noise.
struct BetaRun {
    DesignMatrix design;
    Regions regions;

    BetaRun() {
        design.NrOfVolumes = nrOfVolumes;
        design.NrOfConditionPredictors = 2;
        design.NrOfConfoundPredictors = 2;
        design.NrOfPredictors = 4;
        design.PredictorOnsets = {4, 30};
        RegionOfInterest& region = regions.add({});
        for (int t = 0; t < nrOfVolumes; ++t) {
            const double first = t >= 4 ? 0.5 + 0.5 * std::sin(0.4 * t) : 0.0;
            const double second = t >= 30 && t / 5 % 2 == 0 ? 1.0 : 0.0;
            const double row[] = {first, second, 1.0, t / 60.0 * 2 - 1};
            for (size_t j = 0; j < 4; ++j)
                design.PredictorColumns[j].push_back(float(row[j]));
            region.TimeCourseValues.push_back(
                float(1000 + 18 * first - 11 * second + 0.1 * t + 3 * std::cos(1.7 * t)));
        }
        region.CurrentTimePoint = nrOfVolumes - 1;
    }
};

} // namespace

TEST(ROIBetas, AgreeWithLeastSquaresBeforeAndAfterALatePredictor) {
    // From NumPy with pinv(X'X): the betas, the residual variance, and of the inverse the variance
    // of the first condition and the covariance of constant and trend.
    using Solution = std::vector<double>;
    const Solution early{1.80136647, 0,           1002.83665, 2.65332381,
                         5.05060195, 0.237414311, 0.213696973};
    const Solution whole{1.78697874, -1.09075969, 1003.06416, 2.96917157,
                         4.89642290, 0.126135246, 0.011363291};
    for (const auto& [CurrentTimePoint, exact] : {std::pair{29, early}, {59, whole}, {99, whole}}) {
        SCOPED_TRACE(CurrentTimePoint);
        BetaRun run;
        if (CurrentTimePoint == 99)
            run.design.PredictorOnsets.clear();
        RegionOfInterest& region = run.regions[0];
        region.CurrentTimePoint = CurrentTimePoint;
        computeROIBetas(run.regions, run.design, true);
        for (size_t j = 0; j < 4; ++j)
            EXPECT_NEAR(double(region.ROIBetas[j]), exact[j], 2e-3) << j;
        EXPECT_NEAR(double(region.residualVariance), exact[4], 1e-3);
        EXPECT_EQ(region.predictorsInFit, exact[1] == 0.0 ? 3 : 4);
        EXPECT_NEAR(region.BetaCovariance[0], exact[5], 1e-5);
        EXPECT_NEAR(region.BetaCovariance[11], exact[6], 1e-5);
        EXPECT_EQ(region.BetaCovariance[5] == 0.0, exact[1] == 0.0);
    }
}

TEST(ROIBetas, ScaleWithTheConstantAboveAHundredth) {
    for (const auto& [constant, expected] :
         {std::pair{0.009f, 0.5f}, {0.011f, 4545.4545f}, {-0.011f, -4545.4545f}}) {
        BetaRun run;
        RegionOfInterest& region = run.regions[0];
        for (size_t t = 0; t < size_t(nrOfVolumes); ++t)
            region.TimeCourseValues[t] = constant + 0.5f * run.design.PredictorColumns[0][t];
        computeROIBetas(run.regions, run.design, true);
        EXPECT_NEAR(region.ROIBetas[0], expected, std::abs(expected) * 1e-3f);
        EXPECT_NEAR(region.ROIBetas[2], constant, 1e-5f);
    }
}

TEST(ROIBetas, WithoutAModelAreZeroAndTheConstantsIsOne) {
    BetaRun run;
    RegionOfInterest& region = run.regions[0];
    const auto expectUnfitted = [&](std::vector<float> betas) {
        EXPECT_EQ(region.ROIBetas, betas);
        EXPECT_TRUE(region.BetaCovariance.empty());
        EXPECT_EQ(region.residualVariance, 0.0f);
        EXPECT_EQ(region.predictorsInFit, 0);
    };
    computeROIBetas(run.regions, run.design, true);
    computeROIBetas(run.regions, run.design, false);
    expectUnfitted({0, 0, 1, 0});
    // Only the constant is left.
    run.design.PredictorOnsets = {DesignMatrix::noOnset, DesignMatrix::noOnset};
    run.design.NrOfConfoundPredictors = 1;
    run.design.NrOfPredictors = 3;
    computeROIBetas(run.regions, run.design, true);
    expectUnfitted({0, 0, 1});
    // The first condition begins after the end of a shorter curve between two long ones.
    run.design.PredictorOnsets = {4, 30};
    for (const int last : {2, nrOfVolumes - 1}) {
        RegionOfInterest& other = run.regions.add({});
        other.TimeCourseValues = region.TimeCourseValues;
        other.CurrentTimePoint = last;
    }
    computeROIBetas(run.regions, run.design, true);
    EXPECT_EQ(run.regions[1].predictorsInFit, 0);
    EXPECT_EQ(run.regions[2].ROIBetas, region.ROIBetas);
    EXPECT_EQ(region.predictorsInFit, 3);

    // With as many volumes as columns the fit is exact, without degrees of freedom.
    region.CurrentTimePoint = 1;
    run.design.NrOfConfoundPredictors = 2;
    run.design.NrOfPredictors = 4;
    computeROIBetas(run.regions, run.design, true);
    EXPECT_EQ(region.predictorsInFit, 2);
    EXPECT_EQ(region.residualVariance, 0.0f);

    // After a run the columns are gone; what was computed stays.
    const std::vector<float> betas = region.ROIBetas;
    releasePredictorColumns(run.design);
    computeROIBetas(run.regions, run.design, true);
    EXPECT_EQ(region.ROIBetas, betas);
    EXPECT_EQ(region.predictorsInFit, 2);
}
