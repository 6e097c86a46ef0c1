// Recursive feature elimination as the operator does it: its files, messages and results.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/feature_elimination.h"

class RunSession;

/// The inputs of an elimination.
struct EliminationFiles {
    QString patterns; ///< .mvp
    QString region;   ///< .roi, or empty: nothing is saved then
};

/// Checks the files, eliminates under a progress box, saves the region (`<region>_RFE.roi`) and the
/// map of weights (`<region>_RFE-<steps>_V-<voxels>.vom`) beside the file of the region, and gives
/// the result; its log holds all lines. Nothing after a message, when it was stopped, or unless the
/// session is idle; files are then untouched. A file that can't be written is told of, and the
/// result given all the same.
[[nodiscard]] std::optional<EliminationResult> runElimination(RunSession& session,
                                                              const EliminationFiles& files,
                                                              const EliminationOptions& options);
