// The panel that shows the state of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTextBrowser>

class LogPanel : public QTextBrowser {
public:
    explicit LogPanel(QWidget* parent);

    /// The same text again is left alone: it would throw away the operator's selection.
    void showText(const QString& html);
    /// Dragging selected text would hold up a run.
    void setTextSelectable(bool selectable);
    /// Space around the text, in pixels.
    void setMargin(int pixels);

private:
    QString shown_;
};
