// The box that shows how far the saving of a run has come.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"

#include <memory>

class QWidget;

/// Opens the box over `window` and sets the busy cursor; both go when the result is deleted. The
/// box is modal, so that nothing changes what is being written; its button stops nothing, since a
/// run that is half saved would be lost.
[[nodiscard]] std::unique_ptr<ProgressReporter> openSavingBox(QWidget* window);
