// Fits the voxels of one block, at most glmBlockVoxels of a slice.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "stats/serial_correlation.h"
#include "stats/whole_run_equations.h"

#include <array>
#include <cstdint>
#include <span>

/// Where the results of a block go: rows of the model's maps from its first voxel on.
struct BlockMaps {
    float* values = nullptr;
    size_t stride = 0;
    /// With the correction, of the voxels that are fitted; others are left as they are.
    double* lagOneBefore = nullptr;
    double* lagOneAfter = nullptr;

    [[nodiscard]] float& at(int row, size_t voxel) const {
        return values[size_t(row) * stride + voxel];
    }
};

/// Reuses its memory from block to block. A voxel that is left out keeps the zeros of the maps.
class WholeRunBlock {
public:
    explicit WholeRunBlock(const WholeRunEquations& equations) : equations_(equations) {}

    /// False, without a message, when memory runs out.
    [[nodiscard]] bool allocate();
    /// `points` holds a pointer to the slice of each data point; the block begins at sample
    /// `first`.
    void fit(std::span<const int16_t* const> points, size_t first, size_t count,
             const BlockMaps& maps);

private:
    using Row = std::array<double, glmBlockVoxels>;

    [[nodiscard]] bool correctsSerialCorrelations() const { return !equations_.bins.empty(); }
    [[nodiscard]] bool testIntensities(std::span<const int16_t* const> points);
    void takeStudy(const StudyDesign& study, std::span<const int16_t* const> points);
    void takeStandardisedStudy(const StudyDesign& study, std::span<const int16_t* const> points);
    void findScales(double points);
    void formSums(std::span<const int16_t* const> points);
    void addGroup(const StudyDesign& study, size_t point, size_t points, const double* rows);
    [[nodiscard]] double* rowsOf(const StudyDesign& study, size_t point);
    [[nodiscard]] size_t nrOfKeptRows() const;
    void solveInside();
    [[nodiscard]] const NormalEquations& equationsOf(size_t voxel) const;
    void correct();
    void store(const BlockMaps& maps, size_t voxel);

    const WholeRunEquations& equations_;
    size_t first_ = 0;
    size_t count_ = 0;
    std::array<bool, glmBlockVoxels> inside_{};

    ZeroedBuffer<double> rows_;                              ///< samples as they are fitted
    ZeroedBuffer<double> products_;                          ///< p rows, X'y
    ZeroedBuffer<double> betas_;                             ///< p rows
    std::vector<double> voxelSums_, voxelBetas_, voxelWork_; ///< p values of one voxel
    Row origins_{};    ///< subtracted from the samples while sums are formed
    Row sampleSums_{}; ///< of the samples without their origins
    Row sums_{};       ///< of the samples as they are fitted
    Row squares_{};
    Row means_{}, scales_{};               ///< of the z transformation in one study
    Row scalingSums_{}, scalingSquares_{}; ///< of the points that it takes them from
    Row totals_{};                         ///< sum of squares of the samples about their mean
    Row fitSquares_{};                     ///< of the fitted values about theirs
    /// With the correction.
    SerialCorrelation correlation_;
    bool isWhitened_ = false; ///< the sums are those of whitened samples
    std::array<int, glmBlockVoxels> bins_{};
    Row lagOneBefore_{}, lagOneAfter_{};
};
