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

/// Checks the files, eliminates under a progress box, saves the region and the map of weights, and
/// gives the result; its log holds all lines. Nothing after a message, when it was stopped, or
/// unless the session is idle; files are then untouched.
[[nodiscard]] std::optional<EliminationResult> runElimination(RunSession& session,
                                                              const EliminationFiles& files,
                                                              const EliminationOptions& options);
