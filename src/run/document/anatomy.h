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
    /// Nothing without a known place: the cube is shown, and carries no maps.
    std::optional<CubeMapping> mapping;
    AnatomicalSpaces spaces;

    [[nodiscard]] bool empty() const { return volume.empty(); }
    /// As those of the mapping; nothing without a known place.
    [[nodiscard]] std::optional<C3dVector> functionalPlace(const C3dVector& cubePoint) const {
        return mapping ? std::optional(mapping->functionalPlace(cubePoint)) : std::nullopt;
    }
    [[nodiscard]] std::optional<C3dVector> cubePlace(const C3dVector& functionalPoint) const {
        return mapping ? std::optional(mapping->cubePlace(functionalPoint)) : std::nullopt;
    }
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
