// Where the sections lie in a view, and which voxel is at a point of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/cube_sections.h"

#include <QRectF>
#include <array>
#include <optional>

/// Two fields above two others: the sections across x and across z, which share their rows, and
/// below the first the one across y, which shares its columns; the last is for read-outs.
struct SectionFields {
    std::array<QRectF, 3> sections;   ///< squares, by SectionAxis
    QRectF readOut;                   ///< reaches to the right border of the room
    std::array<bool, 3> upsideDown{}; ///< rows are shown from below

    [[nodiscard]] std::optional<SectionAxis> sectionAt(QPointF position) const;
    /// The voxel of a section at a position, or the nearest one to a position beside it. `cross`
    /// says which section of its axis is shown.
    [[nodiscard]] CubeVoxel voxelAt(SectionAxis axis, QPointF position,
                                    const CubeVoxel& cross) const;
    /// The area of a voxel, projected on the section.
    [[nodiscard]] QRectF areaOf(SectionAxis axis, const CubeVoxel& voxel) const;
};

/// The largest fields that the room has place for, in its middle. Their borders are those of pixels
/// where one unit has `pixelRatio` of these.
[[nodiscard]] SectionFields sectionFields(const QRectF& room, double pixelRatio);

/// A voxel moved within a section, or through it, by this many voxels; limited to the cube.
[[nodiscard]] CubeVoxel movedVoxel(SectionAxis axis, const CubeVoxel& voxel, int columns, int rows,
                                   int sections);
