// The target of a run that is aligned to another run of the same session.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_correction.h"

/// Reads volume 0 of the run whose project file is `path` into the motion target. False after a
/// message when the file isn't there or its run has other sizes than `project`. Data files that are
/// missing or too short, and a shortage of memory, end the program with status 1 (readSTCVolume).
[[nodiscard]] bool loadIntraSessionTarget(const QString& path, const FMRProject& project,
                                          MotionCorrection& motion);
