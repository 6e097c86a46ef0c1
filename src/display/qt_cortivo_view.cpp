// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/qt_cortivo_view.h"

#include "base/messages.h"
#include "dialogs/bitmap_saving.h"
#include "dialogs/dialog_setup.h"
#include "dialogs/number_fields.h"
#include "display/overlay_legend.h"
#include "display/slice_mosaic.h"
#include "display/tile_marks.h"
#include "run/document/qt_cortivo_doc.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

namespace {

const QColor rubberBandFill(255, 255, 255, 50);

constexpr int smallestNumberPixels = 9; ///< height of the font in the saved picture

/// A whole scale factor is preferred up to this share below the largest that fits: all pixels then
/// have the same size.
constexpr double leastShareOfWholeFactor = 0.9;

double scaleFactor(QSizeF room, QSize picture) {
    const double largest =
        std::min(room.width() / picture.width(), room.height() / picture.height());
    const double whole = std::floor(largest);
    return whole >= largest * leastShareOfWholeFactor ? whole : largest;
}

} // namespace

QtCortivoView::QtCortivoView(QtCortivoDoc* document, const OverlayThresholds& thresholds,
                             QWidget* parent)
    : QWidget(parent), document_(document), thresholds_(thresholds) {
    setObjectName("QtCortivoView");
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true); // tells of a release that went elsewhere
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

void QtCortivoView::setVolumeReadOut(int volume) {
    readOutVolume_ = volume;
    update(readOutLine());
}

void QtCortivoView::markVoxel(const std::optional<VoxelPosition>& voxel) {
    readOut_ = voxel;
    update();
}

void QtCortivoView::setRegionMarking(const RegionMarking& marking) {
    if (marking == marking_)
        return;
    marking_ = marking;
    slotDocumentChanged();
}

void QtCortivoView::slotDocumentChanged() {
    cleared_ = false;
    outdated_ = true;
    update();
}

void QtCortivoView::slotClearArea() {
    cleared_ = true;
    cancelDrag();
    update();
}

const QImage& QtCortivoView::mosaic() {
    if (outdated_)
        renderSlices();
    return mosaic_;
}

void QtCortivoView::renderSlices() {
    outdated_ = false;
    const MosaicTiles before = tilesOn({});
    composeMosaic();
    // A rectangle belongs to the tile on which it began.
    if (mosaic_.isNull() || tilesOn({}) != before)
        cancelDrag();
}

ShownMaps QtCortivoView::overlay() const {
    if (!overlayShown_ || document_->kind() != QtCortivoDoc::Kind::Functional)
        return {};
    ShownMaps maps =
        pluginMaps_ ? shownMaps(*document_, *pluginMaps_) : shownContrastMaps(*document_);
    if (!statisticName_.isEmpty())
        maps.statistic = statisticName_;
    return maps;
}

void QtCortivoView::composeMosaic() {
    shown_ = {};
    if (!document_)
        return;
    SliceMosaicSource source;
    source.slices = &document_->slices;
    source.showInplanes = showInplanes_;
    source.layout = document_->mosaic;
    source.maps = overlay();
    source.thresholds = thresholds_;
    shown_.legend = makeOverlayLegend(source.maps, thresholds_);
    shown_.layout = document_->mosaic;
    shown_.nrOfSlices = int(source.images().size());
    shown_.grid = document_->slices.gridSize();
    shown_.inplanes = &source.images() == &document_->slices.InplanePixmaps;
    // Without a picture the mosaic is null, and the view says so.
    if (!composeSliceMosaic(mosaic_, source, workers_ ? *workers_ : callersThread()))
        return;
    markRegionVoxels(mosaic_, tilesOn(mosaic_.rect()), document_->regions, marking_);
    shown_.regionFrames =
        regionFrames(document_->regions, marking_,
                     {shown_.grid.width(), shown_.grid.height(), shown_.nrOfSlices});
}

