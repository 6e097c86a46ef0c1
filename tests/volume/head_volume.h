// A head given by a formula, so that it can be looked at from any place.
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
        // Longer from front to back than wide, as heads are.
        const std::array<double, 3> part{0.36, 0.45, 0.45};
        for (size_t axis = 0; axis < 3; ++axis)
            extent_[axis] = part[axis] * double(grid.spacing[axis]) * grid.size[axis];
        for (Wave& wave : waves_) {
            double length = 0.0;
            for (double& component : wave.direction) {
                component = between(-1.0, 1.0);
                length += component * component;
            }
            const double turnsPerMillimetre = 1.0 / between(14.0, 40.0);
            for (double& component : wave.direction)
                component *= 2.0 * std::numbers::pi * turnsPerMillimetre / std::sqrt(length);
            wave.phase = between(0.0, 2.0 * std::numbers::pi);
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
    struct Wave {
        Point direction; ///< radians for a millimetre
        double phase;
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
        for (const Wave& wave : waves_)
            value += 70.0 * std::sin(wave.direction[0] * p[0] + wave.direction[1] * p[1] +
                                     wave.direction[2] * p[2] + wave.phase);
        return value * inside;
    }

    VolumeGrid grid_;
    Point extent_{};
    std::array<Wave, 8> waves_{};
};
