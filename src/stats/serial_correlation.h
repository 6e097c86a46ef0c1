// Lag-one correlation of residuals, and sums of whitened data, for a block of voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "stats/whole_run_equations.h"
#include "stats/whole_run_kernels.h"

#include <array>

/// Works on the samples of all data points as they are fitted, in rows of the block. Residuals and
/// whitened samples of a study never mix with those of another.
class SerialCorrelation {
public:
    using Row = std::array<double, glmBlockVoxels>;

    /// `p` columns. False, without a message, when memory runs out.
    [[nodiscard]] bool allocate(size_t p);

    /// sum e(t) e(t-1) / sum e(t)^2 of the residuals e of these betas (p rows). Whitened residuals
    /// are e(t) - a e(t-1) with the values a of `whitening`, from the second point of each study
    /// on. A voxel whose residuals are only rounding errors beside `scales`, sums of squares of its
    /// samples, gets 0.
    void findLagOneValues(const WholeRunEquations& equations, const double* samples,
                          const double* betas, const Row* whitening, const Row& scales,
                          size_t count, Row& lagOneValues);

    /// X'y (p rows), sums and sums of squares of the whitened samples, X whitened with the same
    /// values.
    void sumWhitened(const WholeRunEquations& equations, const double* samples,
                     const Row& whitening, size_t count, double* products, Row& sums, Row& squares);

private:
    void sumWhitenedStudy(const StudyDesign& study, const double* samples, const Row& whitening,
                          size_t count, double* products, Row& sums, Row& squares);

    ZeroedBuffer<double> laggedProducts_;                              ///< p rows
    std::array<double, glmBlockVoxels * wholeRunGroupPoints> group_{}; ///< whitened samples
    std::array<Row, 2> residuals_{}; ///< of a point and the one before
    std::array<Row, 2> whitened_{};  ///< likewise
};
