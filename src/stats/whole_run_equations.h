// What the fit of complete data computes from the design alone, shared by all voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/whole_run_model.h"

/// The design of one study's points.
struct StudyDesign {
    size_t firstPoint = 0; ///< in the model
    size_t points = 0;
    std::vector<int> columns; ///< those that are not 0 throughout the study
    std::vector<double> x;    ///< points x columns
    /// The points that mean and deviation of the z transformation are taken from.
    std::vector<char> scalingPoints;

    [[nodiscard]] const double* rowOf(size_t point) const {
        return x.data() + point * columns.size();
    }
};

/// The normal equations of the design, in double.
struct NormalEquations {
    std::vector<double> inverse; ///< p x p, of X'X
    std::vector<double> centred; ///< p x p, X'X of the columns less their means
    /// What a 1, added to every sample, adds to X'y and to the betas; p values each.
    std::vector<double> onesSums;
    std::vector<double> onesBetas;
    int points = 0;
    int rank = 0;
};

/// All that voxels share.
struct WholeRunEquations {
    size_t p = 0;
    size_t n = 0;
    ZTransformation transformation = ZTransformation::None;
    std::vector<StudyDesign> studies;
    NormalEquations plain;
    /// Of the design whitened with the value of each bin; empty without the correction.
    std::vector<NormalEquations> bins;
    /// True when the columns can add up to a constant, so that a fit may leave out what all samples
    /// of a voxel have in common.
    bool containsConstant = false;
};

/// False, after a message, when memory runs out, or when an inversion fails, which ends the
/// program. The design must be one that isUsableDesign() accepts.
[[nodiscard]] bool makeWholeRunEquations(const WholeRunDesign& design,
                                         WholeRunEquations& equations);

/// True when studies, columns and X agree in size, each study has a point and X is finite; false
/// after a message.
[[nodiscard]] bool isUsableDesign(const WholeRunDesign& design);

/// Sets rank and binInverses of a model.
void storeDerivedParts(const WholeRunEquations& equations, WholeRunModel& model);

/// X'X in double, p x p; of a design that corrects serial correlations whitened with the value.
[[nodiscard]] std::vector<double> whitenedNormalMatrix(const WholeRunDesign& design,
                                                       double lagOneValue);

[[nodiscard]] std::vector<float> inFloat(const std::vector<double>& values);
