// The dialog in which a classifier is trained with finished runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;
class RunSession;

/// Opens the dialog as a child of `window`, or brings the open one to the front, and returns.
void openMultiVoxelPatternDialog(RunSession& session, QWidget& window);
