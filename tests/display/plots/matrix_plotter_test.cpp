// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/matrix_plotter.h"

#include "display/plots/matrix_colors.h"
#include "display/plots/matrix_plotter_dialog.h"
#include "display/plots/mouse.h"
#include "support/scripted_messages.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

PlotMatrix someMatrix() {
    return {"Patterns", 2, 3, {-4, 0, 1, 2, nan, 4}};
}

TEST(MatrixColors, HaveLevelsOfBothSigns) {
    const std::pair<double, int> levels[] = {{-4, 0}, {-0.01, 31}, {0.01, 32},
                                             {4, 63}, {-1e30, 0},  {double(nan), -1}};
    for (const auto& [value, level] : levels)
        EXPECT_EQ(matrixLevel(value, {-4, 4}), level) << value;
    for (int strength = 1; strength < nrOfMatrixLevels; ++strength) { // stronger is brighter
        EXPECT_GT(qGray(matrixLevelColor(32 + strength)), qGray(matrixLevelColor(31 + strength)));
        EXPECT_GT(qGray(matrixLevelColor(31 - strength)), qGray(matrixLevelColor(32 - strength)));
    }
}

class Matrix : public testing::Test {
protected:
    Matrix() { plotter.resize(300, 200); }
    /// The middle of a cell, both from 0.
    QPoint cell(int row, int column) {
        const PlotGeometry geometry = plotter.geometryShown();
        const int rows = 2;
        return QPointF(geometry.positionOfX(column + 0.5), geometry.positionOfY(rows - row - 0.5))
            .toPoint();
    }
    QRgb colorAt(int row, int column) {
        return plotter.picture().toImage().pixel(cell(row, column));
    }
    MatrixPlotter plotter;
};

TEST_F(Matrix, ColorsAndReadsOutItsCells) {
    plotter.setMatrices({someMatrix()});
    EXPECT_EQ(plotter.colorRange(), (PlotRange{-4, 4}));
    EXPECT_EQ(colorAt(0, 0), matrixLevelColor(0));
    EXPECT_EQ(colorAt(0, 2), matrixLevelColor(40));
    EXPECT_EQ(colorAt(1, 0), matrixLevelColor(48));
    EXPECT_EQ(colorAt(1, 2), matrixLevelColor(63));
    EXPECT_EQ(plotter.readOutAt(cell(0, 2)), "Row 1, column 3: 1");
    EXPECT_EQ(plotter.readOutAt(cell(1, 1)), "Row 2, column 2: no value");
    EXPECT_EQ(plotter.readOutAt({2, 2}), "");
    plotter.setMatrices({someMatrix()}, PlotRange{0, 8});
    EXPECT_EQ(colorAt(1, 0), matrixLevelColor(16));

    mouse::wheel(plotter, cell(1, 2), 10); // as far in as one cell
    EXPECT_NEAR(plotter.shownX().to - plotter.shownX().from, 1, 1e-9);
    EXPECT_EQ(colorAt(1, 2), matrixLevelColor(32));
}

TEST_F(Matrix, SelectsFromASeries) {
    const QSignalSpy counts(&plotter, &MatrixPlotter::changedNrOfSignals);
    const QSignalSpy selections(&plotter, &MatrixPlotter::selectedSignalChanged);
    plotter.setMatrices({someMatrix(), {"Wide", 1, 2, {8, 8}}, someMatrix()});
    EXPECT_EQ(plotter.colorRange(), (PlotRange{-8, 8})) << "of the whole series";
    plotter.zoomIn();
    for (const int index : {0, 2, 0, -1, 3, 1})
        plotter.selectMatrix(index);
    EXPECT_EQ(plotter.shownX(), (PlotRange{0, 2})) << "a matrix of another size is shown whole";
    plotter.setMatrices({someMatrix()});
    plotter.setMatrices({someMatrix()});
    plotter.setMatrices({});
    EXPECT_EQ(counts, (QList<QVariantList>{{3}, {1}, {0}}));
    EXPECT_EQ(selections, (QList<QVariantList>{{0}, {2}, {0}, {1}, {0}, {-1}}));
}

TEST_F(Matrix, SurvivesWhatCantBeShown) {
    const float infinity = std::numeric_limits<float>::infinity();
    const PlotMatrix matrices[] = {{"", 2, 2, {1}},   {"", -1, 3, {}},
                                   {"", 0, 0, {}},    {"", 1, 1, {0}},
                                   {"", 1, 1, {nan}}, {"", 1, 2, {infinity, -infinity}}};
    for (const PlotMatrix& matrix : matrices)
        for (const QSize size : {QSize(1, 1), QSize(150, 100)}) {
            plotter.resize(size);
            plotter.setMatrices({matrix}, PlotRange{3, 3});
            plotter.zoomIn();
            mouse::send(plotter, QEvent::MouseMove, {75, 50});
            EXPECT_EQ(plotter.grab().size(), size);
            (void)plotter.readOutAt({75, 50});
            EXPECT_EQ(plotter.colorRange(), (PlotRange{-1, 1}));
        }
}

TEST(MatrixDialog, ChoosesByNumberFromOne) {
    MatrixPlotterDlg dialog;
    auto* slider = dialog.findChild<QSlider*>("SelectSlider");
    auto* box = dialog.findChild<QSpinBox*>("SelectSpBx");
    EXPECT_FALSE(slider->isEnabled());
    dialog.plotter().setMatrices({someMatrix(), someMatrix(), someMatrix()});
    EXPECT_EQ(slider->maximum(), 3);
    slider->setValue(3);
    EXPECT_EQ(box->value(), 3);
    box->setValue(2);
    EXPECT_EQ(dialog.plotter().selectedMatrix(), 1);
    dialog.plotter().setMatrices({someMatrix()});
    EXPECT_EQ(box->value(), 1);
    EXPECT_FALSE(box->isEnabled());
}

TEST(MatrixDialog, NamesAChosenLookUpTable) {
    ScriptedMessages messages;
    MatrixPlotterDlg dialog;
    const auto* field = dialog.findChild<QLineEdit*>("LUTEdit");
    messages.expectFileChoice("Open OLT File", "/luts/hot.olt");
    dialog.onBrowseLUTFile();
    EXPECT_EQ(field->text(), "/luts/hot.olt");
}

} // namespace
