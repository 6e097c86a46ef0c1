// Rigid motion by robust least squares with true derivatives.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_samples.h"

#include <optional>

/// Millimetres from the centre of a head to its surface, for what a turn moves there.
inline constexpr double headSurfaceRadius = 70.0;

/// Fits volumes to a target.
///
/// Inverse compositional Gauss-Newton steps (S. Baker and I. Matthews, Lucas-Kanade 20 years on,
/// International Journal of Computer Vision 56(3), 2004, 221-255): the derivatives are those of the
/// target and are computed once; each step moves the target a little, and the inverse of that is
/// added to the motion. Values of the volume between its voxels are those of its quintic B-spline.
/// Along axes on which the target is too sharp for that (axesTooSharp) target and volume are
/// smoothed with a bell of 0.71 voxels, since values between the voxels can't be recovered there.
/// Each voxel is weighted by its residual (P. J. Huber, Annals of Mathematical Statistics 35, 1964,
/// 73-101), so that those whose signal changes pull little, and by the spread of the residuals of
/// voxels that are as rough as it: at edges they are larger. The brightness of the whole volume is
/// a seventh unknown.
class LeastSquaresMotion {
public:
    /// Prepares for volumes like the target. False when memory runs out.
    [[nodiscard]] bool setTarget(const VolumeGrid& grid, std::span<const int16_t> target);

    struct Result {
        RigidTransformation transformation;
        int steps = 0;
        /// Standard deviation of the differences from the target, from their median, in units of
        /// the samples; smoothed as the volumes are.
        double residual = 0.0;
    };
    /// The motion of a volume, found from a first guess. Nothing when the volume doesn't determine
    /// one: it is blank, or another one, too much of the target is outside of it, or the steps
    /// don't come to an end.
    [[nodiscard]] std::optional<Result> fit(std::span<const int16_t> volume,
                                            const RigidTransformation& start,
                                            WorkerPool& workers = callersThread());

private:
    static constexpr size_t nrOfUnknowns = nrOfMotionParameters + 1;
    static constexpr size_t nrOfProducts = nrOfUnknowns * (nrOfUnknowns + 1) / 2 + nrOfUnknowns;
    struct Sums {
        /// The lower triangle of the normal equations row by row, each row followed by its right
        /// side.
        std::array<double, nrOfProducts> products{};
        size_t used = 0;

        void add(const Sums& part);
    };
    struct State;

    /// Over the samples from `first` to `end` - 1.
    void accumulate(const State& state, size_t first, size_t end, Sums& sums);
    /// Improves the motion by a step. False when there is none.
    [[nodiscard]] bool step(State& state, size_t count, WorkerPool& workers);
    /// The spread of the residuals after a step, on the whole and in each class.
    void measureResiduals(State& state, size_t count, WorkerPool& workers);

    MotionSamples samples_;
    SplineVolume source_;
    std::vector<float> moved_; ///< value of each sample in the volume, or `outside`
    /// Work space: magnitudes, of each class of samples and of all.
    std::array<std::vector<float>, MotionSamples::nrOfClasses + 1> residuals_;
    std::vector<Sums> partSums_;
};

/// The parameters of a matrix of RigidTransformation::matrix().
[[nodiscard]] RigidTransformation rigidTransformation(const C3dMatrix& matrix);
