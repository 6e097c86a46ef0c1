// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/volume_preprocessing.h"

#include "base/messages.h"

namespace {

void correctMotion(const RunParts& run, int volumeIndex) {
    QtCortivoDoc& document = run.document;
    if (volumeIndex > 0) {
        document.motion.correctVolumeMotion(document.project, volumeIndex,
                                            run.report.motionCorrectionFailed, run.workers);
        run.report.volumesWithoutMotion = int(document.motion.volumesNotFound.size());
    } else if (!run.settings.IntraSessionMotionCorrection) {
        document.motion.setMotionTarget(document.project);
    }
}

// With a width that can't be used (of 0 nothing would be left of a volume) volumes stay as they
// are, and the run goes on; the operator hears of it with the first one.
void smooth(const RunParts& run, int volumeIndex) {
    FMRProject& project = run.document.project;
    const float fwhm = run.settings.SpatialSmoothingFWHM;
    if (fwhm > 0.0f && run.document.smoothing.smoothVolume(project, volumeIndex, fwhm, run.workers))
        return;
    if (volumeIndex == 0 && !SpatialSmoothing::isPossible(voxelWidths(project, double(fwhm))))
        showModelessWarning(
            QString("WARNING: Volumes are not smoothed: a width of %1 mm does not go "
                    "with their voxel size.")
                .arg(double(fwhm)));
}

} // namespace

void preprocessVolume(const RunParts& run, int volumeIndex) {
    VolumeLedger& ledger = run.document.ledger;
    if (run.settings.MotionCorrection) {
        ledger.enter(VolumeStage::Motion, run.pump.microseconds());
        correctMotion(run, volumeIndex);
    }
    if (run.settings.SpatialGaussianSmoothing) {
        ledger.enter(VolumeStage::Smoothing, run.pump.microseconds());
        smooth(run, volumeIndex);
    }
}
