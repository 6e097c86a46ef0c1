// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/render_area.h"

#include <QPaintEvent>
#include <QPainter>

RenderArea::RenderArea(QWidget* parent) : QWidget(parent) {
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
}

void RenderArea::setPicture(const QImage& picture, Showing showing) {
    buffer_ = QPixmap::fromImage(picture);
    if (showing == Showing::AtOnce)
        repaint();
    else
        update();
}

void RenderArea::setShape(Shape shape) {
    shape_ = shape;
    update();
}

void RenderArea::setPen(const QPen& pen) {
    pen_ = pen;
    update();
}

void RenderArea::setBrush(const QBrush& brush) {
    brush_ = brush;
    update();
}

void RenderArea::setAntialiased(bool antialiased) {
    antialiased_ = antialiased;
    update();
}

void RenderArea::setTransformed(bool transformed) {
    transformed_ = transformed;
    update();
}

void RenderArea::paintEvent(QPaintEvent*) {
    QPainter(this).drawPixmap(0, 0, buffer_);
}

void RenderArea::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Q_EMIT resized();
}

void RenderArea2::paintEvent(QPaintEvent* event) {
    RenderArea::paintEvent(event);
    event->accept();
}
