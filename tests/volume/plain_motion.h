// Motion correction in its plain form: the whole volume is resampled, and six gradient volumes are
// filled, at each evaluation. The program's form must give the same bits.
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
        for (int z = 0; z < grid_.size[2]; ++z)
            for (int y = 0; y < grid_.size[1]; ++y)
                for (int x = 0; x < grid_.size[0]; ++x) {
                    const C3dVector point{position(0, x), position(1, y), position(2, z)};
                    const C3dVector from = matrix * point;
                    resampled_[at(x, y, z)] =
                        sample({voxel(0, from.x), voxel(1, from.y), voxel(2, from.z)});
                }
        return resampled_;
    }

    void evaluate(const RigidTransformation& t, MotionEquations& equations) {
        computeMotionGradients(t);
        equations = {};
        forEachSampled([&](size_t voxel, const std::array<int, 3>&) {
            const double d = double(target_[voxel]) - resampled_[voxel];
            double derivative[6];
            for (size_t k = 0; k < 6; ++k)
                derivative[k] = -double(gradients_[k][voxel]);
            for (size_t j = 0; j < 6; ++j) {
                for (size_t k = 0; k <= j; ++k)
                    equations.curvature[j * 6 + k] += derivative[j] * derivative[k];
                equations.gradient[j] += derivative[j] * d;
            }
            equations.sumOfSquares += d * d;
            ++equations.voxelsUsed;
        });
        for (size_t j = 0; j < 6; ++j)
            for (size_t k = j + 1; k < 6; ++k)
                equations.curvature[j * 6 + k] = equations.curvature[k * 6 + j];
    }

private:
    size_t at(int x, int y, int z) const {
        return (size_t(z) * size_t(grid_.size[1]) + size_t(y)) * size_t(grid_.size[0]) + size_t(x);
    }
    float position(size_t axis, int index) const {
        return (float(index) - float(grid_.size[axis] - 1) / 2.0f) * grid_.spacing[axis];
    }
    float voxel(size_t axis, float millimetres) const {
        return millimetres / grid_.spacing[axis] + float(grid_.size[axis] - 1) / 2.0f;
    }

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
                corner[k][j] = source_[left] + part[0] * float(source_[left + 1] - source_[left]);
            }
        const float near = corner[0][0] + part[1] * (corner[0][1] - corner[0][0]);
        const float far = corner[1][0] + part[1] * (corner[1][1] - corner[1][0]);
        return int16_t(std::floor(double(near + part[2] * (far - near)) + 0.5));
    }

    template<typename Work> void forEachSampled(const Work& work) const {
        const std::array<int, 3> border{2, 2, 1};
        std::array<int, 3> step{};
        for (size_t axis = 0; axis < 3; ++axis)
            step[axis] = grid_.size[axis] < 32 ? 1 : grid_.size[axis] / 16;
        for (int z = border[2]; z < grid_.size[2] - border[2]; z += step[2])
            for (int y = border[1]; y < grid_.size[1] - border[1]; y += step[1])
                for (int x = border[0]; x < grid_.size[0] - border[0]; x += step[0])
                    if (target_[at(x, y, z)] > 100 && resampled_[at(x, y, z)] > 100)
                        work(at(x, y, z), std::array{x, y, z});
    }

    void computeMotionGradients(const RigidTransformation& t) {
        resample(t);
        for (std::vector<float>& volume : gradients_)
            volume.assign(grid_.samples(), 0.0f);
        const float translation[3] = {t.tx, t.ty, t.tz};
        const size_t neighbour[3] = {1, at(0, 1, 0), at(0, 0, 1)};
        forEachSampled([&](size_t voxel, const std::array<int, 3>& index) {
            float g[3], c[3];
            for (size_t axis = 0; axis < 3; ++axis) {
                g[axis] = float(2 * (resampled_[voxel + neighbour[axis]] -
                                     resampled_[voxel - neighbour[axis]]));
                gradients_[axis][voxel] = 0.5f * g[axis];
                c[axis] = float(index[axis]) - float(grid_.size[axis]) * 0.5f + translation[axis];
                c[axis] =
                    std::abs(c[axis]) < 2.0f ? 0.0f : c[axis] / float(grid_.size[axis]) * 2.0f;
            }
            gradients_[3][voxel] = c[2] * g[1] - c[1] * g[2];
            gradients_[4][voxel] = c[0] * g[2] - c[2] * g[0];
            gradients_[5][voxel] = c[1] * g[0] - c[0] * g[1];
        });
    }

    VolumeGrid grid_;
    std::span<const int16_t> target_;
    std::span<const int16_t> source_;
    std::vector<int16_t> resampled_;
    std::array<std::vector<float>, 6> gradients_;
};
