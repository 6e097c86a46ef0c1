// The motion of a run as a design matrix file (_3DMC.rtc).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_correction.h"

/// Project path with its extension replaced by "_3DMC.rtc"; "3DMC.rtc", in the current folder, for
/// a path without extension.
[[nodiscard]] QString motionParametersFileName(const FMRProject& project);

/// Writes the parameters of the first `nrOfVolumes` volumes. True, with nothing written, when there
/// are no parameters (a run of one volume); false after a message, with an old file untouched.
[[nodiscard]] bool saveMotionParameters(const MotionCorrection& motion, const FMRProject& project,
                                        int nrOfVolumes);

/// Reads them back; the file must state as many volumes as the project. On a failure
/// `motionCorrection`, the setting, is cleared and there are no parameters: a file of another
/// number of volumes passes in silence, everything else is told.
[[nodiscard]] bool loadMotionParameters(MotionCorrection& motion, const FMRProject& project,
                                        bool& motionCorrection);
