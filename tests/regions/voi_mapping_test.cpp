// Where the voxels of volumes of interest lie in a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/voi_mapping.h"

#include "volume/anatomy/vmr_volume.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr VolumeSize run{64, 64, 20};

C3dMatrix matrixOf(const std::array<float, 12>& rows) {
    C3dMatrix matrix;
    for (size_t i = 0; i < rows.size(); ++i)
        matrix.at(i / 4, i % 4) = rows[i];
    return matrix;
}

VOIMapping mappingBy(const std::array<float, 12>& rows) {
    VOIMapping mapping;
    mapping.cube.cubeToFunctional = matrixOf(rows);
    mapping.functional = run;
    return mapping;
}

std::vector<VOIVoxel> listed(const VoxelList& voxels) {
    std::vector<VOIVoxel> list;
    for (size_t i = 0; i < voxels.size(); ++i)
        list.push_back({voxels.x[i], voxels.y[i], voxels.z[i]});
    return list;
}

MappedVOIs mapped(const VolumeOfInterest& volumes, const VOIMapping& mapping) {
    MappedVOIs result;
    EXPECT_TRUE(mapVOIsToFunctional(volumes, mapping, result));
    return result;
}

// Voxels of 3 x 3.5 x 4 mm, turned by -23 and 17 degrees: matrix and expected voxels from NumPy, in
// double precision. One cube voxel stands there twice.
TEST(VOIMapping, AgreesWithAnotherImplementation) {
    const VOIMapping mapping = mappingBy({0.306835f, 0.130244f, 0, -22.927529f,          //
                                          -0.106759f, 0.251509f, -0.083535f, 21.595054f, //
                                          -0.02856f, 0.067282f, 0.239076f, -25.51936f});
    VolumeOfInterest volumes;
    volumes.add("Inside and outside", {},
                {{205, 149, 159},
                 {197, 141, 175},
                 {185, 79, 49},
                 {128, 127, 128},
                 {199, 40, 127},
                 {60, 121, 182},
                 {128, 127, 128},
                 {214, 181, 178},
                 {162, 148, 99},
                 {187, 68, 190}});
    volumes.add("Outside", {}, {{213, 121, 77}, {185, 79, 49}});
    const MappedVOIs result = mapped(volumes, mapping);
    const MappedVOI& first = result.volumes[0];
    EXPECT_EQ(listed(first.voxels),
              (std::vector<VOIVoxel>{
                  {59, 24, 17}, {33, 29, 10}, {43, 0, 2}, {33, 29, 10}, {46, 33, 3}, {43, 3, 19}}));
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

TEST(VOIMapping, VoxelsOutsideTheCubeAreCountedAndLeftOut) {
    const VOIMapping identity = mappingBy({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0});
    constexpr int largest = std::numeric_limits<int>::max();
    VolumeOfInterest volumes;
    volumes.add("", {},
                {{-1, 0, 0}, {0, 256, 0}, {0, 0, largest}, {-largest - 1, 0, 0}, {7, 8, 9}});
    const MappedVOIs result = mapped(volumes, identity);
    EXPECT_EQ(result.voxelsOutOfRange, 4);
    EXPECT_EQ(listed(result.volumes[0].voxels), (std::vector<VOIVoxel>{{7, 8, 9}}));
}

TEST(VOIMapping, HalvesGoUpAndWhatIsNoPlaceGoesNowhere) {
    VolumeOfInterest volumes;
    volumes.add("", {}, {{5, 63, 19}});
    const std::vector<VOIVoxel> halves{{6, 63, 19}};
    EXPECT_EQ(listed(mapped(volumes, mappingBy({1, 0, 0, 0.5f, 0, 1, 0, 0.49f, 0, 0, 1, -0.5f}))
                         .volumes[0]
                         .voxels),
              halves);
    for (const float bad : {NAN, INFINITY, -INFINITY, 3e38f, -3e38f, 0.5f}) {
        const auto rows =
            std::array{1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, bad};
        EXPECT_EQ(mapped(volumes, mappingBy(rows)).volumes[0].voxels.size(), 0u) << bad;
    }
}

// A brain twice the size of the atlas (70 mm before the AC, 74 above it, 68 beside it).
TEST(VOIMapping, TalairachScalingIsUndoneFirst) {
    TalairachPoints points;
    points.referencePoint1 = {100, 110, 120};
    points.referencePoint2 = {146, 110, 120};
    points.referencePoint3 = {100 - 140, 110, 120};
    points.referencePoint4 = {304, 110, 120};
    points.referencePoint5 = {100, 110 - 148, 120};
    points.referencePoint6 = {100, 194, 120};
    points.referencePoint7 = {100, 110, 120 - 136};
    points.referencePoint8 = {100, 110, 120 + 136};
    VOIMapping mapping = mappingBy({0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 0.5f, -60});
    mapping.talairach = TalairachScaling::fromPoints(points);
    ASSERT_TRUE(mapping.talairach);
    VolumeOfInterest volumes;
    volumes.add("", {}, {{128, 128, 128}, {120, 121, 135}});
    // (100, 110, 120) and (84, 96, 134) in AC-PC space.
    EXPECT_EQ(listed(mapped(volumes, mapping).volumes[0].voxels),
              (std::vector<VOIVoxel>{{50, 55, 0}, {42, 48, 7}}));
}

TEST(VOIMapping, NumbersThatTheImageCanNotHoldStillBecomeRegions) {
    VolumeOfInterest volumes;
    for (int number = 0; number < 256; ++number)
        volumes.add("", {}, {{number, 1, 2}});
    VOIMapping identity = mappingBy({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0});
    identity.functional = {256, 2, 3};
    const MappedVOIs result = mapped(volumes, identity);
    EXPECT_EQ(result.image[cubeIndex(254, 1, 2)], 255);
    EXPECT_EQ(result.image[cubeIndex(255, 1, 2)], 0);
    EXPECT_EQ(result.volumes[255].voxels.x, std::vector{255});
}

} // namespace
