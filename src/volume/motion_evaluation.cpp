// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_evaluation.h"

#include <cmath>

namespace {

constexpr int intensityThreshold = 100; // sample value
constexpr int sliceBorder = 1;
constexpr int pixelBorder = 2; // of rows and columns
/// Steps are chosen so that fewer positions than this remain along each axis.
constexpr size_t maximumPositions = 32;

/// Distance from the centre as a fraction of the half size; 0 near the centre. The translation in
/// millimetres is added to a number of voxels: parameters of saved runs depend on it.
float leverArm(int voxel, int size, float translation) {
    const float distance = float(voxel) - float(size) * 0.5f + translation;
    return std::abs(distance) < 2.0f ? 0.0f : distance / float(size) * 2.0f;
}

float difference(int16_t after, int16_t before) {
    return float(2 * (int(after) - int(before)));
}

} // namespace

/// Values at the voxels of a row of the grid and at their neighbours.
struct MotionEvaluator::MovedRow {
    std::array<int16_t, 3 * maximumPositions>
        alongRow; ///< all left ones, the voxels, all right ones
    std::array<int16_t, maximumPositions> above;
    std::array<int16_t, maximumPositions> below;
    std::array<int16_t, maximumPositions> before;
    std::array<int16_t, maximumPositions> behind;
};

int motionSamplingStep(int size) {
    return std::max(size / 16, 1);
}

bool MotionEvaluator::setTarget(const VolumeGrid& grid, std::span<const int16_t> target) {
    grid_ = grid;
    rows_.clear();
    std::vector<int> columns;
    std::vector<int16_t> values;
    const auto [sizeX, sizeY, nrOfSlices] = grid.size;
    for (int z = sliceBorder; z < nrOfSlices - sliceBorder; z += motionSamplingStep(nrOfSlices)) {
        for (int y = pixelBorder; y < sizeY - pixelBorder; y += motionSamplingStep(sizeY)) {
            const int16_t* row =
                target.data() + (size_t(z) * size_t(sizeY) + size_t(y)) * size_t(sizeX);
            const size_t first = columns.size();
            for (int x = pixelBorder; x < sizeX - pixelBorder; x += motionSamplingStep(sizeX)) {
                if (row[x] > intensityThreshold) {
                    columns.push_back(x);
                    values.push_back(row[x]);
                }
            }
            if (columns.size() > first)
                rows_.push_back({y, z, first, columns.size() - first});
        }
    }
    if (!columns_.allocate(columns.size()) || !targetValues_.allocate(columns.size()) ||
        !resampledValues_.allocate(columns.size()) || !motionGradients_.allocate(columns.size()))
        return false;
    std::ranges::copy(columns, columns_.data());
    std::ranges::copy(values, targetValues_.data());
    return true;
}

MotionEvaluator::MovedRow MotionEvaluator::moveRow(const VolumeSampler& sampler,
                                                   const Row& row) const {
    std::array<float, 3 * maximumPositions> positions;
    static_assert(positions.size() <= VolumeSampler::mostColumns);
    const size_t count = row.count;
    for (size_t i = 0; i < count; ++i) {
        const int x = columns_[row.first + i];
        positions[i] = grid_.position(0, x - 1);
        positions[count + i] = grid_.position(0, x);
        positions[2 * count + i] = grid_.position(0, x + 1);
    }
    const std::span all = std::span(positions).first(3 * count);
    const std::span voxels = all.subspan(count, count);
    const auto y = [&](int offset) { return grid_.position(1, row.y + offset); };
    const auto z = [&](int offset) { return grid_.position(2, row.z + offset); };
    MovedRow moved;
    sampler.sampleRow(all, y(0), z(0), moved.alongRow.data());
    sampler.sampleRow(voxels, y(-1), z(0), moved.above.data());
    sampler.sampleRow(voxels, y(1), z(0), moved.below.data());
    sampler.sampleRow(voxels, y(0), z(-1), moved.before.data());
    sampler.sampleRow(voxels, y(0), z(1), moved.behind.data());
    return moved;
}

