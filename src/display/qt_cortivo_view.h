// The 2-D view of the main window: all slices of a run with the maps over them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/overlay_legend.h"
#include "display/rectangle_drag.h"
#include "display/region_marks.h"
#include "display/view_zoom.h"
#include "display/voxel_read_out.h"

#include <QImage>
#include <QString>
#include <QWidget>

class QtCortivoDoc;
class WorkerPool;

/// The mosaic is composed once for each change, at one pixel for each pixel of a slice, and drawn
/// into the view without smoothing. The voxels of regions are marked in it; their frames are drawn
/// over it at the resolution of the screen, and into the saved picture at its own. Slice numbers,
/// lines between the tiles, the colour legend and the line with read-outs are not part of the saved
/// picture.
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
    /// Maps of plug-ins that may take the place of the contrasts; not owned, null for none.
    void setPluginMaps(const RegisteredPluginMaps* registered) { pluginMaps_ = registered; }
    /// The threads that compose the mosaic; not owned. Without them the caller's does.
    void setWorkers(WorkerPool& workers) { workers_ = &workers; }
    /// The volume whose samples are read out, or firstVolumeAsRead.
    void setVolumeReadOut(int volume);
    /// Reads a voxel out as if it had been clicked, or none, without telling anybody.
    void markVoxel(const std::optional<VoxelPosition>& voxel);
    void setRegionMarking(const RegionMarking& marking);
    /// What legend and read-out call the values of the maps; empty for what their kind says.
    void setStatisticName(const QString& name) { statisticName_ = name; }
    /// Whether a drag selects a rectangle; it does at first.
    void setSelectsRegions(bool on) { selectsRegions_ = on; }
    /// The help file of the paradigm, as the settings name it; empty for none.
    void setHelpFile(const QString& path) { helpFile_ = path; }

    /// The current mosaic; null without slices, or when it would be too large.
    [[nodiscard]] const QImage& mosaic();
    /// Where the voxels lie on the view, as it was composed last; empty when none are shown.
    [[nodiscard]] MosaicTiles tiles() const;
    /// The height at which each pixel of a slice has one of the view, with the line of read-outs.
    [[nodiscard]] int unscaledHeight() const { return mosaic_.height() + readOutLine().height(); }
    /// The line with read-outs: of the rectangle that is dragged or the voxel that was clicked,
    /// else what the mouse does.
    [[nodiscard]] QString readOutText() const;
    /// True when a rectangle was being dragged; it is given up.
    bool cancelDrag();

    [[nodiscard]] QSize sizeHint() const override { return {700, 560}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {200, 160}; }

public Q_SLOTS:
    /// The slices, the maps, the regions or the way in which they are shown have changed.
    void slotDocumentChanged();
    /// Saves the current mosaic in the file that the operator chooses, without blocking a run. A
    /// failure is reported.
    void slotSaveAsBMP();
    /// Blackens the view until the document changes again.
    void slotClearArea();
    /// Opens the help file, if there is one, in the program that the system has for it.
    void slotShowHelpHTML();

Q_SIGNALS:
    /// The operator has dragged a rectangle over these voxels; it is inside the slice and not
    /// empty.
    void rectangleSelected(const VoxelRectangle& rectangle);
    /// The operator has clicked on this voxel, which is read out.
    void voxelClicked(const VoxelPosition& voxel);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// What the pressed button does.
    enum class MouseAction {
        None,
        Click, ///< until the pointer has moved far enough for a rectangle
        Rectangle,
        Pan
    };

    [[nodiscard]] Qt::MouseButton buttonOfAction() const;
    [[nodiscard]] QRect readOutLine() const;
    [[nodiscard]] QRect legendArea() const;
    /// What the mosaic may cover.
    [[nodiscard]] QRectF room() const;
    /// The whole mosaic's area in the view, in logical pixels, aligned to those of the screen.
    [[nodiscard]] QRectF fittedArea() const;
    [[nodiscard]] QString toolTipAt(QPoint position) const;
    /// The maps over the slices; empty when they are off.
    [[nodiscard]] ShownMaps overlay() const;
    void renderSlices();
    void composeMosaic();
    void scroll(void (*step)(SliceMosaicLayout& layout, int nrOfSlices));
    void drawMosaic(QPainter& painter, const QRectF& area) const;
    void drawOverMosaic(QPainter& painter) const;
    void drawReadOut(QPainter& painter) const;
    /// Draws the frames of the regions on a picture of the mosaic.
    void drawROIs(QPainter& painter, const MosaicTiles& tiles) const;
    [[nodiscard]] MosaicTiles tilesOn(const QRectF& area) const;
    [[nodiscard]] SliceRange slicesOfDrag() const;
    void zoom(double by, QPointF position);
    void zoomByKey(int key);
    void panByKey(int key);
    void click();

    QtCortivoDoc* document_;
    const OverlayThresholds& thresholds_;
    const RegisteredPluginMaps* pluginMaps_ = nullptr;
    WorkerPool* workers_ = nullptr;
    QImage mosaic_;
    /// As the mosaic was composed: the document may be ahead of what is on the screen.
    struct Shown {
        SliceMosaicLayout layout;
        int nrOfSlices = 0; ///< that the mosaic chooses from
        QSize grid;
        bool inplanes = false;
        std::vector<RegionFrame> regionFrames;
        OverlayLegend legend;
    };
    Shown shown_;
    bool outdated_ = true; ///< the mosaic is to be composed before it is drawn
    bool cleared_ = false;
    bool showInplanes_ = false;
    bool overlayShown_ = true;
    int readOutVolume_ = firstVolumeAsRead;
    RegionMarking marking_;
    QString statisticName_;
    bool selectsRegions_ = true;
    QString helpFile_;

    ViewZoom zoom_;
    MouseAction action_ = MouseAction::None;
    QPointF pressed_; ///< where the action began; for panning, where the pointer was last
    RectangleDrag drag_;
    std::optional<VoxelPosition> readOut_;
    std::optional<VoxelPosition> readOutBeforeClick_; ///< for a double click, which takes it back
};
