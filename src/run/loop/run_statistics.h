// The model of a complete run: fitted after its loop, after a reload and after post-processing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"
#include "stats/whole_run_glm.h"

/// The file of the run's model, and that of its design with all confounds.
[[nodiscard]] QString modelFilePath(const FMRProject& project);
[[nodiscard]] QString modelDesignFilePath(const FMRProject& project);

/// Fits the design of the run to its first volumes and computes maps and clusters from it. A run
/// that is too short for a model is done without one. Cancelled or failed (after a message), model
/// and maps are what they were.
[[nodiscard]] WholeRunFit fitCompleteRun(const RunParts& run, int nrOfVolumes,
                                         ProgressReporter& progress);

/// Maps and clusters of the model that the document has, for its contrasts. False without a model.
bool showModel(const RunParts& run);

/// Removes the model and its maps, also those that the live model left behind.
void dropModel(const RunParts& run);

/// fitCompleteRun() with a progress box, for a run that has ended; when it is saved completely, the
/// model and its design are written beside it. Without a fit there is no model and no map.
void fitAfterRun(const RunParts& run);

/// The model of a reloaded run: that of its file if there is one that fits, else fitted anew.
void modelAfterReload(const RunParts& run);
