// What the motion plot shows, from the parts of a document.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"
#include "volume/motion_correction.h"

/// The course of a run up to its last valid volume.
struct PlottedMotion {
    const MotionCorrection& motion;
    std::vector<float> displacement; ///< framewiseDisplacements(); NaN where there is none
    std::span<const float> dvars;    ///< RunDVARS; may end earlier
    int nrOfVolumes = 0;             ///< planned
    int measured = 0;                ///< valid volumes
    std::vector<PlotBand> bands;     ///< of the protocol
    QString note; ///< instead of curves that rest on motion parameters while there are none
};

/// Volumes are counted from 1. X, Y and Z in millimetres.
[[nodiscard]] PlotContent translationContent(const PlottedMotion& plotted);
/// Around X, Y and Z in degrees.
[[nodiscard]] PlotContent rotationContent(const PlottedMotion& plotted);
/// In millimetres, with a line at framewiseDisplacementLimit.
[[nodiscard]] PlotContent displacementContent(const PlottedMotion& plotted);
/// In percent.
[[nodiscard]] PlotContent dvarsContent(const PlottedMotion& plotted);

/// The numbers of the last volume in two lines of fixed width, and the number of volumes whose
/// displacement is above its limit.
[[nodiscard]] QString motionReadOut(const PlottedMotion& plotted);
