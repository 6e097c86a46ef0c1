// Rigid motion by least squares, with true derivatives: the accurate method of motion correction.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_fit.h"
#include "volume/spline_volume.h"

#include <optional>
#include <vector>

/// What a fit has found, and how well.
struct SplineMotionFit {
    RigidTransformation transformation;
    int steps = 0;
    double meanSquare = 0.0; ///< of the residuals, weighted, in squared units of the samples
    size_t samplesUsed = 0;
};

/// Fits a volume to a target at one resolution.
///
/// Inverse compositional least squares (S. Baker and I. Matthews, Lucas-Kanade 20 years on,
/// International Journal of Computer Vision 56(3), 2004, 221-255): the derivatives are those of the
/// target, by millimetres and radians, and are computed once. Samples are the voxels of the target
/// with the largest slopes. Each is weighted by its residual (P. J. Huber, Robust estimation of a
/// location parameter, Annals of Mathematical Statistics 35, 1964, 73-101), so that voxels whose
/// signal changes pull little. The brightness of the volume as a whole is a seventh parameter.
class SplineMotionLevel {
public:
    /// Finds the samples. False when memory runs out.
    [[nodiscard]] bool setTarget(const SplineVolume& target, size_t maximumSamples);
    /// Improves `motion`, which takes points of the target (millimetres from the centre) to the
    /// source. Nothing when too few samples lie inside the source or the equations are singular.
    struct Limits {
        int steps;        ///< at most
        double roughPrecision; ///< millimetres: a step that moves the surface less is rough enough
        double precision; ///< ends when a step moves the head's surface by less
    };
    [[nodiscard]] std::optional<SplineMotionFit> fit(const SplineVolume& source, C3dMatrix& motion,
                                                     const Limits& limits);

private:
    static constexpr size_t nrOfUnknowns = nrOfMotionParameters + 1;
    struct Sums;
    void accumulate(const SplineVolume& source, const C3dMatrix& motion, double brightness,
                    double scale, size_t count, Sums& sums);
    [[nodiscard]] double residualScale(double brightness, size_t count);

    VolumeGrid grid_;
    size_t count_ = 0;
    std::array<std::vector<float>, 3> positions_;                      ///< millimetres
    std::array<std::vector<float>, nrOfUnknowns> derivatives_;         ///< the last is the value
    std::vector<float> moved_;                                         ///< values in the source
    std::vector<float> scratch_;
};

/// The parameters of a matrix of RigidTransformation::matrix().
[[nodiscard]] RigidTransformation rigidTransformation(const C3dMatrix& matrix);