void QtCortivoView::slotSaveAsBMP() {
    if (mosaic().isNull()) {
        showModelessWarning("WARNING: There are no slices to save!");
        return;
    }
    // A copy of the current picture: the run may have ended, and this view with it, when the name
    // is chosen.
    QImage picture = mosaic();
    {
        QPainter painter(&picture);
        QFont font = numberFont(this->font());
        font.setPixelSize(smallestNumberPixels);
        painter.setFont(font);
        drawROIs(painter, tilesOn(picture.rect()));
    }
    saveBitmapAs(picture, document_->project.targetFolder);
}

void QtCortivoView::slotShowHelpHTML() {
    openHelpFile(helpFile_);
}

QRect QtCortivoView::readOutLine() const {
    const int lineHeight = fontMetrics().height() + 4;
    return QRect(0, height() - lineHeight, width(), lineHeight);
}

QRect QtCortivoView::legendArea() const {
    const int margin = fontMetrics().height() / 2;
    const int legend = std::min(legendWidth(font()), width() / 3);
    return QRect(width() - legend - margin, margin, legend, readOutLine().top() - 2 * margin);
}

QRectF QtCortivoView::room() const {
    return QRectF(0, 0, legendArea().left() - fontMetrics().height() / 2, readOutLine().top());
}

QRectF QtCortivoView::fittedArea() const {
    if (mosaic_.isNull())
        return {};
    const double ratio = devicePixelRatioF();
    const QSizeF free = room().size();
    const double factor = scaleFactor(free * ratio, mosaic_.size());
    const double shownWidth = std::floor(mosaic_.width() * factor);
    const double shownHeight = std::floor(mosaic_.height() * factor);
    const double left = std::floor((free.width() * ratio - shownWidth) / 2);
    const double top = std::floor((free.height() * ratio - shownHeight) / 2);
    return {left / ratio, top / ratio, shownWidth / ratio, shownHeight / ratio};
}

MosaicTiles QtCortivoView::tilesOn(const QRectF& area) const {
    return {shown_.layout, shown_.nrOfSlices, shown_.grid, area};
}

MosaicTiles QtCortivoView::tiles() const {
    if (cleared_ || mosaic_.isNull())
        return {};
    return tilesOn(zoom_.area(fittedArea(), room()));
}

void QtCortivoView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (cleared_)
        return;
    if (mosaic().isNull()) {
        if (shown_.nrOfSlices > 0) {
            painter.setPen(labelColor);
            painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                             QString("A mosaic of %1 columns and %2 rows can't be shown.")
                                 .arg(shown_.layout.MosaicColumns)
                                 .arg(shown_.layout.MosaicRows));
        }
        return;
    }
    painter.save();
    painter.setClipRect(room());
    drawMosaic(painter, tiles().area);
    drawOverMosaic(painter);
    painter.restore();
    paintOverlayLegend(painter, legendArea(), shown_.legend, font());
    drawReadOut(painter);
}

// Only the pixels that are visible: at a strong zoom the whole picture would be scaled in vain.
void QtCortivoView::drawMosaic(QPainter& painter, const QRectF& area) const {
    const double scaleX = area.width() / mosaic_.width();
    const double scaleY = area.height() / mosaic_.height();
    const QRectF visible = (area & room()).translated(-area.topLeft());
    const QRect pixels = QRectF(visible.left() / scaleX, visible.top() / scaleY,
                                visible.width() / scaleX, visible.height() / scaleY)
                             .toAlignedRect() &
                         mosaic_.rect();
    painter.drawImage(QRectF(area.left() + pixels.left() * scaleX,
                             area.top() + pixels.top() * scaleY, pixels.width() * scaleX,
                             pixels.height() * scaleY),
                      mosaic_, pixels);
}

