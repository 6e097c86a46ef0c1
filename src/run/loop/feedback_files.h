// What a run leaves in the feedback folder for other programs. Its table is in the target folder.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/delayed_feedback.h"

#include <QImage>
#include <QString>

/// Writes files that another program polls: each appears whole or not at all. What can't be written
/// never stops a run; fault() says it, for the display of the operator.
class FeedbackFiles {
public:
    /// `folder` is created when it is missing; `name` begins the names of the files.
    void begin(const QString& folder, const QString& name);

    /// `<name>-<volume>.png`; volumes count from 0 here and from 1 in names.
    void writePicture(const QImage& picture, int volume);
    /// `<name>-s1-<volume>.bpg`, or -s2-: relative level and target.
    void writeValues(int subject, float relativeLevel, int targetLevel, int volume);
    /// Appends the line of a trial to the file of delayed feedback; the first trial (index 0)
    /// replaces the file. False, after a message, when the file can't be opened.
    [[nodiscard]] bool appendTrial(const QString& fileName, int trial, double value);

    /// What could not be written last, with its path; empty when all is well.
    [[nodiscard]] const QString& fault() const { return fault_; }

private:
    /// In the folder, which is made if it is missing.
    [[nodiscard]] QString pathOf(const QString& fileName) const;
    void note(bool written, const QString& path);

    QString folder_;
    QString name_;
    QString fault_;
};
