// What is known of the voxel under the cross of the sections.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/voxel_read_out.h"
#include "run/document/anatomy.h"

#include <QString>
#include <vector>

class QtCortivoDoc;
struct ShownMaps;

struct AnatomicalReadOut {
    QString cubeName;
    CubeVoxel voxel;
    int intensity = 0; ///< 0 to 255
    SpaceCoordinates coordinates;
    bool isMapped = false;                  ///< the cube's place over the run is known
    std::optional<VoxelReadOut> functional; ///< nothing outside the run
};

/// Of a cube that is not empty; `volume` and `maps` as for voxelReadOut().
[[nodiscard]] AnatomicalReadOut anatomicalReadOut(const AnatomicalCube& cube,
                                                  const CubeVoxel& voxel, const QtCortivoDoc& run,
                                                  int volume, const ShownMaps& maps);

struct ReadOutLine {
    QString name; ///< empty for a line that goes on with the one above
    QString text;

    bool operator==(const ReadOutLine&) const = default;
};
/// Voxels of the cube count from 0, as in files of volumes of interest, those of the run from 1,
/// as everywhere.
[[nodiscard]] std::vector<ReadOutLine> readOutLines(const AnatomicalReadOut& readOut);
