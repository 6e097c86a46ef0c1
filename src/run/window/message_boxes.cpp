// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/message_boxes.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QMessageBox>

namespace {

/// A box under a busy cursor would look as if it could not be answered.
void restoreCursor() {
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

QMessageBox::Icon iconOf(MessageLevel level) {
    switch (level) {
    case MessageLevel::Information:
        return QMessageBox::Information;
    case MessageLevel::Warning:
        return QMessageBox::Warning;
    case MessageLevel::Critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton showBox(QMessageBox::Icon icon, const QString& text,
                                    QMessageBox::StandardButtons buttons) {
    restoreCursor();
    QMessageBox box(icon, "Velo-Cortivo", text, buttons, QApplication::activeWindow());
    // File names in a message are text, whatever characters they hold.
    box.setTextFormat(Qt::PlainText);
    return QMessageBox::StandardButton(box.exec());
}

} // namespace

void MessageBoxes::show(MessageLevel level, const QString& text) {
    showBox(iconOf(level), text, QMessageBox::Ok);
}

bool MessageBoxes::ask(const QString& text) {
    return showBox(QMessageBox::Question, text, QMessageBox::Yes | QMessageBox::No) ==
           QMessageBox::Yes;
}

void MessageBoxes::announce(const QString& title, const QString& text, const QString& button) {
    restoreCursor();
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::NoButton,
                    QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(box.addButton(button, QMessageBox::AcceptRole));
    box.exec();
}

QString MessageBoxes::chooseFileToOpen(const QString& title, const QString& folder,
                                       const QString& filter) {
    restoreCursor();
    return QFileDialog::getOpenFileName(QApplication::activeWindow(), title, folder, filter);
}

QString MessageBoxes::chooseFileToSave(const QString& title, const QString& folder,
                                       const QString& filter) {
    restoreCursor();
    return QFileDialog::getSaveFileName(QApplication::activeWindow(), title, folder, filter);
}

std::optional<QColor> chooseColor(const QColor& initial, QWidget* parent) {
    const QColor chosen = QColorDialog::getColor(initial, parent, "Contrast color");
    return chosen.isValid() ? std::optional(chosen) : std::nullopt;
}
