// Saving a recorded run: the same files under the same names, whichever way the loop ended.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

/// Asks whether files that could not be written into `folder` are to be tried again.
[[nodiscard]] bool askToSaveAgain(const QString& folder);

/// Writes all files of the run into the target folder. When some can't be written the operator is
/// asked, and the failed ones are written again as often as the answer is Yes; the data stay in
/// memory meanwhile. False when files are missing at the end.
[[nodiscard]] bool saveRecordedData(const RunParts& run);
