// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/fitting_scroll_area.h"

#include <QScrollBar>

FittingScrollArea::FittingScrollArea(QWidget* parent) : QScrollArea(parent) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus); // it follows the control that has the keyboard
}

QSize FittingScrollArea::sizeHint() const {
    if (!widget())
        return QScrollArea::sizeHint();
    // The hint of a layout leaves out widgets that take whatever height there is.
    return widget()
        ->sizeHint()
        .expandedTo(widget()->minimumSizeHint())
        .expandedTo(widget()->minimumSize());
}

QSize FittingScrollArea::minimumSizeHint() const {
    const QSize lowest = QScrollArea::minimumSizeHint();
    if (!widget())
        return lowest;
    const int width = widget()->minimumSizeHint().expandedTo(widget()->minimumSize()).width();
    return {width + verticalScrollBar()->sizeHint().width(), lowest.height()};
}
