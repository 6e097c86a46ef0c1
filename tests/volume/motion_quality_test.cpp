// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_quality.h"

#include <cmath>
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

TEST(MotionQuality, CoursesLeaveOutWhatHasNoVolumeBefore) {
    MotionCorrection motion;
    ASSERT_TRUE(motion.allocateMotionParameters(4));
    for (size_t v = 0; v < 4; ++v)
        motion.motionParameters[1][v] = float(v * v); // steps of 1, 3 and 5 mm
    const std::vector<float> whole = framewiseDisplacements(motion, 5, 1);
    ASSERT_EQ(whole.size(), 5U);
    EXPECT_TRUE(std::isnan(whole[0]) && std::isnan(whole[4]));
    EXPECT_EQ((std::vector<float>{whole.begin() + 1, whole.begin() + 4}),
              (std::vector<float>{1, 3, 5}));
    EXPECT_TRUE(std::isnan(framewiseDisplacements(motion, 3, 2)[1]));
    EXPECT_EQ(framewiseDisplacements(motion, 3, 2)[2], 3.0f);

    RunVolumes volumes;
    ASSERT_TRUE(volumes.allocate(4, 2));
    for (size_t v = 0; v < 4; ++v)
        volumes[v][0] = volumes[v][1] = int16_t(100 + 10 * v);
    const std::vector<uint8_t> mask(2, 1);
    RunDVARS dvars;
    EXPECT_TRUE(dvars.update(volumes, 2, {}, 1)) << "the mask is not made yet";
    EXPECT_TRUE(dvars.values().empty());
    EXPECT_FALSE(dvars.update(volumes, 3, mask, 2));
    EXPECT_TRUE(dvars.update(volumes, 3, mask, 1));
    volumes[1][0] = 0; // what is known is not computed again
    EXPECT_TRUE(dvars.update(volumes, 9, mask, 9));
    ASSERT_EQ(dvars.values().size(), 4U);
    EXPECT_TRUE(std::isnan(dvars.values()[0]));
    for (size_t v = 1; v < 4; ++v)
        EXPECT_NEAR(dvars.values()[v], 1000.0 / (90.0 + 10.0 * double(v)), 1e-5) << v;
}
