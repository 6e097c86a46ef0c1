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

// A volume that can't be smoothed stays as it is, and the run goes on; the operator hears of it
// with the first one.
void smooth(const RunParts& run, int volumeIndex) {
    FMRProject& project = run.document.project;
    const float fwhm = run.settings.SpatialSmoothingFWHM;
    if (!run.document.smoothing.smoothVolume(project, volumeIndex, fwhm) && volumeIndex == 0 &&
        !SpatialSmoothing::isPossible(voxelWidths(project, double(fwhm))))
        showWarningAside(QString("WARNING: Volumes are not smoothed: a width of %1 mm does not go "
                                 "with their voxel size.")
                             .arg(double(fwhm)));
}

} // namespace

void preprocessVolume(const RunParts& run, int volumeIndex) {
    if (run.settings.MotionCorrection)
        correctMotion(run, volumeIndex);
    if (run.settings.SpatialGaussianSmoothing)
        smooth(run, volumeIndex);
}
