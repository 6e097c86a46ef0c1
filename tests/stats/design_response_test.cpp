// Responses and convolutions against values computed with SciPy and NumPy in double.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_matrix.h"
#include "stats/hrf.h"

namespace {

void expectNear(const std::vector<float>& found, const std::vector<double>& expected,
                double bound) {
    ASSERT_EQ(found.size(), expected.size());
    for (size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected[i], bound) << "at " << i;
}

} // namespace

TEST(ConvolveWithHRF, MatchesTheReferenceInVolumesAndMilliseconds) {
    const TwoGammaHRFParams params;
    StimulationProtocol protocol;
    std::vector<float> column(18, 0.0f);
    std::fill_n(column.begin() + 2, 6, 1.0f);
    ASSERT_TRUE(convolveWithHRF(column, HRFModel::TwoGamma, 0, params,
                                {.protocol = protocol, .TR = 2000.0f, .NrOfVolumes = 18}, {}));
    expectNear(column,
               {0, 0, 0, 0.08656608, 0.4614543, 0.8463777, 1.062495, 1.139365, 1.140985, 1.023811,
                0.6116165, 0.1958558, -0.04077765, -0.1292914, -0.1367322, -0.1087429, -0.07251417,
                -0.04208724},
               2e-6);
    protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    column.assign(14, 7.0f);
    const std::vector<MillisecondInterval> intervals = {{3000, 9500, "a", 750}};
    ASSERT_TRUE(convolveWithHRF(column, HRFModel::TwoGamma, 14, params,
                                {.protocol = protocol, .TR = 2000.4f, .NrOfVolumes = 14},
                                intervals));
    expectNear(column,
               {0, 0, 0.000536076, 0.0755615, 0.345658, 0.628963, 0.75465, 0.584834, 0.287084,
                0.069364, -0.0393077, -0.0648644, -0.0466269, -0.0191334},
               2e-5);
}

TEST(ConvolveWithHRF, ImpossibleTimesNeitherCrashNorTakeTheMemory) {
    StimulationProtocol protocol;
    protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    for (const float TR : {0.0f, float(NAN)}) {
        std::vector<float> few(5, 1.0f);
        EXPECT_TRUE(convolveWithHRF(few, HRFModel::TwoGamma, 0, TwoGammaHRFParams(),
                                    {.protocol = protocol, .TR = TR, .NrOfVolumes = 5}, {}));
        EXPECT_TRUE(std::ranges::all_of(few, [](float x) { return std::isfinite(x); }));
    }
    std::vector<float> many(1000000, 1.0f);
    EXPECT_FALSE(convolveWithHRF(many, HRFModel::TwoGamma, 0, TwoGammaHRFParams(),
                                 {.protocol = protocol, .TR = 1e9f, .NrOfVolumes = 1000000}, {}));
}
