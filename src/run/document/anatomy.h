// The anatomical part of a document: the cubes, the chain to the run, what is shown of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/volume_of_interest.h"
#include "volume/anatomy/coordinate_chain.h"
#include "volume/anatomy/cube_sections.h"
#include "volume/anatomy/spaces.h"
#include "volume/anatomy/trf_file.h"
#include "volume/anatomy/vmr_volume.h"

#include <QString>
#include <array>
#include <optional>

/// Which of the two cubes is shown.
enum class ShownCube { Functional, Anatomical };

/// A cube with what links it to the run.
struct AnatomicalCube {
    VMRVolume volume;
    QString name; ///< of its file, without a folder; of the functional cube what it shows
    /// Nothing without a known place: the cube is shown, and carries no maps. In Talairach space it
    /// takes the voxels of the AC-PC cube, to which scaling() takes those of this one.
    std::optional<CubeMapping> mapping;
    AnatomicalSpaces spaces;

    [[nodiscard]] bool empty() const { return volume.empty(); }
    /// What lies between the voxels of the cube and its mapping; null where there is nothing.
    [[nodiscard]] const TalairachScaling* scaling() const {
        return spaces.cube == CubeSpace::Talairach && spaces.talairach ? &*spaces.talairach
                                                                       : nullptr;
    }
    /// The place of a point of the cube in the run and back, both in voxels from 0, not rounded and
    /// not limited to what there is. Nothing without a known place.
    [[nodiscard]] std::optional<C3dVector> functionalPlace(const C3dVector& cubePoint) const;
    [[nodiscard]] std::optional<C3dVector> cubePlace(const C3dVector& functionalPoint) const;
};

/// The voxel that a point of the cube lies in; points outside give the nearest one at its border.
[[nodiscard]] CubeVoxel nearestCubeVoxel(const C3dVector& point);

struct Anatomy {
    AnatomicalCube functional; ///< made from the run's slices: the "Volume" view
    AnatomicalCube anatomical; ///< loaded: the "Anatomy" view
    /// The record of the loaded anatomy and the copy of the run's.
    FMRPositionInfo vmrPosition;
    FMRPositionInfo functionalPosition;
    C3dMatrix fmrToVmrHeaderMatrix;
    std::array<C3dMatrix, 2> alignmentMatrices; ///< of the .trf file
    C3dMatrix vmrToFunctionalMatrix;
    ShownCube shown = ShownCube::Functional;
    /// Of each cube the voxel under the cross, by ShownCube.
    std::array<CubeVoxel, 2> cross;
    int windowLow = 0; ///< intensities shown black and white
    int windowHigh = 225;

    [[nodiscard]] AnatomicalCube& shownCube() {
        return shown == ShownCube::Functional ? functional : anatomical;
    }
    [[nodiscard]] const AnatomicalCube& shownCube() const {
        return shown == ShownCube::Functional ? functional : anatomical;
    }
};
