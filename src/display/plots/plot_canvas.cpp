// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_canvas.h"

#include "base/messages.h"
#include "dialogs/bitmap_saving.h"
#include "display/plots/plot_colors.h"

#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomFactor = 2.0;
constexpr double moveShare = 0.25;
constexpr int leastDrag = 6; ///< logical pixels; less is a click

/// `range` narrowed by `factor` around the place at `share` of it, within `whole`. Nothing where
/// that is all of it.
std::optional<PlotRange> zoomedRange(const PlotRange& range, const PlotRange& whole, double share,
                                     double factor, double leastWidth) {
    const double width = range.to - range.from;
    const double wholeWidth = whole.to - whole.from;
    const double narrowed = std::max(width / factor, leastWidth);
    if (leastWidth <= 0.0 || narrowed >= wholeWidth * (1 - 1e-9))
        return {};
    const double place = range.from + share * width;
    const double from =
        std::clamp(place - share * narrowed, whole.from, std::max(whole.from, whole.to - narrowed));
    const PlotRange zoomed{from, from + narrowed};
    return isUsable(zoomed) ? zoomed : range;
}

PlotRange movedRange(const PlotRange& range, const PlotRange& whole, double share) {
    const double width = range.to - range.from;
    const double from = std::clamp(range.from + share * width, std::min(range.from, whole.from),
                                   std::max(range.from, whole.to - width));
    return {from, from + width};
}

} // namespace

PlotCanvas::PlotCanvas(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setAccessibleName("Plot");
}

QSize PlotCanvas::sizeHint() const {
    return {480, 300};
}

QSize PlotCanvas::minimumSizeHint() const {
    return {150, 100};
}

PlotRanges PlotCanvas::shown() const {
    const PlotRanges whole = wholeRanges();
    return {zoomX_.value_or(whole.x), zoomY_.value_or(whole.y)};
}

void PlotCanvas::contentChanged() {
    outdated_ = true;
    update();
    if (pointer_ && isVisible() && QToolTip::isVisible())
        showReadOut(); // the values under the pointer are others now
}

QPixmap PlotCanvas::picture() {
    const double ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * ratio).toSize();
    if (outdated_ || picture_.size() != pixels || picture_.devicePixelRatio() != ratio) {
        outdated_ = false;
        if (picture_.size() != pixels)
            picture_ = QPixmap(pixels);
        picture_.setDevicePixelRatio(ratio);
        if (!picture_.isNull()) {
            QPainter painter(&picture_);
            paintContent(painter, rect(), shown());
        }
    }
    return picture_;
}

void PlotCanvas::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, picture());
    if (dragStart_ && !draggedRectangle().isEmpty()) {
        QColor inside = plotColors::accent;
        inside.setAlpha(50);
        painter.setPen(plotColors::accent);
        painter.setBrush(inside);
        painter.drawRect(draggedRectangle());
    } else if (pointer_ && geometryShown().axes.contains(*pointer_)) {
        paintPointer(painter, *pointer_);
    }
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(plotColors::accent);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

bool PlotCanvas::zoomAround(const QPointF& share, double factorX, double factorY) {
    const PlotRanges whole = wholeRanges();
    const PlotRanges now = shown();
    const QSizeF least = leastWidths();
    const auto x = zoomedRange(now.x, whole.x, share.x(), factorX, least.width());
    const auto y = zoomedRange(now.y, whole.y, share.y(), factorY, least.height());
    if (x == zoomX_ && y == zoomY_)
        return false;
    zoomX_ = x;
    zoomY_ = y;
    contentChanged();
    return true;
}

void PlotCanvas::zoomIn() {
    zoomAround({0.5, 0.5}, zoomFactor, zoomFactor);
}

void PlotCanvas::zoomOut() {
    zoomAround({0.5, 0.5}, 1 / zoomFactor, 1 / zoomFactor);
}

void PlotCanvas::zoomToWhole() {
    zoomX_.reset();
    zoomY_.reset();
    contentChanged();
}

bool PlotCanvas::move(double shareX, double shareY) {
    const PlotRanges whole = wholeRanges();
    if (shareX != 0.0 && zoomX_)
        zoomX_ = movedRange(*zoomX_, whole.x, shareX);
    else if (shareY != 0.0 && zoomY_)
        zoomY_ = movedRange(*zoomY_, whole.y, shareY);
    else
        return false;
    contentChanged();
    return true;
}

void PlotCanvas::slotSaveAsBMP() {
    const QPixmap shownPicture = picture();
    if (shownPicture.isNull())
        return showModelessWarning("WARNING: There is no plot to save!");
    saveBitmapAs(shownPicture.toImage(), saveFolder_);
}

