// The small widgets that show a picture drawn elsewhere.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBrush>
#include <QPen>
#include <QPixmap>
#include <QWidget>

/// Shows its buffer at the origin and draws nothing itself. Pen, brush, shape and flags are kept
/// for those who draw into the buffer.
class RenderArea : public QWidget {
    Q_OBJECT
public:
    enum class Shape { Picture, Line, Points, Polyline, Polygon, Rect, RoundedRect, Ellipse, Text };
    enum class Showing { Later, AtOnce };

    explicit RenderArea(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return {400, 200}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {100, 100}; }

    /// The picture becomes the buffer. AtOnce: it is painted before the function returns, if the
    /// widget is visible.
    void setPicture(const QImage& picture, Showing showing = Showing::AtOnce);
    [[nodiscard]] const QPixmap& buffer() const { return buffer_; }
    /// A second picture for those who compose the buffer from two.
    [[nodiscard]] QPixmap& secondPixmap() { return secondPixmap_; }

    [[nodiscard]] Shape shape() const { return shape_; }
    [[nodiscard]] const QPen& pen() const { return pen_; }
    [[nodiscard]] const QBrush& brush() const { return brush_; }
    [[nodiscard]] bool isAntialiased() const { return antialiased_; }
    [[nodiscard]] bool isTransformed() const { return transformed_; }

public Q_SLOTS:
    void setShape(Shape shape);
    void setPen(const QPen& pen);
    void setBrush(const QBrush& brush);
    void setAntialiased(bool antialiased);
    void setTransformed(bool transformed);

Q_SIGNALS:
    /// A picture of the new size is wanted.
    void resized();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QPixmap buffer_;
    QPixmap secondPixmap_;
    Shape shape_ = Shape::Picture;
    QPen pen_;
    QBrush brush_;
    bool antialiased_ = false;
    bool transformed_ = false;
};

/// The same, but its paint events go no further.
class RenderArea2 : public RenderArea {
    Q_OBJECT
public:
    using RenderArea::RenderArea;

protected:
    void paintEvent(QPaintEvent* event) override;
};
