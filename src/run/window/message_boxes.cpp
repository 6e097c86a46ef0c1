// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/message_boxes.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <utility>

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

/// The window at the bottom of those that lie over each other: a dialog may close and be deleted
/// below a box.
QWidget* boxParent() {
    QWidget* window = QApplication::activeWindow();
    while (window && window->parentWidget())
        window = window->parentWidget()->window();
    return window;
}

/// File names in a message are text, whatever characters they hold.
void setUp(QMessageBox& box, const QString& title, const QString& text) {
    restoreCursor();
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(title);
    box.setText(text);
}

/// A box that is not waited for.
QMessageBox* newBoxAside(QMessageBox::Icon icon, const QString& text,
                         QMessageBox::StandardButtons buttons) {
    auto* box = new QMessageBox(boxParent());
    box->setAttribute(Qt::WA_DeleteOnClose);
    setUp(*box, "Velo-Cortivo", text);
    box->setIcon(icon);
    box->setStandardButtons(buttons);
    box->setModal(false);
    return box;
}

/// ".bmp" of "Bitmaps (*.bmp)".
QString extensionOf(const QString& filter) {
    return filter.section("(*", 1).section(')', 0, 0);
}

void askBeforeReplacing(const QString& path, const FileChosen& replace) {
    QMessageBox* box = newBoxAside(
        QMessageBox::Question,
        QStringLiteral("The file \"%1\" exists already.\n\nDo you want to replace it?").arg(path),
        QMessageBox::Yes | QMessageBox::No);
    box->setDefaultButton(QMessageBox::No);
    QObject::connect(box, &QMessageBox::finished, box, [path, replace](int answer) {
        if (answer == QMessageBox::Yes)
            replace(path);
    });
    box->show();
}

QMessageBox::StandardButton showBox(QMessageBox::Icon icon, const QString& text,
                                    QMessageBox::StandardButtons buttons) {
    QMessageBox box(boxParent());
    setUp(box, "Velo-Cortivo", text);
    box.setIcon(icon);
    box.setStandardButtons(buttons);
    return QMessageBox::StandardButton(box.exec());
}

} // namespace

void MessageBoxes::show(MessageLevel level, const QString& text) {
    showBox(iconOf(level), text, QMessageBox::Ok);
}

void MessageBoxes::showAside(MessageLevel level, const QString& text) {
    newBoxAside(iconOf(level), text, QMessageBox::Ok)->show();
}

bool MessageBoxes::ask(const QString& text) {
    return showBox(QMessageBox::Question, text, QMessageBox::Yes | QMessageBox::No) ==
           QMessageBox::Yes;
}

void MessageBoxes::announce(const QString& title, const QString& text, const QString& button) {
    QMessageBox box(boxParent());
    setUp(box, title, text);
    box.setDefaultButton(box.addButton(button, QMessageBox::AcceptRole));
    box.exec();
}

QString MessageBoxes::chooseFileToOpen(const QString& title, const QString& folder,
                                       const QString& filter) {
    restoreCursor();
    return QFileDialog::getOpenFileName(boxParent(), title, folder, filter);
}

void MessageBoxes::chooseFileToSave(const QString& title, const QString& folder,
                                    const QString& filter, FileChosen chosen) {
    restoreCursor();
    auto* dialog = new QFileDialog(boxParent(), title, folder, filter);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    // Its own questions and drags would hold up a run.
    dialog->setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                       QFileDialog::ReadOnly);
    for (QAbstractItemView* view : dialog->findChildren<QAbstractItemView*>())
        view->setDragEnabled(false);
    const QString extension = extensionOf(filter);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [extension, chosen = std::move(chosen)](QString path) {
                         if (!path.endsWith(extension, Qt::CaseInsensitive))
                             path += extension;
                         if (QFile::exists(path))
                             askBeforeReplacing(path, chosen);
                         else
                             chosen(path);
                     });
    dialog->show();
}
