// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/feedback_files.h"

void FeedbackFiles::begin(const QString& folder, const QString& name) {
    folder_ = folder;
    name_ = name;
    fault_.clear();
}
void FeedbackFiles::writePicture(const QImage&, int) {}
void FeedbackFiles::writeValues(int, float, int, int) {}
bool FeedbackFiles::appendTrial(const QString&, int, double) {
    return false;
}
void FeedbackFiles::note(bool, const QString&) {}
