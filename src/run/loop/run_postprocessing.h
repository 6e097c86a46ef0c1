// Post-processing of the run in memory, with its files and statistics.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"
#include "volume/postprocessing_options.h"

/// Carries the options out on the first volumes of the run, as many as were measured, writes the
/// result under the names that record them and, if asked, fits the model to the changed data. When
/// the files can't be written the operator is asked, and they are written again as often as the
/// answer is Yes. False when nothing was done or not all of it: cancelled, or after a message.
/// Cancelled before the data are written, the samples are brought back; after that it keeps the
/// maps.
[[nodiscard]] bool postprocessRunInMemory(const RunParts& run, int nrOfMeasuredVolumes,
                                          const PostprocessingOptions& options,
                                          bool recomputeStatistics, ProgressReporter& progress);
