// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/least_squares_motion.h"

#include "volume/head_volume.h"
#include "volume/motion_detail.h"

#include <gtest/gtest.h>

namespace {

constexpr double noise = 10.0;

VolumeGrid headGrid() {
    VolumeGrid grid;
    grid.size = {64, 64, 25};
    grid.spacing = {3.0f, 3.0f, 4.0f};
    return grid;
}

/// Mean distance between the places to which two transformations take the points of a head.
double displacement(const VolumeGrid& grid, const RigidTransformation& a,
                    const RigidTransformation& b) {
    const C3dMatrix first = a.matrix(), second = b.matrix();
    double sum = 0.0;
    int count = 0;
    for (int z = 2; z < grid.size[2] - 2; z += 2)
        for (int y = 10; y < grid.size[1] - 10; y += 4)
            for (int x = 14; x < grid.size[0] - 14; x += 4, ++count) {
                const C3dVector p{grid.position(0, x), grid.position(1, y), grid.position(2, z)};
                const C3dVector q = first * p, r = second * p;
                sum += double(std::hypot(q.x - r.x, q.y - r.y, q.z - r.z));
            }
    return sum / count;
}

class LeastSquaresMotionTest : public testing::Test {
protected:
    void SetUp() override {
        target_.resize(grid_.samples());
        source_.resize(grid_.samples());
        head_.fill({}, noise, 1, target_);
        ASSERT_TRUE(motion_.setTarget(grid_, target_));
    }
    void measure(const RigidTransformation& truth, unsigned seed = 2) {
        head_.fill(truth, noise, seed, source_);
    }
    /// Millimetres that the fit leaves; 1000 when there is none.
    double left(const RigidTransformation& truth, const RigidTransformation& start = {}) {
        const auto found = motion_.fit(source_, start);
        return found ? displacement(grid_, found->transformation, truth) : 1000.0;
    }