void QtCortivoView::drawOverMosaic(QPainter& painter) const {
    const MosaicTiles shown = tiles();
    // The headers of inplane slices, which may be turned otherwise, are not kept.
    const PatientSides sides =
        shown_.inplanes ? PatientSides() : patientSides(document_->project.position);
    paintTileMarks(painter, shown, sides, room(), font());
    painter.setFont(numberFont(font(), 0.8));
    drawROIs(painter, shown);
    if (readOut_)
        paintVoxelCross(painter, shown, *readOut_);
    if (action_ != MouseAction::Rectangle)
        return;
    painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
    painter.setBrush(rubberBandFill);
    painter.drawRect(shown.areaOf(drag_.place, drag_.voxels()));
}

void QtCortivoView::drawROIs(QPainter& painter, const MosaicTiles& tiles) const {
    drawRegionFrames(painter, tiles, shown_.regionFrames, marking_.colors, shown_.inplanes ? 3 : 2);
}

void QtCortivoView::drawReadOut(QPainter& painter) const {
    const int margin = fontMetrics().height() / 2;
    QRect line = readOutLine().adjusted(margin, 0, -margin, 0);
    painter.setFont(font());
    painter.setPen(labelColor);
    if (!zoom_.isWhole()) {
        const QString zoomText =
            QString("%1 %   double click: all").arg(std::lround(zoom_.factor() * 100));
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, zoomText);
        line.setRight(line.right() - fontMetrics().horizontalAdvance(zoomText) - margin);
    }
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(readOutText(), Qt::ElideRight, line.width()));
}

QString QtCortivoView::readOutText() const {
    if (action_ == MouseAction::Rectangle)
        return rectangleText(drag_.rectangle(), slicesOfDrag());
    if (readOut_ && document_)
        if (auto known = voxelReadOut(*document_, *readOut_, readOutVolume_, overlay())) {
            known->decimals = decimalsFor(double(thresholds_.Threshold));
            return voxelReadOutText(*known);
        }
    return selectsRegions_ ? "Drag: region   Click: voxel   Wheel: zoom"
                           : "Click: voxel   Wheel: zoom";
}

void QtCortivoView::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const int key = event->key();
    const bool arrow =
        key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
    const bool plain = !(modifiers & (Qt::ControlModifier | Qt::AltModifier));
    if (key == Qt::Key_Escape && cancelDrag())
        return;
    if (modifiers & Qt::ControlModifier &&
        (key == Qt::Key_Plus || key == Qt::Key_Equal || key == Qt::Key_Minus || key == Qt::Key_0))
        zoomByKey(key);
    else if (modifiers & Qt::AltModifier && arrow)
        panByKey(key);
    else if (plain && (key == Qt::Key_PageDown || key == Qt::Key_Plus || key == Qt::Key_Right))
        scroll(scrollForward);
    else if (plain && (key == Qt::Key_PageUp || key == Qt::Key_Minus || key == Qt::Key_Left))
        scroll(scrollBackward);
    else
        QWidget::keyPressEvent(event);
}

void QtCortivoView::scroll(void (*step)(SliceMosaicLayout& layout, int nrOfSlices)) {
    if (mosaic().isNull())
        return;
    step(document_->mosaic, shown_.nrOfSlices);
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
    if (cleared_ || action_ != MouseAction::None)
        return {};
    if (legendArea().contains(position))
        return legendText(shown_.legend);
    if (readOutLine().contains(position))
        return readOutText();
    const MosaicTiles shown = tiles();
    const int place = room().contains(position) ? shown.placeAt(position) : -1;
    if (place < 0)
        return {};
    return QString("Slice %1 of %2\nPage Down, + or Right: forward\nPage Up, - or Left: backward\n"
                   "Drag: new region\nClick: values of the voxel\nWheel, Ctrl++, Ctrl+-: zoom")
        .arg(sliceAtPlace(shown_.layout, place, shown_.nrOfSlices) + 1)
        .arg(shown_.nrOfSlices);
}