void PlotCanvas::keyPressEvent(QKeyEvent* event) {
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    switch (plain ? event->key() : int(Qt::Key_unknown)) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the same key without Shift
        return zoomIn();
    case Qt::Key_Minus:
        return zoomOut();
    case Qt::Key_Home:
        return zoomToWhole();
    case Qt::Key_Left:
        return event->setAccepted(move(-moveShare, 0));
    case Qt::Key_Right:
        return event->setAccepted(move(moveShare, 0));
    case Qt::Key_Up:
        return event->setAccepted(move(0, moveShare));
    case Qt::Key_Down:
        return event->setAccepted(move(0, -moveShare));
    default:
        QWidget::keyPressEvent(event);
    }
}

void PlotCanvas::wheelEvent(QWheelEvent* event) {
    constexpr double factorOfStep = 1.25;
    constexpr double angleOfStep = 120; // eighths of a degree
    const double factor = std::pow(factorOfStep, event->angleDelta().y() / angleOfStep);
    const QRectF axes = geometryShown().axes;
    const QPointF position = event->position();
    const bool besideY = position.x() < axes.left();
    const bool belowX = position.y() > axes.bottom();
    const QPointF share((position.x() - axes.left()) / axes.width(),
                        (axes.bottom() - position.y()) / axes.height());
    // What a plot doesn't use scrolls the area around it.
    event->setAccepted(
        factor != 1.0 && !(besideY && belowX) &&
        zoomAround({std::clamp(share.x(), 0.0, 1.0), std::clamp(share.y(), 0.0, 1.0)},
                   besideY ? 1.0 : factor, belowX ? 1.0 : factor));
}

void PlotCanvas::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !geometryShown().axes.contains(event->position()))
        return QWidget::mousePressEvent(event);
    dragStart_ = event->position().toPoint();
    pointer_ = dragStart_;
}

/// Along an axis whose side the pointer hardly leaves, the rectangle is as large as the plot.
QRect PlotCanvas::draggedRectangle() const {
    const QRect axes = geometryShown().axes.toAlignedRect();
    QRect dragged = QRect(*dragStart_, *pointer_).normalized() & axes;
    const bool wide = dragged.width() >= leastDrag && leastWidths().width() > 0.0;
    const bool high = dragged.height() >= leastDrag && leastWidths().height() > 0.0;
    if (!wide && !high)
        return {};
    if (!wide) {
        dragged.setLeft(axes.left());
        dragged.setRight(axes.right());
    }
    if (!high) {
        dragged.setTop(axes.top());
        dragged.setBottom(axes.bottom());
    }
    return dragged;
}

void PlotCanvas::mouseMoveEvent(QMouseEvent* event) {
    pointer_ = event->position().toPoint();
    update();
    if (dragStart_)
        QToolTip::hideText();
    else
        showReadOut();
}

void PlotCanvas::showReadOut() {
    const QString text = readOutAt(*pointer_);
    if (text.isEmpty())
        QToolTip::hideText();
    else
        // As HTML, since a name could look like it.
        QToolTip::showText(mapToGlobal(*pointer_),
                           "<p style='white-space: pre'>" + text.toHtmlEscaped() + "</p>", this);
}

void PlotCanvas::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !dragStart_)
        return QWidget::mouseReleaseEvent(event);
    pointer_ = event->position().toPoint();
    const QRect rectangle = draggedRectangle();
    dragStart_.reset();
    if (!rectangle.isEmpty())
        zoomToRectangle(rectangle);
    update();
}

void PlotCanvas::zoomToRectangle(const QRect& rectangle) {
    const PlotGeometry geometry = geometryShown();
    const QSizeF least = leastWidths();
    const QPointF center = QRectF(rectangle).center();
    const QRectF axes = geometry.axes;
    // The whole of a side is no zoom of it.
    const double factorX = axes.width() / rectangle.width();
    const double factorY = axes.height() / rectangle.height();
    const PlotRanges whole = wholeRanges();
    const auto centered = [](const PlotRange& range, double middle) {
        const double half = (range.to - range.from) / 2;
        return PlotRange{middle - half, middle + half};
    };
    if (rectangle.width() < int(axes.width()) && least.width() > 0.0)
        zoomX_ = zoomedRange(centered(geometry.x, geometry.xAt(center.x())), whole.x, 0.5, factorX,
                             least.width());
    if (rectangle.height() < int(axes.height()) && least.height() > 0.0)
        zoomY_ = zoomedRange(centered(geometry.y, geometry.yAt(center.y())), whole.y, 0.5, factorY,
                             least.height());
    contentChanged();
}

void PlotCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mouseDoubleClickEvent(event);
    zoomToWhole();
}

void PlotCanvas::leaveEvent(QEvent*) {
    pointer_.reset();
    dragStart_.reset();
    update();
}

void PlotCanvas::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange)
        contentChanged();
    QWidget::changeEvent(event);
}
