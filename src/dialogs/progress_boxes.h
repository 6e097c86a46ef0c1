// Boxes that show the progress of long work.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "base/progress.h"

#include <QSize>
#include <QString>
#include <memory>

class QWidget;

struct ProgressBoxLook {
    const char* objectName;
    QString label;
    QString button = "Cancel";
    QSize size{320, 110}; ///< pixels; larger where the text needs it
};

/// Opens a box over `window` and sets the busy cursor; both end when the result is deleted. The box
/// is modal, so that nothing changes the data being processed; its button stops nothing.
[[nodiscard]] std::unique_ptr<ProgressReporter> openProgressBox(QWidget* window,
                                                                const ProgressBoxLook& look);

/// The same for work that can be cancelled. Each report processes events, so that the button,
/// Escape and the box's own close button can cancel the work; a request to end the program does so
/// too. The box stays until the work has ended.
[[nodiscard]] std::unique_ptr<ProgressReporter>
openCancellableProgressBox(QWidget* window, const ProgressBoxLook& look, EventPump& pump);
