// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/program_dialogs.h"

#include "dialogs/dialog_setup.h"

#include <QString>

bool licencePermits() {
    return true;
}

void showLicenceDialog(QWidget* parent) {
    openTextDialog(
        *parent, "LicenseInfoDlg", "License Information",
        "<h3>Velo-Cortivo is free software</h3>"
        "<p>You may use, study, share and change it under the terms of the GNU General Public "
        "License, version 3 or later (GPL-3.0-or-later).<br>It comes without any warranty.</p>"
        "<p>It uses these libraries:</p>"
        "<table cellspacing=\"6\">"
        "<tr><td><b>Qt 6</b></td><td>GNU Lesser General Public License 3 (LGPL-3.0)</td></tr>"
        "<tr><td><b>OpenBLAS</b></td><td>BSD 3-Clause (BSD-3-Clause)</td></tr>"
        "<tr><td><b>FFTW 3</b></td><td>GNU General Public License 2 or later "
        "(GPL-2.0-or-later)</td></tr>"
        "<tr><td><b>LIBSVM</b></td><td>BSD 3-Clause (BSD-3-Clause)</td></tr>"
        "<tr><td><b>zlib</b></td><td>zlib License (Zlib)</td></tr>"
        "</table>"
        "<p>The full text stands in the file LICENSE of the program.</p>");
}

void showAboutDialog(QWidget* parent) {
    openTextDialog(*parent, "AboutDlg", "About Velo-Cortivo",
                   QStringLiteral("<h3>Velo-Cortivo %1</h3>"
                                  "<p>Real-time analysis of functional magnetic resonance "
                                  "imaging.</p>"
                                  "<p>For research; not a medical product.</p>")
                       .arg(VELO_VERSION));
}
