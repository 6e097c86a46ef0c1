// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_log.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "volume/motion_evaluation.h"

#include <QDir>

namespace {

constexpr int MaxNrOfLevMarqIterations = 10; // as logs have always stated it; a fit may take 11

} // namespace

QString motionLogFileName(const FMRProject& project) {
    const QString name = paths::fileName(project.projectPath);
    return paths::join(project.targetFolder, name.contains('.')
                                                 ? paths::withoutExtension(name) + "_3DMC.log"
                                                 : QString("REALTIME_3DMC.log"));
}

QByteArray motionLogHead(MotionMethod method, const VolumeGrid& grid) {
    if (method == MotionMethod::LeastSquares)
        return "InterpolationMethod: CubicBSpline\nFitMethod: LeastSquares\n\n";
    if (method == MotionMethod::LeastSquaresTrilinear)
        return "InterpolationMethod: Trilinear\nFitMethod: LeastSquares\n\n";
    const int x = motionSamplingStep(grid.size[0]);
    const int y = motionSamplingStep(grid.size[1]);
    const int z = motionSamplingStep(grid.size[2]);
    QByteArray text = "InterpolationMethod: Trilinear\n";
    if (x == 1 && y == 1 && z == 1)
        text += "FullDataSet: Yes\n";
    else
        text += formatted("FullDataSet: No   (sampling: %i %i %i)\n", x, y, z);
    return text + formatted("MaxNrOfLevMarqIterations: %i\n\n", MaxNrOfLevMarqIterations);
}

QByteArray motionLogLine(int volume, const MotionFit& fit, bool found) {
    const RigidTransformation& t = fit.transformation;
    return formatted("-> volume: %4i   n_its: %4i   dx: %6.4f mm  dy: %6.4f mm  dz: %6.4f mm    "
                     "rx: %6.4f degs   ry: %6.4f degs  rz: %6.4f degs%s\n",
                     volume + 1, fit.steps, double(t.tx), double(t.ty), double(t.tz), double(t.rx),
                     double(t.ry), double(t.rz),
                     found ? "" : "   not found, as for the last volume that was");
}

bool MotionLog::open(const FMRProject& project, const QByteArray& head) {
    if (keepsText_) {
        if (text_.isEmpty())
            text_ = head;
        return true;
    }
    file_.setFileName(motionLogFileName(project));
    const QIODevice::OpenMode mode = started_ ? QIODevice::Append : QIODevice::Truncate;
    const auto open = [&] { return file_.open(QIODevice::WriteOnly | mode); };
    // The folder was there when the run began. If it has gone since, volumes would stay uncorrected
    // for want of it.
    if (!open() && !(QDir().mkpath(project.targetFolder) && open())) {
        warn();
        return false;
    }
    if (!started_) {
        started_ = file_.write(head) == head.size() && file_.flush();
    }
    return true;
}

void MotionLog::add(const QByteArray& line) {
    if (keepsText_) {
        text_ += line;
        return;
    }
    const bool written = file_.write(line) == line.size() && file_.flush();
    file_.close();
    if (written)
        warned_ = false;
    else
        warn();
}

void MotionLog::warn() {
    if (!warned_)
        showModelessWarning("ERROR: Can not open motion correction log file.");
    warned_ = true;
}
