// A run after its loop: saving (run_saving.cpp), reload (run_reload.cpp), post-processing of the
// volumes in memory (run_postprocessing.cpp).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"
#include "volume/postprocessing_options.h"

#include <functional>

/// Path of a file of results: the project's name with `extension`, which has its dot, in its target
/// folder; `unnamed` serves a run without a project name.
[[nodiscard]] QString resultPath(const FMRProject& project, const QString& extension,
                                 const QString& unnamed);

/// The file of the run's regions.
[[nodiscard]] QString regionFilePath(const FMRProject& project);

/// The protocol of a saved run, whose header lies in `folder`: the copy as it was recorded; where
/// that is gone, the one that it was measured with.
[[nodiscard]] QString protocolOfSavedRun(const FMRHeader& header, const QString& folder,
                                         const QString& measuredWith);

/// Asks whether files that could not be written into `folder` are to be tried again.
[[nodiscard]] bool askToSaveAgain(const QString& folder);

/// Writes all files of the run into the target folder and reads them back. When some can't be
/// written the operator is asked, and the failed ones, or all of them when what came back was not
/// what was written, are written again as often as the answer is Yes; the data stay in
/// memory meanwhile. False when files are missing at the end.
[[nodiscard]] bool saveRecordedData(const RunParts& run);

/// Loads project, protocol and contrasts of the run that the settings file describes into the empty
/// document. The model of the complete run comes from its file, or is fitted where there is none;
/// see modelAfterReload(). False after a message.
[[nodiscard]] bool reloadRun(const RunParts& run, const std::function<void()>& stopTimer);

/// Carries the options out on the first volumes of the run, as many as were measured, writes the
/// result under the names that record them and, if asked, fits the model to the changed data. When
/// the files can't be written the operator is asked, and they are written again as often as the
/// answer is Yes. False when nothing was done or not all of it: cancelled, or after a message.
/// While the data are not written the samples are restored; after that a cancellation keeps the
/// maps. The motion that was corrected takes the place of the document's, and its parameters and
/// log are written with the data.
[[nodiscard]] bool postprocessRunInMemory(const RunParts& run, int nrOfMeasuredVolumes,
                                          const PostprocessingOptions& options,
                                          bool recomputeStatistics, ProgressReporter& progress);
