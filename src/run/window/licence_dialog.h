// The licence of the program and those of the libraries that it uses.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

/// Asked at start-up and at the start of each run. The program is free, so it permits.
[[nodiscard]] bool licencePermits();

/// Modal.
void showLicenceDialog(QWidget* parent);
