// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/plugin_dialog.h"

#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "run/document/session_phase.h"
#include "ui_plugin_dialog.h"

#include <QCloseEvent>
#include <QScrollBar>
#include <QTextCursor>

PluginDlg::PluginDlg(const QString& pluginName, const SessionPhase& phase, QWidget& window)
    : QDialog(&window), phase_(phase), form_(std::make_unique<Ui::PluginDlg>()) {
    form_->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(pluginName);
    constexpr int mostLines = 10'000;
    form_->LogTxt->document()->setMaximumBlockCount(mostLines);
    setHelpFile({});
    prepareDialog(*this);
    connect(form_->HelpBtn, &QToolButton::clicked, this, [this] { openHelpFile(helpFile_); });
    form_->LogTxt->viewport()->installEventFilter(this);
}

PluginDlg::~PluginDlg() {
    leave();
}

void PluginDlg::leave() {
    if (left_)
        return;
    left_ = true;
    setObjectName({}); // until it is gone, another one may be opened
    Q_EMIT closed();
}

// As plain text, also where it looks like HTML: "a < b".
void PluginDlg::log(const QString& text) {
    QScrollBar& bar = *form_->LogTxt->verticalScrollBar();
    const bool showsLatest = bar.value() == bar.maximum();
    QTextCursor end(form_->LogTxt->document());
    end.movePosition(QTextCursor::End);
    if (!form_->LogTxt->document()->isEmpty())
        end.insertBlock();
    end.insertText(text);
    if (showsLatest)
        bar.setValue(bar.maximum());
}

void PluginDlg::showTimes(const QString& text, bool warning) {
    QPalette palette;
    if (warning)
        palette.setColor(QPalette::WindowText, warningColor());
    form_->TimesLbl->setPalette(palette);
    form_->TimesLbl->setText(text);
}

void PluginDlg::setHelpFile(const QString& path) {
    helpFile_ = path;
    form_->HelpBtn->setVisible(!path.isEmpty());
}

void PluginDlg::showBesideWindow() {
    const QWidget* window = parentWidget()->window();
    const QRect main = window->frameGeometry();
    const QSize frame = size() + windowFrame;
    const QPoint place(main.right() + 1, main.bottom() + 1 - frame.height());
    move(placedWithin(screenArea(window), {place, frame}).topLeft());
    showInFront(*this);
}

void PluginDlg::closeEvent(QCloseEvent* event) {
    QDialog::reject();
    event->accept();
}

void PluginDlg::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (event->spontaneous()) // minimized
        return;
    leave();
    deleteLater();
}

// Dragging selected text would hold up a run.
bool PluginDlg::eventFilter(QObject*, QEvent* event) {
    return event->type() == QEvent::MouseButtonPress && !phase_.isIdle();
}

void PluginDlg::reject() {
    if (!phase_.canBeStopped())
        QDialog::reject();
}
