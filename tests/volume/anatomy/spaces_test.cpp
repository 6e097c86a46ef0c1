// Coordinates in the spaces around a cube, and the landmarks of the atlas.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/spaces.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

TalairachPoints brain() {
    return {1,
            "",
            {130, 126, 128},
            {157, 126, 128},
            {58, 140, 120},
            {229, 130, 115},
            {150, 48, 131},
            {140, 170, 150},
            {140, 110, 62},
            {141, 111, 199}};
}

void expectNear(const std::optional<C3dVector>& actual, const C3dVector& expected) {
    ASSERT_TRUE(actual);
    EXPECT_NEAR(actual->x, expected.x, 1e-4);
    EXPECT_NEAR(actual->y, expected.y, 1e-4);
    EXPECT_NEAR(actual->z, expected.z, 1e-4);
}

TEST(Talairach, BordersOfTheBrainLieAtThoseOfTheAtlas) {
    const AnatomicalSpaces spaces{CubeSpace::ACPC, {}, TalairachScaling::fromPoints(brain())};
    ASSERT_TRUE(spaces.talairach);
    // Voxel; millimetres from the commissure to the right, front and top in both spaces.
    const std::vector<std::array<C3dVector, 3>> landmarks{
        {{{130, 126, 128}, {0, 0, 0}, {0, 0, 0}}},
        {{{157, 126, 128}, {0, -27, 0}, {0, -23, 0}}},
        {{{58, 126, 128}, {0, 72, 0}, {0, 70, 0}}},
        {{{229, 126, 128}, {0, -99, 0}, {0, -102, 0}}},
        {{{130, 48, 62}, {66, 0, 78}, {68, 0, 74}}},
        {{{130, 170, 199}, {-71, 0, -44}, {-68, 0, -42}}},
        {{{94, 148, 95}, {33, 36, -22}, {34, 35, -21}}},
        {{{22, 126, 128}, {0, 108, 0}, {0, 105, 0}}}}; // in front of the brain
    for (const auto& [voxel, acpc, talairach] : landmarks) {
        const SpaceCoordinates coordinates = spaceCoordinates(spaces, voxel);
        expectNear(coordinates.acpc, acpc);
        expectNear(coordinates.talairach, talairach);
        // Back by way of the Talairach cube.
        const C3dVector atlasVoxel = spaces.talairach->toTalairach(voxel);
        expectNear(spaces.talairach->toACPC(atlasVoxel), voxel);
        const SpaceCoordinates fromAtlas =
            spaceCoordinates({CubeSpace::Talairach, {}, spaces.talairach}, atlasVoxel);
        expectNear(fromAtlas.acpc, acpc);
        expectNear(fromAtlas.talairach, talairach);
    }
}

TEST(Talairach, SidesMayBeNamedInEitherOrderAndNothingElse) {
    TalairachPoints swapped = brain();
    std::swap(swapped.referencePoint7, swapped.referencePoint8);
    const auto scaling = TalairachScaling::fromPoints(swapped);
    ASSERT_TRUE(scaling);
    EXPECT_NEAR(scaling->toTalairach({130, 126, 62}).z, 60.0f, 1e-4);

    std::vector<TalairachPoints> bad(5, brain());
    bad[0].referencePoint2 = bad[0].referencePoint1;
    std::swap(bad[1].referencePoint3, bad[1].referencePoint4);
    std::swap(bad[2].referencePoint5, bad[2].referencePoint6);
    bad[3].referencePoint7[2] = bad[3].referencePoint8[2];
    bad[4].referencePoint1[2] = 20;
    for (const TalairachPoints& points : bad)
        EXPECT_FALSE(TalairachScaling::fromPoints(points));
    EXPECT_FALSE(TalairachScaling::fromPoints({}));
}

TEST(Spaces, OnlyWhatIsKnownIsGiven) {
    SpaceCoordinates coordinates =
        spaceCoordinates({CubeSpace::Native, C3dMatrix::translation(-10, -20, -30), {}}, {1, 2, 3});
    expectNear(coordinates.scanner, {-9, -18, -27});
    EXPECT_FALSE(coordinates.acpc || coordinates.talairach);
    coordinates = spaceCoordinates({CubeSpace::ACPC, {}, {}}, {100, 110, 120});
    expectNear(coordinates.acpc, {8, 28, 18});
    EXPECT_FALSE(coordinates.scanner || coordinates.talairach);
}

} // namespace
