// The panel that shows the state of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTextBrowser>

class LogPanel : public QTextBrowser {
public:
    explicit LogPanel(QWidget* parent);

    /// Setting the same text again does nothing, which keeps the operator's selection.
    void showText(const QString& html);
    /// Off during a run: dragging selected text would block it.
    void setTextSelectable(bool selectable);
    /// Space around the text, in pixels.
    void setMargin(int pixels);

private:
    QString shown_;
};
