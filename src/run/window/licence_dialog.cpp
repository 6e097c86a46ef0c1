// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/licence_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

bool licencePermits() {
    return true;
}

void showLicenceDialog(QWidget* parent) {
    QDialog dialog(parent);
    dialog.setObjectName("LicenseInfoDlg");
    dialog.setWindowTitle("License Information");
    auto* text = new QLabel(
        "<h3>Velo-Cortivo is free software</h3>"
        "<p>You may use, study, share and change it under the terms of the GNU General Public "
        "License, version 3 or later (GPL-3.0-or-later).<br>It comes without any warranty.</p>"
        "<p>It uses these libraries:</p>"
        "<table cellspacing=\"6\">"
        "<tr><td><b>Qt 6</b></td><td>GNU Lesser General Public License 3 (LGPL-3.0)</td></tr>"
        "<tr><td><b>OpenBLAS</b></td><td>BSD 3-Clause (BSD-3-Clause)</td></tr>"
        "</table>"
        "<p>The full text stands in the file LICENSE of the program.</p>",
        &dialog);
    text->setWordWrap(true);
    text->setMinimumWidth(440);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(text);
    layout->addWidget(buttons);
    dialog.exec();
}
