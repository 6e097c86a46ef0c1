// One first-level fold of feature elimination: its voxels are found without its trials, and tried
// on them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/feature_elimination.h"

#include <functional>

/// The trials of the fold and what they are worked on with. Exemplars are numbered from 0 in
/// `patterns`, which have two classes and enough trials and voxels for the options.
struct EliminationTask {
    const PatternSet& patterns;
    const EliminationOptions& options;
    const VoxelList* places = nullptr; ///< one voxel for each feature, or null
    std::vector<int> training;
    std::vector<int> test;
    unsigned seed = 1;
};

/// What a fold has found.
struct EliminationFold {
    SVMResult result = SVMResult::Done;
    QStringList log;
    std::vector<double> accuracy; ///< of the test trials, percent by level
    std::vector<int> voxels;      ///< features that were left at the last level, ascending
    std::vector<double> weights;  ///< of `voxels`: mean over the second-level folds
};

/// `levelDone` is called after each level.
[[nodiscard]] EliminationFold eliminateInFold(const EliminationTask& task,
                                              const std::stop_token& stop,
                                              const std::function<void()>& levelDone);
