// What there is to know about the program: its version, its licence and those of its libraries.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

/// Asked at start-up and at the start of each run. The program is free, so it permits.
[[nodiscard]] bool licencePermits();

/// Both open beside the window and return at once, since a run goes on below them; a dialog that
/// is open already comes to the front.
void showLicenceDialog(QWidget* parent);
void showAboutDialog(QWidget* parent);
