// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/anatomical_view.h"

#include "base/messages.h"
#include "dialogs/appearance.h"
#include "dialogs/bitmap_saving.h"
#include "dialogs/number_fields.h"
#include "display/section_painting.h"
#include "display/tile_marks.h"
#include "run/document/qt_cortivo_doc.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr SectionAxis allSections[] = {SectionAxis::X, SectionAxis::Y, SectionAxis::Z};

} // namespace

AnatomicalView::AnatomicalView(const AnatomicalViewSources& sources, QWidget* parent)
    : QWidget(parent), sources_(sources) {
    setObjectName("AnatomicalView");
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true); // tells of a release that went elsewhere
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName("Sections");
}

void AnatomicalView::setOverlayShown(bool shown) {
    if (shown == overlayShown_)
        return;
    overlayShown_ = shown;
    slotDocumentChanged();
}

void AnatomicalView::setVolumeReadOut(int volume) {
    readOutVolume_ = volume;
    update();
}

void AnatomicalView::slotDocumentChanged() {
    outdated_ = true;
    update();
}

CubeVoxel AnatomicalView::cross() const {
    const CubeVoxel& voxel = sources_.anatomy.cross[size_t(sources_.anatomy.shown)];
    return movedVoxel(SectionAxis::X, voxel, 0, 0, 0); // limited to the cube
}

ShownMaps AnatomicalView::overlay() const {
    return overlayShown_ ? shownMaps(sources_.run, sources_.pluginMaps) : ShownMaps();
}

const SectionImages& AnatomicalView::sections() {
    if (outdated_)
        compose();
    return sections_;
}

void AnatomicalView::compose() {
    outdated_ = false;
    AnatomicalPictureSource source;
    source.cube = &cube();
    source.cross = cross();
    source.windowLow = sources_.anatomy.windowLow;
    source.windowHigh = sources_.anatomy.windowHigh;
    source.run = sources_.run.project.size();
    source.maps = overlay();
    source.thresholds = sources_.thresholds;
    legend_ = makeOverlayLegend(source.maps, sources_.thresholds);
    composed_ = composeSections(sections_, source);
    if (!composed_)
        sections_ = {};
    for (const SectionAxis axis : allSections)
        sides_[size_t(axis)] = sectionSides(cube(), axis);
}

void AnatomicalView::slotSaveAsBMP() {
    (void)sections();
    if (!composed_) {
        showModelessWarning("WARNING: There are no sections to save!");
        return;
    }
    constexpr int side = 2 * cubeSide + 4;
    QImage picture(side, side, QImage::Format_RGB32);
    picture.fill(Qt::black);
    {
        QPainter painter(&picture);
        paintFields(painter, fieldsIn(picture.rect(), 1.0));
    }
    saveBitmapAs(picture, sources_.run.project.targetFolder);
}

QRect AnatomicalView::legendArea() const {
    const int margin = fontMetrics().height() / 2;
    const int legend = std::min(legendWidth(font()), width() / 3);
    return QRect(width() - legend - margin, margin, legend, height() - 2 * margin);
}

QRectF AnatomicalView::room() const {
    return QRectF(0, 0, legendArea().left() - fontMetrics().height() / 2, height());
}

SectionFields AnatomicalView::fieldsIn(const QRectF& room, double pixelRatio) const {
    SectionFields fields = sectionFields(room, pixelRatio);
    for (const SectionAxis axis : allSections)
        fields.upsideDown[size_t(axis)] = sides_[size_t(axis)].upsideDown();
    return fields;
}

SectionFields AnatomicalView::fields() const {
    return fieldsIn(room(), devicePixelRatioF());
}

void AnatomicalView::paintFields(QPainter& painter, const SectionFields& fields) const {
    for (const SectionAxis axis : allSections)
        paintSection(painter, sections_[size_t(axis)], fields, axis, sides_[size_t(axis)], cross(),
                     font());
    paintReadOutLines(painter, fields.readOut, cube().name, readOut(), font());
}

void AnatomicalView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    (void)sections();
    if (!composed_) {
        painter.setPen(labelColor);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                         "There is no volume to be shown.");
        return;
    }
    const SectionFields shown = fields();
    paintFields(painter, shown);
    if (hasFocus()) {
        // The section that the keys move in.
        painter.setPen(QPen(palette().highlight().color(), 1));
        painter.drawRect(shown.sections[size_t(active_)].adjusted(-1, -1, 0, 0));
    }
    paintOverlayLegend(painter, legendArea(), legend_, font());
}

std::vector<ReadOutLine> AnatomicalView::readOut() const {
    if (cube().volume.cube.size() != cubeVoxels)
        return {};
    AnatomicalReadOut known =
        anatomicalReadOut(cube(), cross(), sources_.run, readOutVolume_, overlay());
    if (known.functional)
        known.functional->decimals = decimalsFor(double(sources_.thresholds.Threshold));
    return readOutLines(known);
}

void AnatomicalView::moveCross(int columns, int rows, int sections) {
    if (!composed_)
        return;
    const int down = sides_[size_t(active_)].upsideDown() ? -rows : rows;
    const CubeVoxel moved = movedVoxel(active_, cross(), columns, down, sections);
    if (moved != cross())
        Q_EMIT crossMoved(moved);
}

void AnatomicalView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && cancelDrag())
        return;
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier))
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Left:
        return moveCross(-1, 0, 0);
    case Qt::Key_Right:
        return moveCross(1, 0, 0);
    case Qt::Key_Up:
        return moveCross(0, -1, 0);
    case Qt::Key_Down:
        return moveCross(0, 1, 0);
    case Qt::Key_PageUp:
        return moveCross(0, 0, -1);
    case Qt::Key_PageDown:
        return moveCross(0, 0, 1);
    default:
        QWidget::keyPressEvent(event);
    }
}

void AnatomicalView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void AnatomicalView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}

bool AnatomicalView::event(QEvent* event) {
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

QString AnatomicalView::toolTipAt(QPoint position) const {
    if (!composed_ || action_ != MouseAction::None)
        return {};
    if (legendArea().contains(position))
        return legendText(legend_);
    const SectionFields shown = fields();
    if (shown.readOut.contains(position)) {
        QStringList lines{cube().name};
        for (const ReadOutLine& line : readOut())
            lines << line.name + "  " + line.text.simplified();
        return lines.join('\n');
    }
    const auto axis = shown.sectionAt(position);
    if (!axis)
        return {};
    return sectionTitle(sides_[size_t(*axis)], *axis, cross()) +
           "\nClick, drag: move the cross\nArrows: move the cross by 1\n"
           "Wheel, Page Up, Page Down: move through this section's axis\n"
           "Drag with the right button: across for contrast, up and down for brightness\n"
           "Double click with the right button: all intensities";
}
