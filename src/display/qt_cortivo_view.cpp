// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/qt_cortivo_view.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "display/overlay_legend.h"
#include "display/slice_mosaic.h"
#include "display/slice_mosaic_geometry.h"
#include "run/document/qt_cortivo_doc.h"

#include <QBuffer>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>
#include <QUrl>

namespace {

const QColor labelColor(196, 202, 210);
const QColor labelGround(0, 0, 0, 150);
const QColor lineColor(44, 48, 56);

/// A whole scale factor is preferred up to this share below the largest that fits: all pixels then
/// have the same size.
constexpr double leastShareOfWholeFactor = 0.9;

double scaleFactor(QSizeF room, QSize picture) {
    const double largest =
        std::min(room.width() / picture.width(), room.height() / picture.height());
    const double whole = std::floor(largest);
    return whole >= largest * leastShareOfWholeFactor ? whole : largest;
}

void saveBitmap(const QImage& picture, const QString& path) {
    QByteArray content;
    QBuffer buffer(&content);
    if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "BMP") ||
        !writeFileAtomically(path, content))
        showModelessWarning(QString("WARNING: Unable to write bitmap file \"%1\"!").arg(path));
}

} // namespace

QtCortivoView::QtCortivoView(QtCortivoDoc* document, const OverlayThresholds& thresholds,
                             QWidget* parent)
    : QWidget(parent), document_(document), thresholds_(thresholds) {
    setObjectName("QtCortivoView");
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName("Slices");
}

void QtCortivoView::setShowInplanes(bool show) {
    if (show == showInplanes_)
        return;
    showInplanes_ = show;
    slotDocumentChanged();
}

void QtCortivoView::setOverlayShown(bool shown) {
    if (shown == overlayShown_)
        return;
    overlayShown_ = shown;
    slotDocumentChanged();
}

void QtCortivoView::slotDocumentChanged() {
    cleared_ = false;
    outdated_ = true;
    update();
}

void QtCortivoView::slotClearArea() {
    cleared_ = true;
    update();
}

const QImage& QtCortivoView::mosaic() {
    if (outdated_)
        compose();
    return mosaic_;
}

void QtCortivoView::compose() {
    outdated_ = false;
    nrOfShownSlices_ = 0;
    legend_ = {};
    if (!document_)
        return;
    SliceMosaicSource source;
    source.slices = &document_->slices;
    source.showInplanes = showInplanes_;
    source.layout = document_->mosaic;
    source.colors = &document_->overlayColors;
    source.significanceColorCoding = document_->SignificanceColorCoding;
    if (overlayShown_ && document_->kind() == QtCortivoDoc::Kind::Functional) {
        source.maps = &document_->maps;
        source.thresholds = thresholds_;
        legend_ = makeOverlayLegend(document_->maps, thresholds_, document_->contrasts,
                                    document_->overlayColors, document_->SignificanceColorCoding);
    }
    shownLayout_ = document_->mosaic;
    nrOfShownSlices_ = int(source.images().size());
    // Without a picture the mosaic is null, and the view says so.
    (void)composeSliceMosaic(mosaic_, source);
}

void QtCortivoView::slotSaveAsBMP() {
    if (mosaic().isNull()) {
        showModelessWarning("WARNING: There are no slices to save!");
        return;
    }
    // A copy of the current picture: the run may have ended, and this view with it, when the name
    // is chosen.
    chooseFileToSave("Save Bitmap File", document_->project.targetFolder, "Bitmaps (*.bmp)",
                     [picture = mosaic()](const QString& path) { saveBitmap(picture, path); });
}

void QtCortivoView::slotShowHelpHTML() {
    if (helpFile_.isEmpty())
        return;
    if (!QFileInfo(helpFile_).isFile() ||
        !QDesktopServices::openUrl(QUrl::fromLocalFile(helpFile_)))
        showModelessWarning(QString("WARNING: Unable to open help file \"%1\"!").arg(helpFile_));
}

QRect QtCortivoView::legendArea() const {
    const int margin = fontMetrics().height() / 2;
    const int legend = std::min(legendWidth(font()), width() / 3);
    return QRect(width() - legend - margin, margin, legend, height() - 2 * margin);
}

