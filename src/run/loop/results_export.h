// The results of a run for other programs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "run/document/qt_cortivo_doc.h"

/// Why there is nothing to be exported; empty when there is.
[[nodiscard]] QString exportHindrance(const QtCortivoDoc& document, int nrOfVolumes);

/// Writes the first volumes of the run under the name, which ends in .nii or .nii.gz and gets .nii
/// where it does not; beside it the maps in use ("_maps" before the extension) and the brain mask
/// ("_mask"), where there are any. `nrOfVolumes` is 0 for a project of several runs, which has no
/// series. False, with `error` saying why (empty when cancelled); files that were written before
/// stay, and no file is half written.
[[nodiscard]] bool exportResults(const QtCortivoDoc& document, int nrOfVolumes, const QString& path,
                                 ProgressReporter& progress, QString& error);
