// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_tracking.h"

#include <cmath>
#include <numbers>

namespace {

/// Millimetres that a point at the surface of a head moves at most.
double jumpBetween(const RigidTransformation& a, const RigidTransformation& b) {
    const double shift = std::hypot(double(b.tx - a.tx), double(b.ty - a.ty), double(b.tz - a.tz));
    const double degrees =
        std::hypot(double(b.rx - a.rx), double(b.ry - a.ry), double(b.rz - a.rz));
    return shift + degrees * std::numbers::pi / 180.0 * headSurfaceRadius;
}

} // namespace

bool MotionTracking::setTarget(const VolumeGrid& grid, std::span<const int16_t> target) {
    last_ = {};
    return fitting_.setTarget(grid, target);
}

MotionTracking::Found MotionTracking::follow(std::span<const int16_t> volume, WorkerPool& workers) {
    const auto fit = fitting_.fit(volume, last_, workers);
    if (!fit || jumpBetween(last_, fit->transformation) > largestJump)
        return {last_, fit ? fit->steps : 0, false};
    last_ = fit->transformation;
    return {last_, fit->steps, true};
}
