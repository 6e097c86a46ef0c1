// The log of a run's motion correction (_3DMC.log): how it is done, and a line for each volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_fit.h"

#include <QByteArray>
#include <QFile>

/// Target folder and project name without its extension + "_3DMC.log"; "REALTIME_3DMC.log" for a
/// name without extension.
[[nodiscard]] QString motionLogFileName(const FMRProject& project);

/// The lines before those of the volumes.
[[nodiscard]] QByteArray motionLogHead(const VolumeGrid& grid);

/// The line of a volume, which counts from 0.
[[nodiscard]] QByteArray motionLogLine(int volume, const MotionFit& fit);

/// Writes the log of one run, record by record.
class MotionLog {
public:
    /// Opens the file, anew with its head at the first time and at its end afterwards. When that
    /// fails the operator is told, in a box that doesn't stop the run and once until it has worked
    /// again. False then.
    [[nodiscard]] bool open(const FMRProject& project, const VolumeGrid& grid);
    /// Adds a record and closes the file, so that nothing is lost when the program ends.
    void add(const QByteArray& line);

private:
    void tell();

    QFile file_;
    bool started_ = false; ///< the head is written
    bool told_ = false;
};
