// What shows the work of training.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What shows the work: the dialog; a test collects what it is told.
class TrainingDisplay {
public:
    virtual ~TrainingDisplay() = default;
    /// A line, or several, for the log.
    virtual void log(const QString& text) = 0;
    /// Lists, files or choices have changed: the controls show them.
    virtual void refreshControls() = 0;
    /// The private document or its maps are about to go, or to be replaced: the view of its slices
    /// lets go of them.
    virtual void mapsLeaving() = 0;
    /// The private document has new maps: the view of its slices shows them.
    virtual void showMaps() = 0;
};
