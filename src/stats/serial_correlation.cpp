// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/serial_correlation.h"

#include <algorithm>

namespace {

/// Residuals whose sum of squares is a smaller part of the samples' are rounding errors.
constexpr double negligibleResidual = 1e-20;

const double* rowAt(const double* rows, size_t point) {
    return rows + point * glmBlockVoxels;
}

} // namespace

bool SerialCorrelation::allocate(size_t p) {
    return laggedProducts_.allocate(p * glmBlockVoxels);
}

void SerialCorrelation::findLagOneValues(const WholeRunEquations& equations, const double* samples,
                                         const double* betas, const Row* whitening,
                                         const Row& scales, size_t count, Row& lagOneValues) {
    Row squares{};
    Row lagProducts{};
    for (const StudyDesign& study : equations.studies) {
        const double* previous = nullptr;
        for (size_t t = 0; t < study.points; ++t) {
            const double* row = residuals_[t % 2].data();
            computeResiduals(study.rowOf(t), study.columns, betas,
                             rowAt(samples, study.firstPoint + t), count, residuals_[t % 2].data());
            if (whitening != nullptr) {
                if (t == 0)
                    continue;
                whitenRow(row, residuals_[(t + 1) % 2].data(), whitening->data(), count,
                          whitened_[t % 2].data());
                row = whitened_[t % 2].data();
            }
            addLagOneSums(row, previous, count, squares.data(), lagProducts.data());
            previous = row;
        }
    }
    for (size_t v = 0; v < count; ++v)
        lagOneValues[v] =
            squares[v] > negligibleResidual * scales[v] ? lagProducts[v] / squares[v] : 0.0;
}

void SerialCorrelation::sumWhitenedStudy(const StudyDesign& study, const double* samples,
                                         const Row& whitening, size_t count, double* products,
                                         Row& sums, Row& squares) {
    for (size_t t = 1; t < study.points; t += wholeRunGroupPoints) {
        const size_t points = std::min(wholeRunGroupPoints, study.points - t);
        for (size_t i = 0; i < points; ++i) {
            double* out = group_.data() + i * glmBlockVoxels;
            const double* row = rowAt(samples, study.firstPoint + t + i);
            whitenRow(row, row - glmBlockVoxels, whitening.data(), count, out);
            addMoments(out, count, sums.data(), squares.data());
        }
        addProducts(study.rowOf(t), study.columns, group_.data(), points, count, products);
        addProducts(study.rowOf(t - 1), study.columns, group_.data(), points, count,
                    laggedProducts_.data());
    }
}

void SerialCorrelation::sumWhitened(const WholeRunEquations& equations, const double* samples,
                                    const Row& whitening, size_t count, double* products, Row& sums,
                                    Row& squares) {
    const size_t p = equations.p;
    std::fill_n(products, p * glmBlockVoxels, 0.0);
    std::ranges::fill(laggedProducts_.span(), 0.0);
    sums.fill(0.0);
    squares.fill(0.0);
    for (const StudyDesign& study : equations.studies)
        sumWhitenedStudy(study, samples, whitening, count, products, sums, squares);
    // The whitened columns are x(t) - a x(t-1), where a differs from voxel to voxel.
    for (size_t j = 0; j < p; ++j) {
        double* row = products + j * glmBlockVoxels;
        whitenRow(row, rowAt(laggedProducts_.data(), j), whitening.data(), count, row);
    }
}
