// What plots of curves and of matrices have in common: the picture, the zoom, the read-out.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_layout.h"

#include <QPixmap>
#include <QWidget>

/// Shows a plot from a backing store that is painted anew when the content, the size or the zoom
/// changes, and only while it is shown. Dragging a rectangle zooms in, and a drag along one side
/// only zooms that axis; the wheel zooms around the pointer, over the numbers of an axis that axis;
/// a double click goes back; the values under the pointer are read out. Works by keys too: + and -,
/// arrows to move, Home for the whole plot.
class PlotCanvas : public QWidget {
    Q_OBJECT

public:
    explicit PlotCanvas(QWidget* parent);

    /// The ranges that are shown now.
    [[nodiscard]] PlotRange shownX() const { return shown().x; }
    [[nodiscard]] PlotRange shownY() const { return shown().y; }
    /// The picture as it is shown, without the read-out under the pointer.
    [[nodiscard]] QPixmap picture();
    /// The read-out at a place of the widget; empty outside the plot.
    [[nodiscard]] virtual QString readOutAt(QPoint position) const = 0;
    /// Where the axes are in the widget.
    [[nodiscard]] PlotGeometry geometryShown() const { return geometryIn(rect(), shown()); }
    /// The folder in which the chooser of slotSaveAsBMP() opens.
    void setSaveFolder(const QString& folder) { saveFolder_ = folder; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

public Q_SLOTS:
    /// Around the centre of what is shown.
    void zoomIn();
    void zoomOut();
    /// The whole plot.
    void zoomToWhole();
    /// Saves the picture in the file that the operator chooses, without blocking a run.
    void slotSaveAsBMP();

protected:
    /// The ranges without a zoom.
    [[nodiscard]] virtual PlotRanges wholeRanges() const = 0;
    /// The narrowest widths to which can be zoomed; 0 for an axis that is always whole.
    [[nodiscard]] virtual QSizeF leastWidths() const = 0;
    [[nodiscard]] virtual PlotGeometry geometryIn(const QRectF& area,
                                                  const PlotRanges& ranges) const = 0;
    virtual void paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) = 0;
    /// Marks what is read out.
    virtual void paintPointer(QPainter& painter, QPoint position) = 0;
    /// To be called after a change; shows it when the widget is painted next.
    void contentChanged();

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] PlotRanges shown() const;
    bool zoomAround(const QPointF& share, double factorX, double factorY);
    bool move(double shareX, double shareY);
    [[nodiscard]] QRect draggedRectangle() const;
    void zoomToRectangle(const QRect& rectangle);
    void showReadOut();

    QPixmap picture_;
    bool outdated_ = true;
    std::optional<PlotRange> zoomX_; ///< nothing for the whole axis
    std::optional<PlotRange> zoomY_;
    std::optional<QPoint> pointer_;
    std::optional<QPoint> dragStart_;
    QString saveFolder_;
};
