// The chain against the table of make_chain_expected.py, and what headers and files may hold.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/files.h"
#include "volume/anatomy/coordinate_chain.h"

#include <QList>
#include <limits>

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

Vector3 vectorAt(const std::vector<float>& numbers, size_t start) {
    return {numbers[start], numbers[start + 1], numbers[start + 2]};
}

void expectNear(const C3dVector& actual, const Vector3& expected, double tolerance) {
    EXPECT_NEAR(actual.x, expected[0], tolerance);
    EXPECT_NEAR(actual.y, expected[1], tolerance);
    EXPECT_NEAR(actual.z, expected[2], tolerance);
}

FMRPositionInfo record(const std::vector<float>& numbers) {
    FMRPositionInfo position;
    position.positionInfoValid = 1;
    position.sliceCenterFirst = vectorAt(numbers, 0);
    position.sliceCenterLast = vectorAt(numbers, 3);
    position.rowDirection = vectorAt(numbers, 6);
    position.columnDirection = vectorAt(numbers, 9);
    return position;
}

// As the protocol block of a measured mosaic states it: 64 x 64 x 18 voxels of 3 x 3 x 3.8 mm.
const std::vector<float> measured{
    0, -25.6144122f,   -69.8323835f,  0, -15.063555f, -6.09982191f, 1, 0, 0,
    0, 0.98657216211f, -0.1633259592f};

TEST(CoordinateChain, AgreesWithGeometryInScannerCoordinates) {
    FMRPositionInfo vmr, functional;
    C3dMatrix alignment;
    std::optional<CubeMapping> mapping;
    int points = 0;
    for (const QByteArray& line :
         contentOf(VELO_SOURCE_DIR "/tests/volume/anatomy/expected_chain.tsv").split('\n')) {
        const QList<QByteArray> cells = line.split('\t');
        std::vector<float> numbers;
        for (qsizetype i = 1; i < cells.size(); ++i)
            numbers.push_back(cells[i].toFloat());
        if (cells[0] == "vmr") {
            vmr = record(numbers);
        } else if (cells[0] == "functional") {
            functional = record(numbers);
        } else if (cells[0] == "alignment") {
            for (size_t i = 0; i < 16; ++i)
                alignment.at(i / 4, i % 4) = numbers[i];
        } else if (cells[0] == "grid") {
            const VolumeGeometry geometry{int(numbers[0]), int(numbers[1]), int(numbers[2]),
                                          numbers[3],      numbers[4],      numbers[5]};
            const auto chain = computeHeaderAlignment(vmr, functional, alignment);
            ASSERT_TRUE(chain);
            const auto matrix = vmrToFunctionalMatrix(chain->aligned, geometry);
            ASSERT_TRUE(matrix);
            mapping = cubeMapping(*matrix, geometry, numbers[6] != 0.0f);
            ASSERT_TRUE(mapping);
        } else if (cells[0] == "point") {
            ++points;
            const Vector3 cube = vectorAt(numbers, 0), voxel = vectorAt(numbers, 3);
            expectNear(mapping->cubeToFunctional * C3dVector{cube[0], cube[1], cube[2]}, voxel,
                       1e-4);
            expectNear(mapping->functionalToCube * C3dVector{voxel[0], voxel[1], voxel[2]}, cube,
                       1e-3);
        }
    }
    EXPECT_EQ(points, 72);
}

// The first voxel's centre follows from the corner and the size of the whole mosaic in the headers
// of the same file.
TEST(CoordinateChain, VoxelsLieWhereTheHeadersPlaceThem) {
    constexpr Vector3 firstVoxel{-96.0f, -120.32533987f, -54.15309012f};
    // 63 * 3 mm along rows and columns and 17 * 3.8 mm along the slices away from it.
    constexpr Vector3 lastVoxel{93.0f, 76.687656f, -21.289135f};
    const VolumeGeometry geometry{64, 64, 18, 3.0f, 3.0f, 3.8f};
    std::vector<float> oneSliceTooFar = measured;
    oneSliceTooFar[4] += 10.5508572f / 17;
    oneSliceTooFar[5] += 63.7325616f / 17;
    for (const std::vector<float>& headers : {measured, oneSliceTooFar}) {
        const auto frame = frameToScanner(centredOnGrid(record(headers), geometry));
        ASSERT_TRUE(frame);
        expectNear(*frame * C3dVector{-31.5f * 3, -31.5f * 3, -8.5f * 3.8f}, firstVoxel, 1e-3);
        expectNear(*frame * C3dVector{31.5f * 3, 31.5f * 3, 8.5f * 3.8f}, lastVoxel, 1e-3);
    }
}

TEST(CoordinateChain, OneSliceLiesAcrossItsDirections) {
    std::vector<float> oneSlice = measured;
    std::copy_n(oneSlice.begin(), 3, oneSlice.begin() + 3);
    const auto frame = frameToScanner(record(oneSlice));
    ASSERT_TRUE(frame);
    expectNear(*frame * C3dVector{0, 0, 100}, {0, -25.614f + 16.333f, -69.832f + 98.657f}, 0.01);
}

TEST(CoordinateChain, RefusesWhatHasNoPlace) {
    C3dMatrix flat = C3dMatrix::scale(1, 1, 0), undefined, projective;
    undefined.at(0, 3) = notANumber;
    projective.at(3, 0) = 0.5f;
    for (const C3dMatrix& alignment : {flat, undefined, projective})
        EXPECT_FALSE(computeHeaderAlignment(record(measured), record(measured), alignment));

    const FMRPositionInfo good = record(measured);
    std::vector<FMRPositionInfo> bad(5, good);
    bad[0].rowDirection = {};
    bad[1].columnDirection = bad[1].rowDirection;
    bad[2].sliceCenterLast[1] = notANumber;
    bad[3].rowDirection[0] = std::numeric_limits<float>::infinity();
    bad[4].sliceCenterLast[0] += 30.0f; // a stack that leans
    for (const FMRPositionInfo& position : bad) {
        EXPECT_FALSE(computeHeaderAlignment(position, good, C3dMatrix()));
        EXPECT_FALSE(computeHeaderAlignment(good, position, C3dMatrix()));
    }
    for (const float size : {0.0f, -1.0f, notANumber}) {
        EXPECT_FALSE(vmrToFunctionalMatrix(C3dMatrix(), VolumeGeometry{64, 64, 18, size, 3, 3}));
        EXPECT_FALSE(vmrToFunctionalMatrix(C3dMatrix(), VolumeGeometry{64, 64, 18, 3, 3, size}));
    }
}

TEST(CoordinateChain, HalvesAreRoundedUp) {
    for (const auto& [coordinate, voxel] : std::initializer_list<std::pair<float, int>>{
             {-0.5f, 0}, {-0.50001f, -1}, {0.49999997f, 0}, {0.5f, 1}, {-1.5f, -1}})
        EXPECT_EQ(nearestVoxel(coordinate), voxel) << coordinate;
    EXPECT_GT(nearestVoxel(1e30f), 100000);
    EXPECT_LT(nearestVoxel(notANumber), 0);
}

} // namespace
