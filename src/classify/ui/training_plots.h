// What the plots of training show: patterns as matrices, and what chance gives.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/cross_validation.h"
#include "display/plots/matrix_plotter.h"
#include "display/plots/plot_content.h"

/// All exemplars as rows, class after class and in their own order within a class, features as
/// columns; then the mean of each class as a row. Empty without exemplars.
[[nodiscard]] std::vector<PlotMatrix> patternMatrices(const PatternSet& patterns);

/// How many shufflings were how accurate, as bars of equally wide ranges of trials that are right;
/// the one that holds the true labels is marked. At most 40 bars. `nrOfTrials` is that of the
/// patterns.
[[nodiscard]] PlotContent permutationContent(const PermutationTest& test, int nrOfTrials);
