// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_quality.h"

#include <gtest/gtest.h>
#include <vector>

TEST(MotionQuality, DisplacementAddsMillimetresAndArcs) {
    const std::array<float, 6> before{1, 2, 3, 0.5f, 0, 0};
    // A degree is an arc of pi / 180 * 50 = 0.872665 mm.
    EXPECT_NEAR(framewiseDisplacement(before, {1.5f, 1.75f, 4, 0.5f, 0, 0}), 1.75, 1e-9);
    EXPECT_NEAR(framewiseDisplacement(before, {1, 2, 3, -0.5f, 0.25f, 0}), 1.25 * 0.8726646, 1e-6);
    EXPECT_NEAR(framewiseDisplacement(before, {1, 2, 3, 0.5f, 0, -1}), 0.8726646, 1e-6);
}

TEST(MotionQuality, DVARSIsTheChangeInPercentOfTheMeanInsideTheMask) {
    const std::vector<int16_t> before{100, 300, 9, 200, 32767};
    const std::vector<int16_t> now{103, 296, 5000, 200, -32768};
    // sqrt((9 + 16 + 0) / 3) / 200
    EXPECT_NEAR(volumeDVARS(before, now, std::vector<uint8_t>{1, 2, 0, 255, 0}), 1.4433757, 1e-6);
    EXPECT_NEAR(volumeDVARS(before, now, std::vector<uint8_t>{0, 0, 0, 0, 1}), 65535 / 327.67,
                1e-9);
    EXPECT_EQ(volumeDVARS(before, now, std::vector<uint8_t>(5, 0)), 0.0);
    EXPECT_EQ(volumeDVARS(before, now, {}), 0.0);
    EXPECT_EQ(volumeDVARS(std::vector<int16_t>{-5, 5}, std::vector<int16_t>{9, 9},
                          std::vector<uint8_t>{1, 1}),
              0.0);
}

TEST(MotionQuality, DVARSOfARunComesInPiecesWhereTheMaskFits) {
    RunVolumes volumes;
    ASSERT_TRUE(volumes.allocate(4, 2));
    for (size_t v = 0; v < 4; ++v)
        std::ranges::fill(volumes[v], int16_t(100 << v));
    RunDVARS run;
    EXPECT_TRUE(run.update(volumes, 4, std::vector<uint8_t>(3, 1), 9));
    EXPECT_TRUE(run.values().empty());
    EXPECT_FALSE(run.update(volumes, 4, std::vector<uint8_t>(2, 1), 2));
    EXPECT_EQ(run.values().size(), 2u);
    EXPECT_TRUE(run.update(volumes, 4, std::vector<uint8_t>(2, 1), 2));
    EXPECT_EQ(run.values().at(3), 100.0f);
}
