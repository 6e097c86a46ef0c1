// Motion correction in its plain form: the whole volume is resampled at each evaluation. The
// program's form must give the same bits.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_fit.h"

#include <cmath>
#include <vector>

class PlainMotion {
public:
    PlainMotion(const VolumeGrid& grid, std::span<const int16_t> target,
                std::span<const int16_t> source)
        : grid_(grid), target_(target), source_(source), resampled_(grid.samples()) {}

    const std::vector<int16_t>& resample(const RigidTransformation& t) {
        const C3dMatrix matrix = t.matrix();
        const auto millimetres = [&](size_t axis, int index) {
            return (float(index) - half(axis)) * grid_.spacing[axis];
        };
        for (int z = 0; z < grid_.size[2]; ++z)
            for (int y = 0; y < grid_.size[1]; ++y)
                for (int x = 0; x < grid_.size[0]; ++x) {
                    const C3dVector from =
                        matrix * C3dVector{millimetres(0, x), millimetres(1, y), millimetres(2, z)};
                    resampled_[at(x, y, z)] = sample({from.x / grid_.spacing[0] + half(0),
                                                      from.y / grid_.spacing[1] + half(1),
                                                      from.z / grid_.spacing[2] + half(2)});
                }
        return resampled_;
    }

    void evaluate(const RigidTransformation& t, MotionEquations& equations) {
        resample(t);
        equations = {};
        for (int z = 1; z < grid_.size[2] - 1; z += step(2))
            for (int y = 2; y < grid_.size[1] - 2; y += step(1))
                for (int x = 2; x < grid_.size[0] - 2; x += step(0))
                    if (target_[at(x, y, z)] > 100 && resampled_[at(x, y, z)] > 100)
                        addVoxel({x, y, z}, t, equations);
        for (size_t j = 0; j < 6; ++j)
            for (size_t k = j + 1; k < 6; ++k)
                equations.curvature[j * 6 + k] = equations.curvature[k * 6 + j];
    }

private:
    size_t at(int x, int y, int z) const {
        return (size_t(z) * size_t(grid_.size[1]) + size_t(y)) * size_t(grid_.size[0]) + size_t(x);
    }
    float half(size_t axis) const { return float(grid_.size[axis] - 1) / 2.0f; }
    int step(size_t axis) const { return grid_.size[axis] < 32 ? 1 : grid_.size[axis] / 16; }

    int16_t sample(const std::array<float, 3>& point) const {
        int whole[3], nearest[3];
        float part[3];
        bool inside = true, nearestInside = true;
        for (size_t axis = 0; axis < 3; ++axis) {
            // A conversion of what no int can hold is not defined.
            if (!(std::abs(point[axis]) < 1e6f))
                return 0;
            whole[axis] = int(point[axis] < 0.0f ? point[axis] - 1.0f : point[axis]);
            part[axis] = point[axis] - float(whole[axis]);
            inside = inside && whole[axis] >= 0 && whole[axis] + 1 < grid_.size[axis];
            nearest[axis] = int(point[axis] + 0.5f);
            nearestInside = nearestInside && nearest[axis] >= 0 && nearest[axis] < grid_.size[axis];
        }
        if (!inside)
            return nearestInside ? source_[at(nearest[0], nearest[1], nearest[2])] : int16_t(0);
        float corner[2][2];
        for (int k = 0; k < 2; ++k)
            for (int j = 0; j < 2; ++j) {
                const size_t left = at(whole[0], whole[1] + j, whole[2] + k);
                const auto value = [&](size_t i) { return float(uint16_t(source_[i])); };
                corner[k][j] = value(left) + part[0] * (value(left + 1) - value(left));
            }
        const float near = corner[0][0] + part[1] * (corner[0][1] - corner[0][0]);
        const float far = corner[1][0] + part[1] * (corner[1][1] - corner[1][0]);
        return int16_t(int(std::floor(double(near + part[2] * (far - near)) + 0.5)));
    }

    void addVoxel(const std::array<int, 3>& index, const RigidTransformation& t,
                  MotionEquations& equations) const {
        const size_t voxel = at(index[0], index[1], index[2]);
        const float translation[3] = {t.tx, t.ty, t.tz};
        const size_t neighbour[3] = {1, at(0, 1, 0), at(0, 0, 1)};
        float g[3], c[3];
        for (size_t axis = 0; axis < 3; ++axis) {
            g[axis] = float(
                2 * (resampled_[voxel + neighbour[axis]] - resampled_[voxel - neighbour[axis]]));
            c[axis] = float(index[axis]) - float(grid_.size[axis]) * 0.5f + translation[axis];
            c[axis] = std::abs(c[axis]) < 2.0f ? 0.0f : c[axis] / float(grid_.size[axis]) * 2.0f;
        }
        const float gradient[6] = {0.5f * g[0],
                                   0.5f * g[1],
                                   0.5f * g[2],
                                   c[2] * g[1] - c[1] * g[2],
                                   c[0] * g[2] - c[2] * g[0],
                                   c[1] * g[0] - c[0] * g[1]};
        const double d = double(target_[voxel]) - resampled_[voxel];
        for (size_t j = 0; j < 6; ++j) {
            for (size_t k = 0; k <= j; ++k)
                equations.curvature[j * 6 + k] += double(gradient[j]) * double(gradient[k]);
            equations.gradient[j] -= double(gradient[j]) * d;
        }
        equations.sumOfSquares += d * d;
        ++equations.voxelsUsed;
    }

    VolumeGrid grid_;
    std::span<const int16_t> target_;
    std::span<const int16_t> source_;
    std::vector<int16_t> resampled_;
};