    VolumeGrid grid_ = headGrid();
    HeadVolume head_{grid_};
    std::vector<int16_t> target_;
    std::vector<int16_t> source_;
    LeastSquaresMotion motion_;
};

// The noise of the two volumes alone moves the best fit by 0.007 mm on this head.
TEST_F(LeastSquaresMotionTest, FindsDriftAndJumps) {
    for (const RigidTransformation& truth :
         {RigidTransformation{}, RigidTransformation{0.3f, -0.2f, 0.4f, 0.3f, -0.5f, 0.2f},
          RigidTransformation{-1.0f, 0.4f, 0.6f, 0.7f, 0.5f, -1.0f},
          RigidTransformation{2.0f, -3.0f, 1.0f, -2.0f, 1.0f, 3.0f}}) {
        measure(truth);
        EXPECT_LT(left(truth), 0.012) << truth.tx;
    }
    const RigidTransformation far{5.0f, -4.0f, 6.0f, -5.0f, 4.0f, 6.0f};
    measure(far);
    EXPECT_LT(left(far, {4.0f, -3.0f, 4.5f, -4.0f, 3.0f, 5.0f}), 0.018);
}

// What an edge of one voxel is between the voxels nobody knows; a fit of the spline through them
// leaves 0.066 mm of the second motion.
TEST_F(LeastSquaresMotionTest, SharpEdgesPullLittle) {
    head_ = HeadVolume(grid_, 1, 1.0);
    head_.fill({}, noise, 1, target_);
    ASSERT_TRUE(motion_.setTarget(grid_, target_));
    for (const RigidTransformation& truth :
         {RigidTransformation{}, RigidTransformation{0.8f, -0.5f, 0.6f, 0.6f, -0.5f, 0.2f},
          RigidTransformation{1.5f, -2.5f, 1.0f, -2.0f, 1.0f, 1.5f}}) {
        measure(truth);
        EXPECT_LT(left(truth), 0.03) << truth.tx;
    }
}

TEST(AxesTooSharp, TellsWavesByTheirLength) {
    VolumeGrid grid;
    grid.size = {70, 9, 4};
    std::vector<int16_t> volume(grid.samples());
    const auto measured = [&](double alongX, double alongY) {
        for (size_t i = 0; i < volume.size(); ++i)
            volume[i] = int16_t(
                2000.0 + 900.0 * std::sin(2.0 * std::numbers::pi *
                                          (double(i % 70) / alongX + double(i / 70 % 9) / alongY)));
        return axesTooSharp(grid, volume);
    };
    using Axes = std::array<bool, 3>;
    EXPECT_EQ(measured(4.5, 20.0), (Axes{false, false, false}));
    EXPECT_EQ(measured(3.9, 20.0), (Axes{true, false, false}));
    EXPECT_EQ(measured(50.0, 3.3), (Axes{false, true, false}));
    volume.assign(volume.size(), -1);
    EXPECT_EQ(axesTooSharp(grid, volume), (Axes{false, false, false}));
}

TEST_F(LeastSquaresMotionTest, ResidualIsTheNoiseOfBothVolumes) {
    measure({0.3f, 0.1f, 0.2f, 0.1f, 0.2f, 0.3f});
    const auto found = motion_.fit(source_, {});
    ASSERT_TRUE(found);
    // The slices of this head are too thick for its edges. Smoothing along an axis leaves
    // sqrt(66 * 66 + 2 * 26 * 26 + 2) / 120 of the noise of the target, interpolation less of that
    // of the volume.
    EXPECT_GT(found->residual, noise * 1.4142 * 0.6297 * 0.8);
    EXPECT_LT(found->residual, noise * 1.4142 * 0.6297 * 1.05);
}

// A part of the brain is active, in a cluster, and the brightness of everything drifts.
TEST_F(LeastSquaresMotionTest, ChangesOfTheSignalPullLittle) {
    const RigidTransformation truth{0.2f, -0.3f, 0.1f, 0.4f, 0.2f, -0.3f};
    measure(truth);
    const double undisturbed = left(truth);
    for (int z = 8; z < 17; ++z)
        for (int y = 20; y < 36; ++y)
            for (int x = 22; x < 38; ++x)
                source_[size_t((z * 64 + y) * 64 + x)] =
                    int16_t(source_[size_t((z * 64 + y) * 64 + x)] * 103 / 100);
    EXPECT_LT(left(truth), undisturbed + 0.004);
    for (int16_t& sample : source_)
        sample = int16_t(sample * 9 / 10);
    EXPECT_LT(left(truth), undisturbed + 0.004);
}

// A sixth of the head has left the field of view along the slices.
TEST_F(LeastSquaresMotionTest, WhatIsOutsideTheVolumeDoesNotCount) {
    const RigidTransformation truth{0.0f, 0.0f, 16.0f, 0.0f, 0.0f, 0.0f};
    measure(truth);
    EXPECT_LT(left(truth, {0.0f, 0.0f, 14.0f, 0.0f, 0.0f, 0.0f}), 0.01);
}

TEST_F(LeastSquaresMotionTest, RefusesWhatIsNoVolumeOfTheRun) {
    const std::vector<int16_t> blank(grid_.samples(), 0);
    EXPECT_FALSE(motion_.fit(blank, {}));
    EXPECT_FALSE(motion_.fit(std::vector<int16_t>(grid_.samples(), -1), {}));
    EXPECT_FALSE(motion_.fit(std::span(source_).first(100), {}));
    measure({});
    EXPECT_FALSE(motion_.fit(source_, {500.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f}));
    // A blank target tells nothing of any volume.
    ASSERT_TRUE(motion_.setTarget(grid_, blank));
    EXPECT_FALSE(motion_.fit(source_, {}));
}

// As a damaged header states them: positions in millimetres are infinite, or no numbers.
TEST_F(LeastSquaresMotionTest, VoxelsOfAnAbsurdSizeGiveNoMotion) {
    for (const float spacing : {1e38f, 1e-40f}) {
        VolumeGrid grid = grid_;
        grid.spacing = {spacing, spacing, spacing};
        ASSERT_TRUE(motion_.setTarget(grid, target_));
        EXPECT_FALSE(motion_.fit(target_, {})) << spacing;
    }
}

TEST(RigidTransformationOfAMatrix, GivesTheParametersBack) {
    const RigidTransformation t{1.5f, -2.0f, 0.25f, 10.0f, -20.0f, 170.0f};
    const RigidTransformation found = rigidTransformation(t.matrix());
    EXPECT_NEAR(found.tx, t.tx, 1e-5f);
    EXPECT_NEAR(found.ty, t.ty, 1e-5f);
    EXPECT_NEAR(found.tz, t.tz, 1e-5f);
    EXPECT_NEAR(found.rx, t.rx, 1e-4f);
    EXPECT_NEAR(found.ry, t.ry, 1e-4f);
    EXPECT_NEAR(found.rz, t.rz, 1e-4f);
}

} // namespace
