// Motion correction of a run: every volume is registered rigidly to a target and resampled.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "volume/motion_evaluation.h"
#include "volume/motion_log.h"
#include "volume/motion_method.h"
#include "volume/motion_tracking.h"

/// Part of a document. Without a target nothing is corrected.
class MotionCorrection {
public:
    MotionMethod method = MotionMethod::Standard;
    /// The volume to which all others are aligned; of the size of the run's volumes.
    Volume motionTarget;
    /// Six arrays with one value for each analysed volume: X, Y, Z translation in millimetres and
    /// X, Y, Z rotation in degrees. Those of volume 0, and of volumes that were not corrected, are
    /// 0. Empty until volume 1 is corrected.
    std::array<ZeroedBuffer<float>, nrOfMotionParameters> motionParameters;
    /// Volumes whose motion was not found, in rising order: they have the parameters of the last
    /// one whose motion was. Only the methods of least squares tell.
    std::vector<int> volumesNotFound;
    /// The motion was found after the run: every volume, the first one included, is aligned to one
    /// of its own.
    bool foundAfterRun = false;

    /// Zeroed arrays of this length. False, with all of them empty, when memory runs out.
    [[nodiscard]] bool allocateMotionParameters(int nrOfVolumes);
    void releaseMotionParameters();

    /// Copies volume 0 of the run into the allocated target.
    void setMotionTarget(const FMRProject& project);

    /// Corrects volume `v`, from 1 on and in order, in place. It is left unchanged, with its
    /// parameters 0, when memory runs out (at volume 1, for the whole run) or the log can't be
    /// opened; a modeless box tells the operator.
    ///
    /// With the standard method a failed fit sets `motionCorrectionFailed` and counts as no motion.
    /// While the flag is set, by whichever volume or run, volumes are moved by their start values,
    /// without a fit. With the others the volume is moved like the last good one, and the next is
    /// fitted from there.
    ///
    /// The result doesn't depend on the number of `workers`.
    void correctVolumeMotion(FMRProject& project, int v, bool& motionCorrectionFailed,
                             WorkerPool& workers = callersThread());

    /// The steps of correctVolumeMotion(), for whoever has all volumes at hand and chooses which
    /// of them is the target. prepare() is false when memory runs out, after a modeless box;
    /// correct() takes any volume from 0 on, fits it from the motion of the one before, and is
    /// false where the volume stays as it is.
    [[nodiscard]] bool prepare(const FMRProject& project);
    [[nodiscard]] bool correct(FMRProject& project, int v, bool& motionCorrectionFailed,
                               WorkerPool& workers);
    /// To be called first, where the log is saved with the result instead of volume by volume.
    void keepLog() { log_.keepText(); }
    [[nodiscard]] const QByteArray& keptLog() const { return log_.text(); }

    /// At the end of a run: target and work space go, the parameters stay.
    void releaseTarget();

private:
    [[nodiscard]] bool allocateFor(const FMRProject& project);
    [[nodiscard]] bool prepareMethod();
    [[nodiscard]] MotionParameters startValues(int v) const;
    /// The motion of volume `v`; notes it when there is none to be found.
    [[nodiscard]] MotionFit findMotion(std::span<const int16_t> volume, int v,
                                       bool& motionCorrectionFailed, WorkerPool& workers);
    void resample(std::span<const int16_t> volume, const RigidTransformation& transformation,
                  WorkerPool& workers);

    VolumeGrid grid_;
    MotionEvaluator evaluator_; ///< of the standard method
    MotionTracking tracking_;   ///< of the others
    SplineVolume spline_;       ///< of the volume that is resampled
    Volume motionResampled_;    ///< work space
    MotionLog log_;
    bool prepared_ = false;
};

/// Reads volume 0 of the run whose project file is `path` into the motion target. False after a
/// message when the file is missing or its run has other sizes than `project`. Data files that are
/// missing or too short, and a shortage of memory, end the program with status 1 (readSTCVolume).
[[nodiscard]] bool loadIntraSessionTarget(const QString& path, const FMRProject& project,
                                          MotionCorrection& motion);
