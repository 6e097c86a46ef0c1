// Recursive feature elimination: which voxels carry a distinction of two classes
// (F. De Martino et al., NeuroImage 43, 2008, 44-58).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_tasks.h"
#include "regions/region_of_interest.h"

#include <QStringList>
#include <optional>

struct EliminationOptions {
    int firstLevelFolds = 4;
    int secondLevelFolds = 4;
    int steps = 10;             ///< of elimination, 1 to 999
    double finalPercent = 30.0; ///< of the voxels that remain after the last step
    bool smoothRanking = false; ///< of the scores, over the places of the voxels
    double smoothingFWHM = 2.0; ///< voxels
    bool univariateSelection = false;
    double univariatePercent = 50.0;
    bool univariateMeansOnly = false; ///< scores from means, not from means over deviations
    SVMOptions svm;                   ///< the kernel is linear
    unsigned seed = 1;                ///< of all shuffling; in the log

    bool operator==(const EliminationOptions&) const = default;
};

/// Why a set of patterns can't be used, or an elimination has ended early: title and text of the
/// message.
struct EliminationFault {
    QString text;
    QString detail;
};

struct EliminationResult {
    SVMResult result = SVMResult::Done;
    std::optional<EliminationFault> fault;
    QStringList log;
    std::vector<double> meanAccuracy; ///< percent by level, from level 0 with all voxels
    std::vector<double> nrOfVoxels;   ///< by level, mean over the folds
    int voxelsPerFold = 0;
    int mergedVoxels = 0; ///< different voxels over all folds
    /// Features that were chosen in the end, the most often chosen first, ties by the magnitude of
    /// their mean weight.
    std::vector<int> voxels;
    std::vector<double> weights; ///< of `voxels`: mean over the folds that chose them
};

/// Number of voxels at each level, from level 0 to `steps`: each is round(previous x f) with f =
/// (percent / 100)^(1 / steps), halves up; 0 where too many are removed.
[[nodiscard]] std::vector<int> voxelsAtLevels(int nrOfVoxels, int steps, double finalPercent);

/// Voxels that an elimination starts with: all of them, or the percent that the univariate
/// selection leaves, rounded.
[[nodiscard]] int voxelsAfterUnivariateSelection(int nrOfVoxels, const EliminationOptions& options);

/// Needed are exactly two classes of the same size, with enough trials for the folds, and at least
/// one voxel at each level.
[[nodiscard]] std::optional<EliminationFault> faultOfElimination(const PatternSet& patterns,
                                                                 const EliminationOptions& options);

/// `places` has one voxel for each feature, or is null: scores are not smoothed then. Each
/// first-level fold goes to the next free thread; the result doesn't depend on their number, since
/// the random orders of a fold have a generator of their own.
[[nodiscard]] EliminationResult eliminateFeatures(const PatternSet& patterns,
                                                  const EliminationOptions& options,
                                                  const VoxelList* places,
                                                  ProgressReporter& progress,
                                                  int nrOfThreads = oneThreadPerCore);
