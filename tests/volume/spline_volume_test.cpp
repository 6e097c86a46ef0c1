// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/spline_volume.h"

#include "volume/head_volume.h"
#include "volume/spline_resampling.h"

#include <gtest/gtest.h>

namespace {

std::vector<int16_t> patternOf(const VolumeGrid& grid) {
    std::vector<int16_t> samples;
    for (int z = 0; z < grid.size[2]; ++z)
        for (int y = 0; y < grid.size[1]; ++y)
            for (int x = 0; x < grid.size[0]; ++x)
                samples.push_back(int16_t(
                    (37 * x * x + 101 * y * z + 53 * x * z + 211 * ((x + 2 * y + 3 * z) % 4)) %
                    1000));
    return samples;
}

// make_spline_values.py
TEST(SplineVolume, ValuesAreThoseOfAnotherProgram) {
    const std::array<float, 6> xs{0, 2.25f, 0.1f, 4.6f, 5, 3.5f}, ys{0, 1.5f, 3.9f, 0.3f, 4, 2},
        zs{0, 1.75f, 2.9f, 0.5f, 3, 1};
    const std::tuple<SplineDegree, std::array<bool, 3>, std::array<float, 6>> cases[] = {
        {SplineDegree::Cubic, {}, {0.0f, 911.3541f, 431.6465f, 271.5921f, 354.0f, 343.3804f}},
        {SplineDegree::Quintic, {}, {0.0f, 965.0721f, 430.2296f, 266.6778f, 354.0f, 334.6323f}},
        {SplineDegree::Quintic,
         {true, false, true},
         {0.0f, 654.9127f, 437.3678f, 330.7809f, 354.0f, 508.3970f}}};
    const VolumeGrid grid = gridOf({6, 5, 4});
    for (const auto& [degree, smoothed, expected] : cases) {
        SplineVolume spline;
        ASSERT_TRUE(spline.allocate(grid, degree));
        spline.smoothAlong(smoothed);
        // The second time from the borders that the first one left.
        for (const std::vector<int16_t>& samples :
             {std::vector<int16_t>(grid.samples(), -1), patternOf(grid)})
            spline.setSamples(samples);
        std::array<float, 6> values{};
        spline.sample({xs.data(), ys.data(), zs.data()}, values.size(), values.data());
        for (size_t i = 0; i < values.size(); ++i)
            EXPECT_NEAR(values[i], expected[i], 2e-3f) << int(degree) << " " << i;
    }
}

TEST(SplineVolume, SlopesAreThoseOfItsValues) {
    const VolumeGrid grid = gridOf({9, 8, 7});
    for (const SplineDegree degree : {SplineDegree::Cubic, SplineDegree::Quintic}) {
        SplineVolume spline;
        ASSERT_TRUE(spline.allocate(grid, degree));
        spline.setSamples(patternOf(grid));
        for (size_t axis = 0; axis < 3; ++axis) {
            constexpr float step = 1.0f / 16.0f;
            std::array<std::array<float, 2>, 3> at{{{4, 4}, {3, 3}, {2, 2}}};
            at[axis][0] -= step;
            at[axis][1] += step;
            std::array<float, 2> values{};
            spline.sample({at[0].data(), at[1].data(), at[2].data()}, 2, values.data());
            const float difference = (values[1] - values[0]) / (2.0f * step);
            EXPECT_NEAR(spline.slope(axis, {4, 3, 2}), difference,
                        std::abs(difference) * 0.02f + 1.0f)
                << axis;
        }
    }
}

// As flat as a volume can be, and with a side shorter than the spline.
TEST(SplineVolume, SmallVolumesStayInBounds) {
    for (const std::array<int, 3> size :
         {std::array{1, 1, 1}, std::array{2, 1, 3}, std::array{1, 7, 2}}) {
        const VolumeGrid grid = gridOf(size);
        const std::vector<int16_t> samples(grid.samples(), -5); // 65531
        for (const SplineDegree degree : {SplineDegree::Cubic, SplineDegree::Quintic}) {
            SplineVolume spline;
            ASSERT_TRUE(spline.allocate(grid, degree));
            spline.setSamples(samples);
            const std::array<float, 4> x{-50.0f, 0.4f, 50.0f, std::nanf("")};
            std::array<float, 4> values{};
            spline.sample({x.data(), x.data(), x.data()}, values.size(), values.data());
            for (const float value : values)
                EXPECT_NEAR(value, 65531.0f, 0.5f);
        }
    }
}

TEST(SplineResampling, MovesVoxelsAndLimitsValues) {
    const VolumeGrid grid = gridOf({8, 6, 5}, {2.0f, 3.0f, 4.0f});
    std::vector<int16_t> samples = patternOf(grid);
    samples[0] = -1; // 65535, beside much smaller ones: the spline overshoots
    SplineVolume spline;
    ASSERT_TRUE(spline.allocate(grid, SplineDegree::Cubic));
    spline.setSamples(samples);
    std::vector<int16_t> moved(samples.size());
    resampleVolume(spline, moved, {});
    EXPECT_EQ(moved, samples);
    // A voxel to the left and two slices up: result(p) = source(p - t).
    resampleVolume(spline, moved, {2.0f, 0.0f, -8.0f, 0.0f, 0.0f, 0.0f});
    const auto at = [&grid](const std::vector<int16_t>& volume, int x, int y, int z) {
        return volume[size_t((z * grid.size[1] + y) * grid.size[0] + x)];
    };
    for (int z = 0; z < 5; ++z)
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 8; ++x) {
                const bool inside = x >= 1 && z < 3;
                EXPECT_EQ(at(moved, x, y, z), inside ? at(samples, x - 1, y, z + 2) : 0);
            }
    // Between bright and dark the spline is above and below what samples can be.
    resampleVolume(spline, moved, {0.4f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f});
    EXPECT_GT(int(uint16_t(at(moved, 0, 0, 0))), 60000);
    resampleVolume(spline, moved, {-3.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f});
    EXPECT_EQ(at(moved, 0, 0, 0), 0);
}

} // namespace
