// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/edit_dialog.h"

#include "dialogs/dialog_setup.h"

#include <QPointer>
#include <QPushButton>

void EditDialog::setUpEditing() {
    const auto connectButton = [this](const char* name, const auto& slot) {
        if (auto* button = findChild<QPushButton*>(name))
            connect(button, &QPushButton::clicked, this, slot);
    };
    connectButton("OkBtn", [this] { accept(); });
    connectButton("ApplyBtn", [this] { applyAndStay(); });
    connectButton("ResetBtn", [this] {
        revert();
        refreshButtons();
    });
    connectButton("CancelBtn", [this] { reject(); });
    prepareDialog(*this);
    refreshButtons();
}

void EditDialog::refreshButtons() {
    for (const char* name : {"ApplyBtn", "ResetBtn"})
        if (auto* button = findChild<QPushButton*>(name))
            button->setEnabled(isChanged());
}

void EditDialog::applyAndStay() {
    const QPointer<EditDialog> self(this);
    if (apply() && self)
        refreshButtons();
}

void EditDialog::accept() {
    const QPointer<EditDialog> self(this);
    if (apply() && self)
        QDialog::accept();
}

void EditDialog::reject() {
    revert();
    QDialog::reject();
}
