// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/anatomical_picture.h"

#include "display/anatomical_scene.h"
#include "display/section_fields.h"
#include "display/section_sides.h"

#include <cmath>

namespace {

constexpr SectionAxis axes[] = {SectionAxis::X, SectionAxis::Y, SectionAxis::Z};

QRgb entry(int index) {
    return qRgb(index + 1, 2 * index, 3 * index);
}

/// One pixel, from the rules alone, for maps with the state 3 and thresholds 3 and 8.
QRgb plainPixel(const AnatomicalScene& scene, const CubeVoxel& voxel, int low, int high,
                bool significance, int clusterSize) {
    const C3dVector place =
        *scene.anatomy.anatomical.functionalPlace({float(voxel.x), float(voxel.y), float(voxel.z)});
    const int x = int(std::floor(place.x + 0.5f));
    const int y = int(std::floor(place.y + 0.5f));
    const int z = int(std::floor(place.z + 0.5f));
    const int intensity = AnatomicalScene::intensity(voxel);
    const int grey = std::clamp((intensity - low) * 255 / (high - low), 0, 255);
    const QRgb ground = qRgb(grey, grey, grey);
    if (x < 0 || x >= 20 || y < 0 || y >= 16 || z < 0 || z >= 12)
        return ground;
    const StatisticalMaps& maps = scene.run.maps;
    if (clusterSize > 1 && maps.ClusterSizeSlices[size_t(z)][size_t(y * 20 + x)] < clusterSize)
        return ground;
    const size_t at = size_t((z * 16 + y) * 20 + x);
    const float first = maps.map(0)[at];
    const float second = maps.map(1)[at];
    const bool firstPasses = std::fabs(first) >= 3.0f;
    const bool secondPasses = std::fabs(second) >= 3.0f;
    if (!firstPasses && !secondPasses)
        return ground;
    if (!significance)
        return entry(firstPasses && secondPasses ? 2 : secondPasses ? 1 : 0);
    const float largest = std::fabs(second) > std::fabs(first) ? second : first;
    const int step = std::clamp(int((std::fabs(largest) - 3.0f) / 5.0f * 9.0), 0, 9);
    return entry(step + (largest < 0 ? 10 : 0));
}

TEST(AnatomicalPicture, IsThatOfEachPixelByItself) {
    AnatomicalScene scene;
    scene.makeMaps(2, ContrastBoth);
    AnatomicalPictureSource source;
    source.cube = &scene.anatomy.anatomical;
    source.run = scene.size;
    const CubeVoxel centre{128, 128, 128};
    const std::tuple<CubeVoxel, int, int, bool, int> cases[] = {{centre, 0, 225, false, 1},
                                                                {{110, 140, 120}, 40, 41, true, 1},
                                                                {{150, 105, 135}, 20, 180, true, 4},
                                                                {centre, 20, 180, false, 5},
                                                                {{0, 255, 3}, 0, 225, true, 1}};
    SectionImages images;
    for (const auto& [cross, low, high, significance, clusterSize] : cases) {
        source.cross = cross;
        source.windowLow = low;
        source.windowHigh = high;
        scene.run.SignificanceColorCoding = significance;
        source.maps = shownContrastMaps(scene.run);
        source.thresholds = {3.0f, 8.0f, clusterSize};
        ASSERT_TRUE(composeSections(images, source));
        int wrong = 0;
        for (const SectionAxis axis : axes)
            for (int row = 0; row < 256; ++row)
                for (int column = 0; column < 256; ++column) {
                    const CubeVoxel voxel = sectionVoxel(axis, column, row, cross);
                    wrong += images[size_t(axis)].pixel(column, row) !=
                             plainPixel(scene, voxel, low, high, significance, clusterSize);
                }
        EXPECT_EQ(wrong, 0) << "cross at x " << cross.x;
    }
    const QImage painted = images[0];
    source.cross = centre;
    ASSERT_TRUE(composeSections(images, source));
    const QImage withMaps = images[0];
    EXPECT_NE(withMaps, painted);
    scene.anatomy.anatomical.mapping.reset();
    ASSERT_TRUE(composeSections(images, source));
    const QImage withoutPlace = images[0];
    EXPECT_NE(withoutPlace, withMaps);
    scene.place();
    source.run.slices = 11; // maps of another grid
    ASSERT_TRUE(composeSections(images, source));
    EXPECT_EQ(images[0], withoutPlace);
    const AnatomicalCube none;
    source.cube = &none;
    EXPECT_FALSE(composeSections(images, source));
}

TEST(SectionSides, FollowTheWayToTheScanner) {
    AnatomicalCube cube;
    const auto sides = [&cube](SectionAxis axis) {
        const SectionSides found = sectionSides(cube, axis);
        return QString("%1 %2%3 %4%5%6")
            .arg(found.name, found.left, found.right, found.top, found.bottom,
                 found.upsideDown() ? " turned" : "");
    };
    EXPECT_EQ(sides(SectionAxis::X), "  ");
    cube.spaces.cube = CubeSpace::Talairach;
    EXPECT_EQ(sides(SectionAxis::X), "Coronal RL HF");
    EXPECT_EQ(sides(SectionAxis::Y), "Transversal RL AP");
    EXPECT_EQ(sides(SectionAxis::Z), "Sagittal AP HF");
    cube.volume.LeftRightConvention = 2;
    EXPECT_EQ(sides(SectionAxis::Y), "Transversal LR AP");
    // A run in transversal slices from the feet: x to the back, y to the head, z to the left.
    cube.spaces.cube = CubeSpace::Functional;
    C3dMatrix toScanner;
    for (size_t i = 0; i < 3; ++i)
        toScanner.at(i, i) = 0;
    toScanner.at(1, 0) = toScanner.at(2, 1) = toScanner.at(0, 2) = 1;
    cube.spaces.cubeToScanner = toScanner;
    EXPECT_EQ(sides(SectionAxis::X), "Coronal RL FH turned");
    EXPECT_EQ(sides(SectionAxis::Y), "Transversal RL AP");
    EXPECT_EQ(sides(SectionAxis::Z), "Sagittal AP FH turned");
    cube.spaces.cubeToScanner = C3dMatrix::rotationX(40) * toScanner;
    EXPECT_EQ(sides(SectionAxis::X), "Coronal RL FH turned");
    cube.spaces.cubeToScanner = C3dMatrix::rotationX(45) * toScanner;
    EXPECT_EQ(sides(SectionAxis::Z).left(8), "Sagittal");
    toScanner.at(1, 0) = std::nanf("");
    cube.spaces.cubeToScanner = toScanner;
    EXPECT_EQ(sides(SectionAxis::Z), "  ");
}

TEST(SectionFields, PointsAndVoxelsAgree) {
    for (const double ratio : {1.0, 2.0})
        for (const bool turned : {false, true}) {
            SectionFields fields = sectionFields({0, 0, 610, 501}, ratio);
            fields.upsideDown = {turned, turned, turned};
            EXPECT_EQ(fields.sections[0].top(), fields.sections[2].top());
            EXPECT_EQ(fields.sections[0].left(), fields.sections[1].left());
            EXPECT_EQ(fields.readOut.right(), 610);
            const CubeVoxel voxel{3, 250, 77};
            for (const SectionAxis axis : axes) {
                const QPointF centre = fields.areaOf(axis, voxel).center();
                EXPECT_EQ(fields.sectionAt(centre), axis);
                EXPECT_EQ(fields.voxelAt(axis, centre, voxel), voxel);
            }
            EXPECT_EQ(fields.voxelAt(SectionAxis::X, {-50, 9000}, voxel),
                      (CubeVoxel{3, turned ? 0 : 255, 0}));
            EXPECT_FALSE(fields.sectionAt(fields.readOut.center()));
        }
    EXPECT_TRUE(sectionFields({0, 0, 3, 500}, 1).sections[0].isEmpty());
}

} // namespace
