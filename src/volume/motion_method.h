// The methods of motion correction.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Numbered as in settings files.
enum class MotionMethod {
    Standard = 0,             ///< fitMotion() on a sparse grid, trilinear
    LeastSquares = 1,         ///< LeastSquaresMotion, resampled by cubic B-splines
    LeastSquaresTrilinear = 2 ///< the same fit, resampled trilinearly
};
