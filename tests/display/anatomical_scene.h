// Cubes and maps for tests of the sections.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "stats/maps_in_use.h"

#include <random>

/// A run of 20 x 16 x 12 voxels of 3 x 3 x 4 mm, and an anatomy that lies obliquely over it. The
/// intensity of the voxel (x, y, z) is (3 x + 5 y + 7 z) mod 226.
struct AnatomicalScene {
    QtCortivoDoc run{QtCortivoDoc::Kind::Functional};
    Anatomy anatomy;
    OverlayThresholds thresholds;
    RegisteredPluginMaps pluginMaps;

    static constexpr VolumeSize size{20, 16, 12};

    static int intensity(const CubeVoxel& voxel) {
        return (3 * voxel.x + 5 * voxel.y + 7 * voxel.z) % 226;
    }

    AnatomicalScene() {
        FMRProject& project = run.project;
        project.ResolutionX = size.x;
        project.ResolutionY = size.y;
        project.NrOfSlices = size.slices;
        AnatomicalCube& cube = anatomy.anatomical;
        EXPECT_TRUE(cube.volume.clearCube());
        for (int z = 0; z < cubeSide; ++z)
            for (int y = 0; y < cubeSide; ++y)
                for (int x = 0; x < cubeSide; ++x)
                    cube.volume.cube[cubeIndex(x, y, z)] = uint8_t(intensity({x, y, z}));
        cube.name = "head.vmr";
        anatomy.shown = ShownCube::Anatomical;
        place();
    }
    /// Turned by 20 degrees, 3 x 3 x 4 mm, the middle of the run in that of the cube.
    void place() {
        CubeMapping mapping;
        C3dMatrix scale;
        scale.at(0, 0) = scale.at(1, 1) = 1 / 3.0f;
        scale.at(2, 2) = 0.25f;
        C3dMatrix back;
        back.at(0, 0) = back.at(1, 1) = 3;
        back.at(2, 2) = 4;
        const float middle = cubeCentre;
        mapping.cubeToFunctional = C3dMatrix::translation(9.5f, 7.5f, 5.5f) * scale *
                                   C3dMatrix::rotationZ(20) *
                                   C3dMatrix::translation(-middle, -middle, -middle);
        mapping.functionalToCube = C3dMatrix::translation(middle, middle, middle) *
                                   C3dMatrix::rotationZ(-20) * back *
                                   C3dMatrix::translation(-9.5f, -7.5f, -5.5f);
        anatomy.anatomical.mapping = mapping;
    }
    /// Random values from -9 to 9, and cluster sizes from 1 to 8.
    void makeMaps(int count, int state) {
        run.maps = mapsInUse(size.x, size.y, size.slices, count, state);
        std::mt19937 numbers(7);
        std::uniform_real_distribution<float> values(-9.0f, 9.0f);
        for (int map = 0; map < count; ++map)
            for (float& value : run.maps.map(map))
                value = values(numbers);
        run.maps.ClusterSizeSlices.assign(size_t(size.slices), {});
        for (auto& slice : run.maps.ClusterSizeSlices)
            for (size_t pixel = 0; pixel < size.sliceSamples(); ++pixel)
                slice.push_back(1 + int(numbers() % 8));
        for (int i = 0; i < nrOfOverlayColors; ++i)
            run.overlayColors.active[size_t(i)] = {i + 1, 2 * i, 3 * i};
    }
};
