// The motion correction log of a run (_3DMC.log): the settings, and a line for each volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_fit.h"
#include "volume/motion_method.h"

#include <QByteArray>
#include <QFile>

/// Target folder and project name without its extension + "_3DMC.log"; "REALTIME_3DMC.log" for a
/// name without extension.
[[nodiscard]] QString motionLogFileName(const FMRProject& project);

/// The lines before those of the volumes.
[[nodiscard]] QByteArray motionLogHead(MotionMethod method, const VolumeGrid& grid);

/// The line of a volume, which counts from 0. `found`: its motion is its own.
[[nodiscard]] QByteArray motionLogLine(int volume, const MotionFit& fit, bool found = true);

/// Writes the log of one run, record by record.
class MotionLog {
public:
    /// Opens the file: at first a new one with its head, later the same for appending. False when
    /// that fails, after a modeless box that is shown once until it works again.
    [[nodiscard]] bool open(const FMRProject& project, const QByteArray& head);
    /// Adds a record and closes the file, so that nothing is lost when the program ends.
    void add(const QByteArray& line);

    /// From the first record on nothing is written: the text is kept for whoever saves it.
    void keepText() { keepsText_ = true; }
    [[nodiscard]] const QByteArray& text() const { return text_; }

private:
    void warn();

    QFile file_;
    QByteArray text_;
    bool keepsText_ = false;
    bool started_ = false; ///< the head is written
    bool warned_ = false;
};