void MotionEvaluator::computeMotionGradients(const VolumeSampler& sampler,
                                             const RigidTransformation& transformation,
                                             const Row& row) {
    const MovedRow moved = moveRow(sampler, row);
    const float cy = leverArm(row.y, grid_.size[1], transformation.ty);
    const float cz = leverArm(row.z, grid_.size[2], transformation.tz);
    for (size_t i = 0; i < row.count; ++i) {
        const size_t voxel = row.first + i;
        resampledValues_[voxel] = moved.alongRow[row.count + i];
        const float cx = leverArm(columns_[voxel], grid_.size[0], transformation.tx);
        const float gx = difference(moved.alongRow[2 * row.count + i], moved.alongRow[i]);
        const float gy = difference(moved.below[i], moved.above[i]);
        const float gz = difference(moved.behind[i], moved.before[i]);
        motionGradients_[voxel] = {0.5f * gx,         0.5f * gy,         0.5f * gz,
                                   cz * gy - cy * gz, cx * gz - cz * gx, cy * gx - cx * gy};
    }
}

// Rows of the lower triangle, and their part of the gradient. The derivatives are those of the
// resampled value, hence their sign.
template<size_t firstRow, size_t endRow>
void MotionEvaluator::sumUp(MotionEquations& equations) const {
    std::array<double, endRow * endRow> curvature{};
    std::array<double, endRow> gradient{};
    for (size_t voxel = 0; voxel < columns_.size(); ++voxel) {
        if (resampledValues_[voxel] <= intensityThreshold)
            continue;
        const double d = double(targetValues_[voxel]) - double(resampledValues_[voxel]);
        std::array<double, endRow> derivative;
        for (size_t i = 0; i < endRow; ++i)
            derivative[i] = -double(motionGradients_[voxel][i]);
        for (size_t i = firstRow; i < endRow; ++i) {
            for (size_t j = 0; j <= i; ++j)
                curvature[i * endRow + j] += derivative[i] * derivative[j];
            gradient[i] += derivative[i] * d;
        }
    }
    for (size_t i = firstRow; i < endRow; ++i) {
        for (size_t j = 0; j <= i; ++j)
            equations.curvature[i * nrOfMotionParameters + j] =
                equations.curvature[j * nrOfMotionParameters + i] = curvature[i * endRow + j];
        equations.gradient[i] = gradient[i];
    }
}

void MotionEvaluator::sumUpDifferences(MotionEquations& equations) const {
    double sumOfSquares = 0.0;
    int voxelsUsed = 0;
    for (size_t voxel = 0; voxel < columns_.size(); ++voxel) {
        if (resampledValues_[voxel] <= intensityThreshold)
            continue;
        const double d = double(targetValues_[voxel]) - double(resampledValues_[voxel]);
        sumOfSquares += d * d;
        ++voxelsUsed;
    }
    equations.sumOfSquares = sumOfSquares;
    equations.voxelsUsed = voxelsUsed;
}

// Each sum goes over all voxels in their order: the threads share the sums, not the voxels.
void MotionEvaluator::evaluate(std::span<const int16_t> source,
                               const RigidTransformation& transformation,
                               MotionEquations& equations, WorkerPool& workers) {
    const VolumeSampler sampler(grid_, source, transformation);
    workers.forSlabs(rows_.size(), [&](size_t first, size_t end) {
        for (size_t row = first; row < end; ++row)
            computeMotionGradients(sampler, transformation, rows_[row]);
    });
    workers.forParts(3, [&](size_t part) {
        if (part == 0)
            sumUp<0, 4>(equations);
        else if (part == 1)
            sumUp<4, nrOfMotionParameters>(equations);
        else
            sumUpDifferences(equations);
    });
}
