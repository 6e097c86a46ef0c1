// A head of smooth blobs, given by a formula, so that it can be looked at from any place.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_resampling.h"

#include <cmath>
#include <numbers>
#include <random>

/// Where the head lies, as the fit describes it: result(p) = source(M p).
class HeadVolume {
public:
    explicit HeadVolume(const VolumeGrid& grid, unsigned seed = 1) : grid_(grid) {
        std::mt19937 random(seed);
        const auto between = [&](double low, double high) {
            return low + (high - low) * double(random()) / 4294967295.0;
        };
        for (size_t axis = 0; axis < 3; ++axis)
            extent_[axis] = 0.42 * double(grid.spacing[axis]) * grid.size[axis];
        for (Blob& blob : blobs_) {
            for (size_t axis = 0; axis < 3; ++axis)
                blob.centre[axis] = between(-0.6, 0.6) * extent_[axis];
            blob.width = between(0.12, 0.3) * extent_[0];
            blob.height = between(-250.0, 250.0);
        }
    }

    /// The volume that the transformation brings back to rest, with noise of this deviation.
    void fill(const RigidTransformation& t, double noise, unsigned seed,
              std::span<int16_t> samples) const {
        std::mt19937 random(seed);
        size_t i = 0;
        for (int z = 0; z < grid_.size[2]; ++z)
            for (int y = 0; y < grid_.size[1]; ++y)
                for (int x = 0; x < grid_.size[0]; ++x, ++i) {
                    const double value = signal(atRest(t, {double(grid_.position(0, x)),
                                                           double(grid_.position(1, y)),
                                                           double(grid_.position(2, z))})) +
                                         noise * gaussian(random);
                    samples[i] = int16_t(std::lround(std::abs(value)));
                }
    }

private:
    using Point = std::array<double, 3>;
    struct Blob {
        Point centre;
        double width;
        double height;
    };

    /// Twelve uniform numbers make a normal one, the same on every system.
    static double gaussian(std::mt19937& random) {
        double sum = -6.0;
        for (int k = 0; k < 12; ++k)
            sum += double(random()) / 4294967295.0;
        return sum;
    }
    static void turn(double& a, double& b, double degrees) {
        const double angle = degrees * std::numbers::pi / 180.0;
        const double before = a;
        a = std::cos(angle) * before - std::sin(angle) * b;
        b = std::sin(angle) * before + std::cos(angle) * b;
    }
    /// The inverse of T(-t) Rx Ry Rz, in double and turn by turn.
    static Point atRest(const RigidTransformation& t, Point p) {
        p = {p[0] + double(t.tx), p[1] + double(t.ty), p[2] + double(t.tz)};
        turn(p[1], p[2], -double(t.rx));
        turn(p[2], p[0], -double(t.ry));
        turn(p[0], p[1], -double(t.rz));
        return p;
    }
    double signal(const Point& p) const {
        double radius = 0.0;
        for (size_t axis = 0; axis < 3; ++axis)
            radius += p[axis] / extent_[axis] * p[axis] / extent_[axis];
        radius = std::sqrt(radius);
        // From tissue to air over about two voxels.
        const double edge = 2.0 * double(grid_.spacing[0]) / extent_[0];
        const double inside = 1.0 / (1.0 + std::exp((radius - 1.0) / (0.25 * edge)));
        double value = 900.0;
        for (const Blob& blob : blobs_) {
            double squared = 0.0;
            for (size_t axis = 0; axis < 3; ++axis)
                squared += (p[axis] - blob.centre[axis]) * (p[axis] - blob.centre[axis]);
            value += blob.height * std::exp(-0.5 * squared / (blob.width * blob.width));
        }
        return value * inside;
    }

    VolumeGrid grid_;
    Point extent_{};
    std::array<Blob, 24> blobs_{};
};
