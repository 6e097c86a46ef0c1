// The widget of a series of matrices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_canvas.h"

/// A matrix whose values stand row by row.
struct PlotMatrix {
    QString name;
    int rows = 0;
    int columns = 0;
    std::vector<float> values; ///< rows * columns; without a number a cell stays empty

    [[nodiscard]] bool isDrawable() const {
        return rows > 0 && columns > 0 && values.size() == size_t(rows) * size_t(columns);
    }
};

/// Draws one matrix of a series as coloured cells, the first row at the top, with the built-in
/// table of positive and negative levels and a bar of its colours. Rows and columns are numbered
/// from 1, matrices from 0. Zoom, read-out and saving are those of a PlotCanvas.
class MatrixPlotter : public PlotCanvas {
    Q_OBJECT

public:
    explicit MatrixPlotter(QWidget* parent = nullptr);

    /// The same colours stand for the same values in the whole series. Without a (usable) range
    /// they are symmetric about 0. The selection stays where the series is long enough.
    void setMatrices(std::vector<PlotMatrix> matrices, const std::optional<PlotRange>& range = {});
    [[nodiscard]] int nrOfMatrices() const { return int(matrices_.size()); }
    /// -1 without a matrix.
    [[nodiscard]] int selectedMatrix() const { return selected_; }
    /// The values at both ends of the colour bar.
    [[nodiscard]] const PlotRange& colorRange() const { return colorRange_; }
    [[nodiscard]] QString readOutAt(QPoint position) const override;

public Q_SLOTS:
    /// Shows matrix 0 to nrOfMatrices() - 1; another number does nothing.
    void selectMatrix(int signal_i);

Q_SIGNALS:
    void changedNrOfSignals(int nrOfSignals);
    void selectedSignalChanged(int signal_i);

protected:
    [[nodiscard]] PlotRanges wholeRanges() const override;
    [[nodiscard]] QSizeF leastWidths() const override { return {1, 1}; }
    [[nodiscard]] PlotGeometry geometryIn(const QRectF& area,
                                          const PlotRanges& ranges) const override;
    void paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) override;
    void paintPointer(QPainter& painter, QPoint position) override;

private:
    /// The matrix that is shown; nullptr where none can be.
    [[nodiscard]] const PlotMatrix* shownMatrix() const;
    /// Column and row under a place inside the axes, from 0.
    [[nodiscard]] QPoint cellAt(const PlotGeometry& geometry, QPoint position) const;
    void paintCells(QPainter& painter, const PlotGeometry& geometry) const;
    void paintNumbers(QPainter& painter, const PlotGeometry& geometry) const;
    void paintColorBar(QPainter& painter, const QRectF& area, const PlotGeometry& geometry) const;

    std::vector<PlotMatrix> matrices_;
    int selected_ = -1;
    PlotRange colorRange_{-1, 1};
};
