// The piecewise-linear scaling of a brain to that of the atlas: Talairach and Tournoux, Co-planar
// stereotaxic atlas of the human brain (1988).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/tal_file.h"
#include "volume/c3d_matrix.h"

#include <optional>

/// Takes points between AC-PC space and Talairach space, both in voxels of their 256 cubes.
class TalairachScaling {
public:
    /// Nothing when points coincide or lie in the wrong order, so that a box has no size.
    [[nodiscard]] static std::optional<TalairachScaling> fromPoints(const TalairachPoints& points);
    [[nodiscard]] C3dVector toTalairach(const C3dVector& acpcVoxel) const;
    [[nodiscard]] C3dVector toACPC(const C3dVector& talairachVoxel) const;
};
