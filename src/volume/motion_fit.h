// Levenberg-Marquardt fit of the six motion parameters.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_resampling.h"

#include <array>
#include <functional>

inline constexpr size_t nrOfMotionParameters = 6;
/// X, Y, Z translation in millimetres, X, Y, Z rotation in degrees.
using MotionParameters = std::array<double, nrOfMotionParameters>;

[[nodiscard]] RigidTransformation transformationOf(const MotionParameters& parameters);

/// The squared differences between target and resampled volume, and their normal equations.
struct MotionEquations {
    double sumOfSquares = 0.0;
    int voxelsUsed = 0;
    /// Row-major; products of the derivatives, summed over the voxels.
    std::array<double, nrOfMotionParameters * nrOfMotionParameters> curvature{};
    /// Products of derivative and difference.
    MotionParameters gradient{};
};
using MotionEvaluation = std::function<void(const RigidTransformation&, MotionEquations&)>;

struct MotionFit {
    RigidTransformation transformation;
    int steps = 0; ///< of the solver
};

/// Fits the parameters, at most 11 steps from the start values (D. Marquardt, Journal of the SIAM
/// 11, 1963, 431-441). `motionCorrectionFailed` is set, and the result is no motion, when nothing
/// can be fitted: no voxel is used, no voxel has a gradient, or the damped equations are singular.
/// While it is set the result is the start values.
[[nodiscard]] MotionFit fitMotion(const MotionEvaluation& evaluate, const MotionParameters& start,
                                  bool& motionCorrectionFailed);
