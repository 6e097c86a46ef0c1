// The cube of functional intensities against interpolation of each voxel for itself.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/functional_cube.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

std::vector<int16_t> randomSamples(const VolumeGeometry& geometry) {
    std::vector<int16_t> samples(geometry.volumeSamples());
    std::minstd_rand random(3);
    for (int16_t& sample : samples)
        sample = int16_t(uint16_t(random() >> 9 & 0xffff)); // above 32767 too
    return samples;
}

struct PlainCube {
    const FunctionalSlices& slices;

    double sample(double x, double y, double z) const {
        const auto& g = slices.geometry;
        return uint16_t(
            slices.samples[(size_t(z) * size_t(g.ResolutionY) + size_t(y)) * size_t(g.ResolutionX) +
                           size_t(x)]);
    }
    /// The intensity before it is truncated; below 0 outside of the run.
    double at(int x, int y, int z) const {
        const auto& g = slices.geometry;
        const double sizes[] = {g.pixelSizeX, g.pixelSizeY, g.sliceDistance()};
        const int counts[] = {g.ResolutionX, g.ResolutionY, g.NrOfSlices};
        const int cube[] = {z, x, slices.mirrorSlices ? 255 - y : y};
        double low[3], high[3], share[3];
        for (int k = 0; k < 3; ++k) {
            const double p = (cube[k] - 127.5) / sizes[k] + (counts[k] - 1) / 2.0;
            if (p < -0.5 || p >= counts[k] - 0.5)
                return -1.0;
            const double inside = std::clamp(p, 0.0, counts[k] - 1.0);
            low[k] = std::floor(inside);
            high[k] = std::ceil(inside);
            share[k] = inside - low[k];
        }
        double value = 0.0;
        for (int corner = 0; corner < 8; ++corner) {
            const auto pick = [&](int k) { return corner >> k & 1 ? high[k] : low[k]; };
            const auto weight = [&](int k) { return corner >> k & 1 ? share[k] : 1.0 - share[k]; };
            value += weight(0) * weight(1) * weight(2) * sample(pick(0), pick(1), pick(2));
        }
        const double scaled = (value - slices.low) / (slices.high - slices.low) * 215.0 + 10.5;
        return std::clamp(scaled, 0.0, 225.0);
    }
};

TEST(FunctionalCube, HoldsTrilinearIntensities) {
    const std::pair<VolumeGeometry, bool> cases[] = {
        {{64, 48, 18, 3.0f, 3.2f, 3.0f, 0.8f}, false},
        {{20, 31, 7, 6.5f, 4.1f, 9.0f, -0.5f}, true},
        {{128, 96, 1, 2.5f, 2.5f, 5.0f}, false}, // beyond the cube; one slice
        {{90, 80, 70, 0.4f, 0.5f, 0.3f}, true},
    };
    int first = 0;
    for (const auto& [geometry, mirrored] : cases) {
        const std::vector<int16_t> samples = randomSamples(geometry);
        const FunctionalSlices slices{samples, geometry, 8000, 50000, mirrored};
        VMRVolume volume;
        ASSERT_TRUE(mapFunctionalToCube(slices, volume));
        size_t wrong = 0, filled = 0;
        // Every third plane, others in each case: all of them take long.
        for (int z = first++ % 3; z < cubeSide; z += 3) {
            for (int y = 0; y < cubeSide; ++y) {
                for (int x = 0; x < cubeSide; ++x) {
                    const double plain = PlainCube{slices}.at(x, y, z);
                    const int actual = volume.cube[cubeIndex(x, y, z)];
                    filled += plain >= 0.0;
                    // Sums in float may fall on the other side of a whole number.
                    wrong +=
                        plain < 0.0 ? actual != 0 : plain < actual - 1e-3 || plain > actual + 1.001;
                }
            }
        }
        EXPECT_EQ(wrong, 0u) << geometry.ResolutionX;
        EXPECT_GT(filled, 10000u);
    }
}

TEST(FunctionalCube, ItsMappingPointsAtTheVoxelsThatFilledIt) {
    const VolumeGeometry geometry{64, 48, 18, 3.0f, 3.0f, 4.0f};
    std::vector<int16_t> samples(geometry.volumeSamples());
    samples[size_t((13 * 48 + 40) * 64 + 9)] = 1000;
    for (const bool mirrored : {false, true}) {
        VMRVolume volume;
        ASSERT_TRUE(mapFunctionalToCube({samples, geometry, 0, 1000, mirrored}, volume));
        const auto mapping = functionalCubeMapping(geometry, mirrored);
        ASSERT_TRUE(mapping);
        const C3dVector at = mapping->functionalToCube * C3dVector{9, 40, 13};
        // Cube X along functional rows, 127.5 + (40 - 23.5) * 3; Y along slices, (13 - 8.5) * 4;
        // Z along columns, (9 - 31.5) * 3.
        EXPECT_NEAR(at.x, 177.0f, 1e-3);
        EXPECT_NEAR(at.y, mirrored ? 109.5f : 145.5f, 1e-3);
        EXPECT_NEAR(at.z, 60.0f, 1e-3);
        EXPECT_GT(volume.cube[cubeIndex(177, int(at.y), 60)], 100);
    }
}

TEST(FunctionalCube, RefusesSizesThatAreNone) {
    const std::vector<int16_t> samples(64);
    VMRVolume volume;
    const VolumeGeometry cases[] = {{4, 4, 4, 0, 3, 3},
                                    {4, 4, 4, 3, 3, 3, -3},
                                    {4, 4, 4, 3, NAN, 3},
                                    {4, 0, 4, 3, 3, 3},
                                    {4, 4, 5, 3, 3, 3}};
    for (const VolumeGeometry& geometry : cases)
        EXPECT_FALSE(mapFunctionalToCube({samples, geometry, 0, 1, false}, volume));
    // A window without a width.
    EXPECT_TRUE(mapFunctionalToCube({samples, VolumeGeometry{4, 4, 4, 3, 3, 3}, 7, 7}, volume));
}

} // namespace
