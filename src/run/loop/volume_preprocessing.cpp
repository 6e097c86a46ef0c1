// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/volume_preprocessing.h"

#include "base/messages.h"

namespace {

void correctMotion(const RunParts& run, int volumeIndex) {
    QtCortivoDoc& document = run.document;
    if (volumeIndex > 0)
        document.motion.correctVolumeMotion(document.project, volumeIndex,
                                            run.state.motionCorrectionFailed);
    else if (!run.settings.IntraSessionMotionCorrection)
        document.motion.setMotionTarget(document.project);
}

// A volume that can't be smoothed stays as it is, a width of 0 leaves nothing of it, and the run
// goes on; the operator hears of either with the first volume.
void smooth(const RunParts& run, int volumeIndex) {
    FMRProject& project = run.document.project;
    const float fwhm = run.settings.SpatialSmoothingFWHM;
    const bool smoothed = run.document.smoothing.smoothVolume(project, volumeIndex, fwhm);
    if (volumeIndex != 0 || SpatialSmoothing::isPossible(voxelWidths(project, double(fwhm))))
        return;
    const QString text =
        smoothed ? "WARNING: A smoothing width of %1 mm makes all samples of the run 0."
                 : "WARNING: Volumes are not smoothed: a width of %1 mm does not go with their "
                   "voxel size.";
    showWarningAside(text.arg(double(fwhm)));
}

} // namespace

void preprocessVolume(const RunParts& run, int volumeIndex) {
    if (run.settings.MotionCorrection)
        correctMotion(run, volumeIndex);
    if (run.settings.SpatialGaussianSmoothing)
        smooth(run, volumeIndex);
}
