// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/log_panel.h"

#include <QTextDocument>

LogPanel::LogPanel(QWidget* parent) : QTextBrowser(parent) {
    setObjectName("LogInfos");
    setToolTip("State of the run");
    setOpenLinks(false);
    setFocusPolicy(Qt::ClickFocus);
}

void LogPanel::showText(const QString& html) {
    if (shown_ == html)
        return;
    shown_ = html;
    setHtml(html);
}

void LogPanel::setTextSelectable(bool selectable) {
    setTextInteractionFlags(selectable ? Qt::TextBrowserInteraction : Qt::NoTextInteraction);
}

void LogPanel::setMargin(int pixels) {
    document()->setDocumentMargin(pixels);
}
