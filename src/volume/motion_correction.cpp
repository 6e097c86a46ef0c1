// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_correction.h"

#include "base/messages.h"
#include "volume/fmr_file.h"
#include "volume/spline_resampling.h"
#include "volume/stc_file.h"

#include <QFile>
#include <QFileInfo>

namespace {

bool canBeOpened(const QString& path) {
    // Opening a pipe would wait for its other end.
    return QFileInfo(path).isFile() && QFile(path).open(QIODevice::ReadOnly);
}

} // namespace

bool MotionCorrection::allocateMotionParameters(int nrOfVolumes) {
    for (ZeroedBuffer<float>& values : motionParameters) {
        if (!values.allocate(size_t(std::max(nrOfVolumes, 0)))) {
            releaseMotionParameters();
            return false;
        }
    }
    return true;
}

void MotionCorrection::releaseMotionParameters() {
    for (ZeroedBuffer<float>& values : motionParameters)
        values.release();
}

void MotionCorrection::setMotionTarget(const FMRProject& project) {
    if (!project.volumes.empty() && project.volumes.samplesOfEach() == motionTarget.size())
        std::ranges::copy(project.volumes[0], motionTarget.data());
}

void MotionCorrection::releaseTarget() {
    prepared_ = false;
    motionTarget.release();
    motionResampled_.release();
    evaluator_ = {};
    tracking_ = {};
    spline_ = {};
}

bool MotionCorrection::prepare(const FMRProject& project) {
    return prepared_ = allocateFor(project);
}

bool MotionCorrection::allocateFor(const FMRProject& project) {
    grid_ = VolumeGrid(project);
    if (motionTarget.size() != grid_.samples() || motionTarget.empty())
        return false;
    if (!motionResampled_.allocate(grid_.samples())) {
        showModelessWarning("ERROR: Insufficient memory for creating VTC volume!");
        return false;
    }
    volumesNotFound.clear();
    if (!allocateMotionParameters(project.NrOfVolumes) || !prepareMethod()) {
        showModelessWarning(
            "ERROR: Insufficient memory for creating volume for motion correction!");
        return false;
    }
    return true;
}

bool MotionCorrection::prepareMethod() {
    if (method == MotionMethod::Standard)
        return evaluator_.setTarget(grid_, motionTarget.span());
    return tracking_.setTarget(grid_, motionTarget.span()) &&
           (method != MotionMethod::LeastSquares || spline_.allocate(grid_, SplineDegree::Cubic));
}

// Motion seldom continues: part of the last estimate is a better start than all or none of it.
MotionParameters MotionCorrection::startValues(int v) const {
    MotionParameters start{};
    for (size_t i = 0; v > 0 && i < nrOfMotionParameters; ++i)
        start[i] = double(0.9f * motionParameters[i][size_t(v) - 1]);
    return start;
}

MotionFit MotionCorrection::findMotion(std::span<const int16_t> volume, int v,
                                       bool& motionCorrectionFailed, WorkerPool& workers) {
    if (method == MotionMethod::Standard)
        return fitMotion(
            [&](const RigidTransformation& transformation, MotionEquations& equations) {
                evaluator_.evaluate(volume, transformation, equations, workers);
            },
            startValues(v), motionCorrectionFailed);
    const MotionTracking::Found found = tracking_.follow(volume, workers);
    if (!found.good)
        volumesNotFound.push_back(v);
    return {found.transformation, found.steps};
}

void MotionCorrection::resample(std::span<const int16_t> volume,
                                const RigidTransformation& transformation, WorkerPool& workers) {
    if (method != MotionMethod::LeastSquares)
        return resampleVolume(grid_, volume, motionResampled_.span(), transformation, workers);
    spline_.setSamples(volume, workers);
    resampleVolume(spline_, motionResampled_.span(), transformation, workers);
}

void MotionCorrection::correctVolumeMotion(FMRProject& project, int v, bool& motionCorrectionFailed,
                                           WorkerPool& workers) {
    if (v == 1)
        (void)prepare(project);
    if (v >= 1)
        (void)correct(project, v, motionCorrectionFailed, workers);
}

bool MotionCorrection::correct(FMRProject& project, int v, bool& motionCorrectionFailed,
                               WorkerPool& workers) {
    if (!prepared_ || v < 0 || size_t(v) >= motionParameters[0].size() ||
        size_t(v) >= project.volumes.size() || project.volumes.samplesOfEach() != grid_.samples() ||
        !log_.open(project, motionLogHead(method, grid_)))
        return false;
    // The volume itself is the source: it is replaced only when the result is complete.
    const std::span<int16_t> volume = project.volumes[size_t(v)];
    const MotionFit fit = findMotion(volume, v, motionCorrectionFailed, workers);
    const bool found = volumesNotFound.empty() || volumesNotFound.back() != v;
    log_.add(motionLogLine(v, fit, found));
    resample(volume, fit.transformation, workers);
    const RigidTransformation& t = fit.transformation;
    const std::array<float, nrOfMotionParameters> values{t.tx, t.ty, t.tz, t.rx, t.ry, t.rz};
    for (size_t i = 0; i < nrOfMotionParameters; ++i)
        motionParameters[i][size_t(v)] = values[i];
    workers.forSlabs(volume.size(), [&](size_t first, size_t end) {
        std::copy_n(motionResampled_.data() + first, end - first, volume.data() + first);
    });
    return true;
}

bool loadIntraSessionTarget(const QString& path, const FMRProject& project,
                            MotionCorrection& motion) {
    if (!canBeOpened(path)) {
        showWarning(QString("Can not find target FMR \"%1\" for across-run, same-session motion "
                            "correction")
                        .arg(path));
        return false;
    }
    FMRHeader target;
    if (!readFMRHeader(path, target))
        return false;
    if (target.size() != project.size()) {
        showWarning("The provided across-run, same-session target FMR file does not match current "
                    "(source) FMR file!");
        return false;
    }
    return readSTCVolume(0, path, target, motion.motionTarget) && target.size() == project.size();
}
