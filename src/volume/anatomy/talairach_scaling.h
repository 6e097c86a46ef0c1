// The piecewise-linear scaling of a brain to that of the atlas: Talairach and Tournoux, Co-planar
// stereotaxic atlas of the human brain (1988).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/anatomy/tal_file.h"
#include "volume/c3d_matrix.h"

#include <optional>
#include <vector>

/// The voxel of a Talairach cube that holds the anterior commissure, along each axis; also that of
/// an AC-PC cube whose reference points aren't known.
inline constexpr float talairachAC = 128.0f;

/// Takes points between AC-PC space and Talairach space, both in voxels of their 256 cubes. The
/// axes of both run from front to back (x), from top to bottom (y) and from right to left (z).
///
/// The planes through the anterior commissure (AC) and the posterior one (PC) and the borders of
/// the cerebrum make twelve boxes: three along x (in front of AC, to PC, behind it), two along y
/// and two along z. Each box is stretched to its size in the atlas; the outer ones go on beyond the
/// borders. The sizes in the atlas, in millimetres: anterior border 70 before AC, PC 23 behind it,
/// posterior border 79 behind PC; superior border 74 above AC, inferior border 42 below it; right
/// and left border 68 from AC.
///
/// The reference points: 1 AC, 2 PC, 3 anterior, 4 posterior, 5 superior, 6 inferior border, 7 and
/// 8 the borders at the sides. Of each border the coordinate along its own axis counts.
class TalairachScaling {
public:
    /// Nothing when points coincide or lie in the wrong order, so that a box has no size.
    [[nodiscard]] static std::optional<TalairachScaling> fromPoints(const TalairachPoints& points);
    [[nodiscard]] C3dVector toTalairach(const C3dVector& acpcVoxel) const;
    [[nodiscard]] C3dVector toACPC(const C3dVector& talairachVoxel) const;
    /// The anterior commissure, in voxels of the AC-PC cube.
    [[nodiscard]] const C3dVector& anteriorCommissure() const { return ac_; }

private:
    struct Landmark {
        double acpc;
        double talairach;
    };
    class Axis {
    public:
        /// False unless both coordinates rise.
        bool setLandmarks(const std::vector<Landmark>& landmarks);
        [[nodiscard]] float mapped(float value, double Landmark::*from, double Landmark::*to) const;

    private:
        std::vector<Landmark> landmarks_;
    };

    C3dVector ac_;
    Axis x_;
    Axis y_;
    Axis z_;
};
