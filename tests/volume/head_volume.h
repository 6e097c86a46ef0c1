// A head given by a formula, so that it can be sampled at any position.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_resampling.h"

#include <cmath>
#include <numbers>
#include <random>

inline VolumeGrid gridOf(const std::array<int, 3>& size,
                         const std::array<float, 3>& spacing = {1.0f, 1.0f, 1.0f}) {
    VolumeGrid grid;
    grid.size = size;
    grid.spacing = spacing;
    return grid;
}

/// Moves the head as the fit describes it: result(p) = source(M p).
class HeadVolume {
public:
    /// Heads of different seeds differ in their texture. From tissue to air it is about so many
    /// voxels.
    explicit HeadVolume(const VolumeGrid& grid, unsigned seed = 1, double voxelsOfEdge = 2.0)
        : grid_(grid), seed_(seed), edge_(voxelsOfEdge * double(grid.spacing[0])) {
        // Longer from front to back than wide, as heads are.
        const std::array<double, 3> part{0.36, 0.45, 0.45};
        for (size_t axis = 0; axis < 3; ++axis)
            extent_[axis] = part[axis] * double(grid.spacing[axis]) * grid.size[axis];
    }

    /// The volume that the transformation brings back to rest, with noise of this deviation.
    void fill(const RigidTransformation& t, double noise, unsigned seed,
              std::span<int16_t> samples) const {
        std::mt19937 random(seed);
        std::normal_distribution<double> gaussian(0.0, noise + 1e-9);
        const std::array<Turn, 3> turns{Turn(-double(t.rx)), Turn(-double(t.ry)),
                                        Turn(-double(t.rz))};
        size_t i = 0;
        for (int z = 0; z < grid_.size[2]; ++z)
            for (int y = 0; y < grid_.size[1]; ++y)
                for (int x = 0; x < grid_.size[0]; ++x, ++i) {
                    const double value =
                        signal(atRest(t, turns,
                                      {double(grid_.position(0, x)), double(grid_.position(1, y)),
                                       double(grid_.position(2, z))}));
                    samples[i] = int16_t(std::lround(std::abs(value + gaussian(random))));
                }
    }

private:
    using Point = std::array<double, 3>;

    /// A rotation in a plane; sine and cosine are taken once for all voxels.
    struct Turn {
        explicit Turn(double degrees)
            : cosine(std::cos(degrees * std::numbers::pi / 180.0)),
              sine(std::sin(degrees * std::numbers::pi / 180.0)) {}
        void apply(double& a, double& b) const {
            const double before = a;
            a = cosine * before - sine * b;
            b = sine * before + cosine * b;
        }
        double cosine;
        double sine;
    };
    /// The inverse of T(-t) Rx Ry Rz, in double and turn by turn.
    static Point atRest(const RigidTransformation& t, const std::array<Turn, 3>& turns, Point p) {
        p = {p[0] + double(t.tx), p[1] + double(t.ty), p[2] + double(t.tz)};
        turns[0].apply(p[1], p[2]);
        turns[1].apply(p[2], p[0]);
        turns[2].apply(p[0], p[1]);
        return p;
    }
    double signal(const Point& p) const {
        // Waves of 14 to 40 mm, in radians for a millimetre.
        static constexpr double waves[6][3] = {{0.21, 0.14, -0.08}, {-0.10, 0.28, 0.17},
                                               {0.05, -0.12, 0.19}, {0.31, -0.06, 0.22},
                                               {-0.13, 0.02, 0.11}, {0.09, 0.33, -0.27}};
        double value = 900.0;
        for (const auto& wave : waves)
            value += 80.0 * std::sin(wave[0] * p[0] + wave[1] * p[1] + wave[2] * p[2] +
                                     seed_ * 40.0 * wave[0]);
        const double radius = std::hypot(p[0] / extent_[0], p[1] / extent_[1], p[2] / extent_[2]);
        const double edge = edge_ / extent_[0];
        return value / (1.0 + std::exp((radius - 1.0) / (0.25 * edge)));
    }

    VolumeGrid grid_;
    unsigned seed_;
    double edge_; ///< millimetres
    Point extent_{};
};
