// Where the voxels of volumes of interest lie in a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/voi_mapping.h"

#include "volume/anatomy/vmr_volume.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

/// Coordinates of voxel after voxel.
using Coordinates = std::vector<int>;

VOIMapping mappingBy(const std::array<float, 12>& rows) {
    VOIMapping mapping;
    for (size_t i = 0; i < rows.size(); ++i)
        mapping.cube.cubeToFunctional.at(i / 4, i % 4) = rows[i];
    mapping.functional = {64, 64, 20};
    return mapping;
}

void add(VolumeOfInterest& volumes, const Coordinates& coordinates) {
    std::vector<VOIVoxel> voxels;
    for (size_t i = 0; i < coordinates.size(); i += 3)
        voxels.push_back({coordinates[i], coordinates[i + 1], coordinates[i + 2]});
    volumes.add("", {}, voxels);
}

Coordinates coordinatesOf(const MappedVOI& volume) {
    Coordinates coordinates;
    for (size_t i = 0; i < volume.voxels.size(); ++i)
        coordinates.insert(coordinates.end(),
                           {volume.voxels.x[i], volume.voxels.y[i], volume.voxels.z[i]});
    return coordinates;
}

MappedVOIs mapped(const VolumeOfInterest& volumes, const VOIMapping& mapping) {
    MappedVOIs result;
    EXPECT_TRUE(mapVOIsToFunctional(volumes, mapping, result));
    return result;
}

// Voxels of 3 x 3.5 x 4 mm, turned by -23 and 17 degrees: matrix and expected voxels from NumPy, in
// double precision. One voxel stands there twice.
TEST(VOIMapping, AgreesWithAnotherImplementation) {
    VolumeOfInterest volumes;
    add(volumes, {205, 149, 159, 197, 141, 175, 185, 79,  49,  128, 127, 128, 199, 40, 127,
                  60,  121, 182, 128, 127, 128, 214, 181, 178, 162, 148, 99,  187, 68, 190});
    add(volumes, {213, 121, 77, 185, 79, 49});
    const MappedVOIs result = mapped(
        volumes, mappingBy({0.306835f, 0.130244f, 0, -22.927529f, -0.106759f, 0.251509f, -0.083535f,
                            21.595054f, -0.02856f, 0.067282f, 0.239076f, -25.51936f}));
    const MappedVOI& first = result.volumes[0];
    EXPECT_EQ(coordinatesOf(first),
              (Coordinates{59, 24, 17, 33, 29, 10, 43, 0, 2, 33, 29, 10, 46, 33, 3, 43, 3, 19}));
    EXPECT_EQ((std::array{first.minX, first.maxX, first.minY, first.maxY, first.minZ, first.maxZ}),
              (std::array{33, 59, 0, 33, 2, 19}));
    EXPECT_EQ(first.slice, 11); // of 2 and 19, halves up
    EXPECT_FALSE(first.sliceOutOfBounds);
    EXPECT_EQ(result.volumes[1].voxels.size(), 0u);
    EXPECT_TRUE(result.volumes[1].sliceOutOfBounds);
    ASSERT_EQ(result.image.size(), cubeVoxels);
    EXPECT_EQ(result.image[cubeIndex(205, 149, 159)], 1);
    EXPECT_EQ(result.image[cubeIndex(185, 79, 49)], 2);
    EXPECT_EQ(std::ranges::count(result.image, 0), std::ptrdiff_t(cubeVoxels) - 10);
}

TEST(VOIMapping, HalvesGoUpAndWhatIsNoPlaceGoesNowhere) {
    constexpr int largest = std::numeric_limits<int>::max();
    VolumeOfInterest volumes;
    add(volumes, {-1, 0, 0, 0, 256, 0, 0, 0, largest, -largest - 1, 0, 0, 5, 63, 19});
    const std::pair<float, Coordinates> cases[] = {{-0.5f, {6, 63, 19}}, {0.5f, {}},  {NAN, {}},
                                                   {INFINITY, {}},       {3e38f, {}}, {-3e38f, {}}};
    for (const auto& [shift, expected] : cases) {
        const MappedVOIs result =
            mapped(volumes, mappingBy({1, 0, 0, 0.5f, 0, 1, 0, 0.49f, 0, 0, 1, shift}));
        EXPECT_EQ(coordinatesOf(result.volumes[0]), expected) << shift;
        EXPECT_EQ(result.voxelsOutOfRange, 4);
    }
}

// A brain twice the size of the atlas (70 mm before the AC, 74 above it, 68 beside it).
TEST(VOIMapping, TalairachScalingIsUndoneFirst) {
    constexpr int x = 100, y = 110, z = 120; // of the AC
    VOIMapping mapping = mappingBy({0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 0.5f, -60});
    mapping.talairach = TalairachScaling::fromPoints({2,
                                                      "",
                                                      {x, y, z},
                                                      {146, y, z},
                                                      {x - 140, y, z},
                                                      {304, y, z},
                                                      {x, y - 148, z},
                                                      {x, 194, z},
                                                      {x, y, z - 136},
                                                      {x, y, z + 136}});
    ASSERT_TRUE(mapping.talairach);
    VolumeOfInterest volumes;
    add(volumes, {128, 128, 128, 120, 121, 135}); // (100, 110, 120), (84, 96, 134) in AC-PC space
    EXPECT_EQ(coordinatesOf(mapped(volumes, mapping).volumes[0]),
              (Coordinates{50, 55, 0, 42, 48, 7}));
}

} // namespace
