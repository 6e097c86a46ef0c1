// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/volume_preprocessing.h"

namespace {

void correctMotion(const RunParts& run, int volumeIndex) {
    QtCortivoDoc& document = run.document;
    if (volumeIndex > 0)
        document.motion.correctVolumeMotion(document.project, volumeIndex,
                                            run.state.motionCorrectionFailed);
    else if (!run.settings.IntraSessionMotionCorrection)
        document.motion.setMotionTarget(document.project);
}

} // namespace

void preprocessVolume(const RunParts& run, int volumeIndex) {
    if (run.settings.MotionCorrection)
        correctMotion(run, volumeIndex);
    // A volume that can't be smoothed stays as it is, and the run goes on.
    if (run.settings.SpatialGaussianSmoothing)
        static_cast<void>(run.document.smoothing.smoothVolume(
            run.document.project, volumeIndex, run.settings.SpatialSmoothingFWHM));
}
