// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/matrix_plotter.h"

#include "dialogs/appearance.h"
#include "display/plots/matrix_colors.h"
#include "display/plots/plot_colors.h"
#include "display/plots/plot_read_out.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

constexpr double gap = 4;
constexpr double barWidth = 12;
constexpr int charactersOfNumber = 4;    ///< of a row
constexpr int charactersOfBarNumber = 7; ///< of a value

QFont numbersOf(const QFont& font) {
    return numberFont(font, 0.88);
}

PlotRange symmetricRange(const std::vector<PlotMatrix>& matrices) {
    double largest = 0.0;
    for (const PlotMatrix& matrix : matrices)
        for (const float value : matrix.values)
            if (std::isfinite(value))
                largest = std::max(largest, std::abs(double(value)));
    const PlotRange range{-largest, largest};
    return isUsable(range) ? range : PlotRange{-1, 1};
}

/// Whole numbers of cells, which stand in the middle of theirs.
std::vector<int> cellNumbers(double first, double last, double room, double size) {
    std::vector<int> numbers;
    const int count = std::clamp(int(room / size), 2, 20);
    for (const double tick : roundTicks({first, last}, count))
        if (std::abs(tick - std::round(tick)) < 1e-6)
            numbers.push_back(int(std::lround(tick)));
    return numbers;
}

QImage cellImage(const PlotMatrix& matrix, const PlotRange& range) {
    QImage image(matrix.columns, matrix.rows, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    for (int row = 0; row < matrix.rows; ++row) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
        const float* values = matrix.values.data() + size_t(row) * size_t(matrix.columns);
        for (int column = 0; column < matrix.columns; ++column) {
            const int level = matrixLevel(double(values[column]), range);
            line[column] = level < 0 ? plotColors::background.rgb() : matrixLevelColor(level);
        }
    }
    return image;
}

} // namespace

MatrixPlotter::MatrixPlotter(QWidget* parent) : PlotCanvas(parent) {
    setAccessibleName("Matrix");
}

void MatrixPlotter::setMatrices(std::vector<PlotMatrix> matrices,
                                const std::optional<PlotRange>& range) {
    const PlotRanges before = wholeRanges();
    const int countBefore = nrOfMatrices();
    const int selectedBefore = selected_;
    matrices_ = std::move(matrices);
    colorRange_ = range && isUsable(*range) ? *range : symmetricRange(matrices_);
    selected_ = std::clamp(selected_, std::min(0, nrOfMatrices() - 1), nrOfMatrices() - 1);
    const PlotRanges now = wholeRanges();
    if (now.x == before.x && now.y == before.y)
        contentChanged();
    else
        zoomToWhole();
    if (nrOfMatrices() != countBefore)
        Q_EMIT changedNrOfSignals(nrOfMatrices());
    if (selected_ != selectedBefore)
        Q_EMIT selectedSignalChanged(selected_);
}

void MatrixPlotter::selectMatrix(int signal_i) {
    if (signal_i < 0 || signal_i >= nrOfMatrices() || signal_i == selected_)
        return;
    const PlotRanges before = wholeRanges();
    selected_ = signal_i;
    const PlotRanges now = wholeRanges();
    if (now.x == before.x && now.y == before.y)
        contentChanged();
    else
        zoomToWhole();
    Q_EMIT selectedSignalChanged(selected_);
}

const PlotMatrix* MatrixPlotter::shownMatrix() const {
    if (selected_ < 0 || !matrices_[size_t(selected_)].isDrawable())
        return nullptr;
    return &matrices_[size_t(selected_)];
}

PlotRanges MatrixPlotter::wholeRanges() const {
    const PlotMatrix* matrix = shownMatrix();
    return matrix ? PlotRanges{{0, double(matrix->columns)}, {0, double(matrix->rows)}}
                  : PlotRanges();
}

PlotGeometry MatrixPlotter::geometryIn(const QRectF& area, const PlotRanges& ranges) const {
    const QFontMetricsF numbers(numbersOf(font()));
    const double digit = numbers.horizontalAdvance('0');
    QRectF axes = area.adjusted(charactersOfNumber * digit + 2 * gap, gap,
                                -(barWidth + charactersOfBarNumber * digit + 4 * gap),
                                -(numbers.height() + gap));
    axes.setTop(axes.top() + QFontMetricsF(font()).height());
    axes.setWidth(std::max(std::floor(axes.width()), 1.0));
    axes.setHeight(std::max(std::floor(axes.height()), 1.0));
    return {axes, ranges.x, ranges.y};
}

void MatrixPlotter::paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) {
    painter.fillRect(area, plotColors::background);
    painter.setFont(font());
    painter.setPen(plotColors::text);
    const PlotMatrix* matrix = shownMatrix();
    if (!matrix) {
        painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, "There is no matrix to show.");
        return;
    }
    const PlotGeometry geometry = geometryIn(area, ranges);
    const QRectF title(geometry.axes.left(), area.top() + gap / 2, geometry.axes.width(),
                       QFontMetricsF(font()).height());
    painter.drawText(
        title, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        painter.fontMetrics().elidedText(matrix->name, Qt::ElideRight, int(title.width())));
    paintCells(painter, geometry);
    painter.setFont(numbersOf(font()));
    paintNumbers(painter, geometry);
    paintColorBar(painter, area, geometry);
}

