// The 2-D view of the main window: all slices of a run with the statistical maps over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/overlay_legend.h"
#include "run/document/slice_mosaic_layout.h"

#include <QImage>
#include <QString>
#include <QWidget>

class QtCortivoDoc;

/// The mosaic is composed once for each change, at one pixel for each pixel of a slice, and drawn
/// into the view without smoothing. Slice numbers, lines between the tiles and the colour legend
/// are drawn over it at the resolution of the screen; they are not part of the saved picture.
class QtCortivoView : public QWidget {
    Q_OBJECT

public:
    /// Document and thresholds are not owned and must live as long as the view; without a document
    /// the view is black.
    QtCortivoView(QtCortivoDoc* document, const OverlayThresholds& thresholds,
                  QWidget* parent = nullptr);

    /// Shows the high-resolution slices instead of the functional ones, where there are any.
    void setShowInplanes(bool show);
    /// Switches the maps on or off; they are on at first.
    void setOverlayShown(bool shown);
    /// The help file of the paradigm, as the settings name it; empty for none.
    void setHelpFile(const QString& path) { helpFile_ = path; }

    /// The current mosaic; null without slices, or when it would be too large.
    [[nodiscard]] const QImage& mosaic();
    /// The slice at a position in the view, counted from 0; -1 outside the slices.
    [[nodiscard]] int sliceAt(QPoint position) const;

    [[nodiscard]] QSize sizeHint() const override { return {700, 560}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {200, 160}; }

public Q_SLOTS:
    /// The slices, the maps or the way in which they are shown have changed.
    void slotDocumentChanged();
    /// Saves the current mosaic in the file that the operator chooses, without blocking a run. A
    /// failure is reported.
    void slotSaveAsBMP();
    /// Blackens the view until the document changes again.
    void slotClearArea();
    /// Opens the help file, if there is one, in the program that the system has for it.
    void slotShowHelpHTML();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRect legendArea() const;
    /// The mosaic's area in the view, in logical pixels, aligned to those of the screen.
    [[nodiscard]] QRectF mosaicArea() const;
    [[nodiscard]] QString toolTipAt(QPoint position) const;
    void compose();
    void scroll(void (*step)(SliceMosaicLayout& layout, int nrOfSlices));
    void paintTileMarks(QPainter& painter, const QRectF& area) const;

    QtCortivoDoc* document_;
    const OverlayThresholds& thresholds_;
    QImage mosaic_;
    // As the mosaic was composed: the document may be ahead of what is on the screen.
    SliceMosaicLayout shownLayout_;
    int nrOfShownSlices_ = 0; ///< that the mosaic chooses from
    OverlayLegend legend_;
    bool outdated_ = true; ///< the mosaic is to be composed before it is drawn
    bool cleared_ = false;
    bool showInplanes_ = false;
    bool overlayShown_ = true;
    QString helpFile_;
};