QRectF QtCortivoView::mosaicArea() const {
    if (mosaic_.isNull())
        return {};
    const double ratio = devicePixelRatioF();
    const QSizeF room(legendArea().left() - fontMetrics().height() / 2, height());
    const double factor = scaleFactor(room * ratio, mosaic_.size());
    const double shownWidth = std::floor(mosaic_.width() * factor);
    const double shownHeight = std::floor(mosaic_.height() * factor);
    const double left = std::floor((room.width() * ratio - shownWidth) / 2);
    const double top = std::floor((room.height() * ratio - shownHeight) / 2);
    return {left / ratio, top / ratio, shownWidth / ratio, shownHeight / ratio};
}

int QtCortivoView::sliceAt(QPoint position) const {
    const QRectF area = mosaicArea();
    if (cleared_ || !area.contains(position))
        return -1;
    const int column =
        int((position.x() - area.left()) / area.width() * shownLayout_.MosaicColumns);
    const int row = int((position.y() - area.top()) / area.height() * shownLayout_.MosaicRows);
    if (column >= shownLayout_.MosaicColumns || row >= shownLayout_.MosaicRows)
        return -1;
    return sliceAtPlace(shownLayout_, row * shownLayout_.MosaicColumns + column, nrOfShownSlices_);
}

void QtCortivoView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (cleared_)
        return;
    if (mosaic().isNull()) {
        if (nrOfShownSlices_ > 0) {
            painter.setPen(labelColor);
            painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                             QString("A mosaic of %1 columns and %2 rows can't be shown.")
                                 .arg(shownLayout_.MosaicColumns)
                                 .arg(shownLayout_.MosaicRows));
        }
        return;
    }
    const QRectF area = mosaicArea();
    painter.drawImage(area, mosaic_);
    paintTileMarks(painter, area);
    paintOverlayLegend(painter, legendArea(), legend_, font());
}

void QtCortivoView::paintTileMarks(QPainter& painter, const QRectF& area) const {
    const QFont font = numberFont(this->font(), 0.8);
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const int digits = int(QString::number(nrOfShownSlices_).size());
    const QSize label(metrics.horizontalAdvance(QString(digits, '0')) + 4, metrics.height());
    const double tileWidth = area.width() / shownLayout_.MosaicColumns;
    const double tileHeight = area.height() / shownLayout_.MosaicRows;

    painter.setPen(QPen(lineColor, 0));
    for (int column = 1; column < shownLayout_.MosaicColumns; ++column) {
        const double x = area.left() + column * tileWidth;
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
    for (int row = 1; row < shownLayout_.MosaicRows; ++row) {
        const double y = area.top() + row * tileHeight;
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    // On very small tiles the numbers would hide the slices.
    if (label.width() * 3 > tileWidth || label.height() * 3 > tileHeight)
        return;
    const int places =
        std::min(nrOfShownSlices_, shownLayout_.MosaicColumns * shownLayout_.MosaicRows);
    for (int place = 0; place < places; ++place) {
        const double left = area.left() + place % shownLayout_.MosaicColumns * tileWidth;
        const double bottom = area.top() + (place / shownLayout_.MosaicColumns + 1) * tileHeight;
        const QRectF ground(left + 2, bottom - label.height() - 1, label.width(), label.height());
        painter.fillRect(ground, labelGround);
        painter.setPen(labelColor);
        painter.drawText(ground, Qt::AlignCenter,
                         QString::number(sliceAtPlace(shownLayout_, place, nrOfShownSlices_) + 1)
                             .rightJustified(digits));
    }
}

void QtCortivoView::keyPressEvent(QKeyEvent* event) {
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    const int key = plain ? event->key() : int(Qt::Key_unknown);
    if (key == Qt::Key_PageDown || key == Qt::Key_Plus || key == Qt::Key_Right)
        scroll(scrollForward);
    else if (key == Qt::Key_PageUp || key == Qt::Key_Minus || key == Qt::Key_Left)
        scroll(scrollBackward);
    else
        QWidget::keyPressEvent(event);
}

void QtCortivoView::scroll(void (*step)(SliceMosaicLayout& layout, int nrOfSlices)) {
    if (mosaic().isNull())
        return;
    step(document_->mosaic, nrOfShownSlices_);
    slotDocumentChanged();
}

bool QtCortivoView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QString text = toolTipAt(help->pos());
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(help->globalPos(), text, this);
    return true;
}

QString QtCortivoView::toolTipAt(QPoint position) const {
    if (!cleared_ && legendArea().contains(position))
        return legendText(legend_);
    const int slice = sliceAt(position);
    if (slice < 0)
        return {};
    return QString("Slice %1 of %2\nPage Down, + or Right: forward\nPage Up, - or Left: backward")
        .arg(slice + 1)
        .arg(nrOfShownSlices_);
}
