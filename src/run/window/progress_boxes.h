// The boxes that show how far long work has come.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "base/progress.h"

#include <memory>

class QWidget;

/// Opens the box of saving over `window` and sets the busy cursor; both go when the result is
/// deleted. The box is modal, so that nothing changes what is being written; its button stops
/// nothing, since a run that is half saved would be lost.
[[nodiscard]] std::unique_ptr<ProgressReporter> openSavingBox(QWidget* window);

/// The same for post-processing. Each report processes events, so that the button, Escape and the
/// box's own close button can cancel the work; the box stays until the work has ended.
[[nodiscard]] std::unique_ptr<ProgressReporter> openPostprocessingBox(QWidget* window,
                                                                      EventPump& pump);
