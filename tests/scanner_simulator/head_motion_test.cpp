// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/simulated_scan.h"

#include <gtest/gtest.h>

TEST(SimulatedMotion, MovesTheHeadAsItSays) {
    SimulationOptions options;
    options.motion = HeadMotion::Jumps;
    options.noise = 0.0;
    options.fieldOfView = 64; // pixels of 1 mm, so that the first jump is one pixel along x
    options.amplitude = 0.0;
    const SimulatedScan scan(options);
    const int jump = 2 + 38; // a quarter of 150 volumes after the skipped ones
    EXPECT_TRUE(scan.pose(jump - 1).isAtRest());
    EXPECT_DOUBLE_EQ(scan.pose(jump).translation[0], 1.0);
    const std::vector<uint16_t> before = scan.volume(jump - 1);
    const std::vector<uint16_t> after = scan.volume(jump);
    for (size_t x = 1; x < 64; ++x) { // drift and pulsation change it by less than a percent
        const size_t voxel = (12 * 64 + 32) * 64 + x;
        EXPECT_NEAR(after[voxel], before[voxel - 1], 0.012 * before[voxel - 1]) << x;
    }
}

TEST(SimulatedMotion, TurnsCounterClockwiseAboutX_Y_Z) {
    // A quarter turn about each axis in this order takes x to -z, y to y, z to x.
    HeadPose pose;
    pose.rotation[0] = pose.rotation[1] = pose.rotation[2] = 90.0;
    pose.translation[1] = 5.0;
    const PoseInverse toHead(pose);
    const Point point = toHead({3.0, 2.0 + 5.0, -1.0}); // position of the head's (1, 2, 3)
    EXPECT_NEAR(point.x, 1.0, 1e-12);
    EXPECT_NEAR(point.y, 2.0, 1e-12);
    EXPECT_NEAR(point.z, 3.0, 1e-12);
}
