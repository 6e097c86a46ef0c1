// Following the motion of a run by least squares, also past volumes that can't be fitted.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/least_squares_motion.h"

/// Each volume is fitted from where the last good one was found.
class MotionTracking {
public:
    /// Millimetres. A fit that moves the surface of the head by more from one good volume to the
    /// next is not believed: nobody moves that far in a head coil.
    static constexpr double largestJump = 40.0;

    /// False when memory runs out.
    [[nodiscard]] bool setTarget(const VolumeGrid& grid, std::span<const int16_t> target);

    struct Found {
        /// Of the last good volume where this one's was not found.
        RigidTransformation transformation;
        int steps = 0;
        bool good = false;
    };
    [[nodiscard]] Found follow(std::span<const int16_t> volume,
                               WorkerPool& workers = callersThread());

private:
    LeastSquaresMotion fitting_;
    RigidTransformation last_; ///< of the last good volume
};
