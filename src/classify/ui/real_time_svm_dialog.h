// The dialog of the classifier that predicts during a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;
class RunSession;

/// Opens the dialog as a child of `window`, or brings the open one to the front, and returns.
void openRealTimeSVMDialog(RunSession& session, QWidget& window);