void MatrixPlotter::paintCells(QPainter& painter, const PlotGeometry& geometry) const {
    const PlotMatrix& matrix = *shownMatrix();
    const QRectF cells(geometry.x.from, matrix.rows - geometry.y.to,
                       geometry.x.to - geometry.x.from, geometry.y.to - geometry.y.from);
    painter.drawImage(geometry.axes, cellImage(matrix, colorRange_), cells);
    painter.setPen(plotColors::frame);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(geometry.axes.adjusted(-1, -1, 0, 0));
}

void MatrixPlotter::paintNumbers(QPainter& painter, const PlotGeometry& geometry) const {
    painter.setPen(plotColors::quietText);
    const QFontMetricsF metrics = painter.fontMetrics();
    const double width = charactersOfNumber * metrics.horizontalAdvance('0');
    const double line = metrics.height();
    const QRectF& axes = geometry.axes;
    // Number n is in the middle of the cell from n - 1 to n.
    for (const int number :
         cellNumbers(geometry.x.from + 0.5, geometry.x.to + 0.5, axes.width(), width * 1.2))
        painter.drawText(
            QRectF(geometry.positionOfX(number - 0.5) - width / 2, axes.bottom() + 2, width, line),
            Qt::AlignCenter, QString::number(number));
    const int rows = shownMatrix()->rows;
    for (const int number : cellNumbers(rows - geometry.y.to + 0.5, rows - geometry.y.from + 0.5,
                                        axes.height(), line * 1.5))
        painter.drawText(QRectF(axes.left() - gap - width,
                                geometry.positionOfY(rows - number + 0.5) - line / 2, width, line),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(number));
}

void MatrixPlotter::paintColorBar(QPainter& painter, const QRectF& area,
                                  const PlotGeometry& geometry) const {
    const QRectF bar(geometry.axes.right() + 2 * gap, geometry.axes.top(), barWidth,
                     geometry.axes.height());
    constexpr int levels = 2 * nrOfMatrixLevels;
    for (int level = 0; level < levels; ++level) {
        const double top = bar.bottom() - bar.height() * (level + 1) / levels;
        const double bottom = bar.bottom() - bar.height() * level / levels;
        painter.fillRect(QRectF(QPointF(bar.left(), top), QPointF(bar.right(), bottom)),
                         QColor(matrixLevelColor(level)));
    }
    painter.setPen(plotColors::frame);
    painter.drawRect(bar.adjusted(-1, -1, 0, 0));
    painter.setPen(plotColors::quietText);
    const double line = painter.fontMetrics().height();
    const PlotGeometry scale{bar, {0, 1}, colorRange_};
    const auto ticks = roundTicks(colorRange_, std::clamp(int(bar.height() / (1.6 * line)), 2, 9));
    const std::vector<QString> texts = tickTexts(ticks);
    for (size_t i = 0; i < ticks.size(); ++i) {
        const double y = scale.positionOfY(ticks[i]);
        painter.drawText(
            QRectF(bar.right() + gap, y - line / 2, area.right() - bar.right() - gap, line),
            Qt::AlignLeft | Qt::AlignVCenter, texts[i]);
    }
}

QPoint MatrixPlotter::cellAt(const PlotGeometry& geometry, QPoint position) const {
    const PlotMatrix& matrix = *shownMatrix();
    const int column = int(geometry.xAt(position.x()));
    const int row = int(matrix.rows - geometry.yAt(position.y()));
    return {std::clamp(column, 0, matrix.columns - 1), std::clamp(row, 0, matrix.rows - 1)};
}

QString MatrixPlotter::readOutAt(QPoint position) const {
    const PlotGeometry geometry = geometryShown();
    const PlotMatrix* matrix = shownMatrix();
    if (!matrix || !geometry.axes.contains(position))
        return {};
    const QPoint cell = cellAt(geometry, position);
    const float value =
        matrix->values[size_t(cell.y()) * size_t(matrix->columns) + size_t(cell.x())];
    return QStringLiteral("Row %1, column %2: %3")
        .arg(cell.y() + 1)
        .arg(cell.x() + 1)
        .arg(std::isnan(value) ? QStringLiteral("no value") : readOutNumber(double(value)));
}

void MatrixPlotter::paintPointer(QPainter& painter, QPoint position) {
    const PlotMatrix* matrix = shownMatrix();
    if (!matrix)
        return;
    const PlotGeometry geometry = geometryShown();
    const QPoint cell = cellAt(geometry, position);
    const QPointF upper(geometry.positionOfX(cell.x()),
                        geometry.positionOfY(matrix->rows - cell.y()));
    const QPointF lower(geometry.positionOfX(cell.x() + 1),
                        geometry.positionOfY(matrix->rows - cell.y() - 1));
    painter.setClipRect(geometry.axes);
    painter.setPen(plotColors::text);
    painter.drawRect(QRectF(upper, lower));
}
