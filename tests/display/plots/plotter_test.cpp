// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plotter.h"

#include "display/plots/mouse.h"
#include "display/plots/plot_2d_dialog.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
const QColor curveColor(250, 240, 230);
const QColor ground(0x0e, 0x14, 0x1b);

/// x from 0 to 10 and y from 0 to 10, without what could hide a curve.
PlotContent bare(std::vector<float> values = {}) {
    PlotContent content;
    content.xRange = content.yRange = PlotRange{0, 10};
    content.gridShown = false;
    content.curves = {{"", curveColor, std::move(values), {}, 3.0}};
    return content;
}

/// Counts how often the backing store is painted.
class CountingPlotter : public Plotter {
public:
    int paintings = 0;

protected:
    void paintContent(QPainter& painter, const QRectF& area, const PlotRanges& ranges) override {
        ++paintings;
        Plotter::paintContent(painter, area, ranges);
    }
};

class Plot : public testing::Test {
protected:
    Plot() { plotter.resize(240, 160); }
    QPoint pointAt(double x, double y) {
        const PlotGeometry geometry = plotter.geometryShown();
        return QPoint(int(geometry.positionOfX(x)), int(geometry.positionOfY(y)));
    }
    QColor colorAt(double x, double y) {
        return plotter.picture().toImage().pixelColor(pointAt(x, y));
    }
    CountingPlotter plotter;
};

TEST_F(Plot, HasMarksWithTheirShapesAndReadsThemOut) {
    PlotContent content = bare();
    content.curves.clear();
    content.xRange = PlotRange{0.5, 10.5};
    content.yRange.reset();
    content.xStart = 1;
    for (const auto& [legend, shape, x] : {std::tuple("hit", PlotMarkShape::Disc, 2.0),
                                           {"miss", PlotMarkShape::Circle, 5.5},
                                           {"none", PlotMarkShape::Cross, 9.0}})
        content.marks.push_back({legend, curveColor, shape, {{x, 100}, {x, double(nan)}}});
    content.marks[0].points.emplace_back(2.0, 300);
    content.marks[2].points.emplace_back(nan, 200);
    plotter.setContent(content);
    EXPECT_GE(plotter.shownY().to, 300.0);
    EXPECT_LE(plotter.shownY().from, 100.0);
    EXPECT_EQ(colorAt(2, 100), curveColor);
    EXPECT_EQ(colorAt(2, 300), curveColor);
    EXPECT_EQ(colorAt(5.5, 100), ground) << "hollow";
    const auto beside = [&](double x) {
        return plotter.picture().toImage().pixelColor(pointAt(x, 100) + QPoint(3, 0));
    };
    EXPECT_NE(beside(5.5), ground);
    EXPECT_NE(beside(2), ground);
    EXPECT_EQ(beside(9), ground) << "arms of a cross are diagonal";
    EXPECT_NE(colorAt(9, 100), ground);
    EXPECT_EQ(plotter.readOutAt(pointAt(2.2, 200)), "x: 2\nhit: 100\nhit: 300");
    EXPECT_EQ(plotter.readOutAt(pointAt(1, 200)), "x: 1");
    EXPECT_EQ(plotter.readOutAt(pointAt(6.2, 200)), "x: 6\nmiss: 100");
}

TEST_F(Plot, BandsThatOverlapAreBothSeen) {
    PlotContent content = bare();
    content.bands = {{1, 5, Qt::red, ""}, {4, 8, Qt::green, ""}, {8, 9, Qt::red, ""}};
    plotter.setContent(content);
    const QColor alone = colorAt(2, 5);
    EXPECT_EQ(colorAt(8.5, 5), alone) << "what only touches another is as if it were alone";
    EXPECT_GT(colorAt(6, 5).green(), ground.green());
    const QColor both = colorAt(4.5, 5);
    EXPECT_GT(both.green(), ground.green());
    EXPECT_GT(both.red(), ground.red());
    EXPECT_LT(both.red(), alone.red());
}

TEST_F(Plot, HasCurvesBandsAndLinesWhereTheirValuesAre) {
    for (const int nrOfValues : {11, 501}) { // smooth lines, and strips
        PlotContent content = bare(std::vector<float>(size_t(nrOfValues), 5));
        content.xStep = 10.0 / (nrOfValues - 1);
        for (int i = 4 * nrOfValues / 10; i <= 6 * nrOfValues / 10; ++i)
            content.curves[0].values[size_t(i)] = nan;
        content.curves[0].values[size_t(nrOfValues / 2)] = 8;
        content.bands = {{2, 4, Qt::red, "Faces"}, {9, 30, Qt::green, ""}};
        content.lines = {{7, Qt::Vertical, Qt::yellow, ""}, {3, Qt::Horizontal, Qt::cyan, ""}};
        plotter.setContent(content);
        EXPECT_EQ(colorAt(2.5, 5), curveColor) << "over the band";
        EXPECT_EQ(colorAt(4.7, 5), ground) << "a gap";
        EXPECT_EQ(colorAt(5, 8), curveColor) << "a single point";
        EXPECT_GT(colorAt(3, 2).red(), colorAt(3, 2).green() + 50);
        EXPECT_GT(colorAt(9.9, 2).green(), colorAt(9.9, 2).red() + 50);
        EXPECT_EQ(colorAt(7, 2), QColor(Qt::yellow));
        EXPECT_EQ(colorAt(8, 3), QColor(Qt::cyan));
    }
    // However noisy, a long curve covers what it passes.
    PlotContent noisy = bare();
    for (int i = 0; i < 5001; ++i)
        noisy.curves[0].values.push_back(i % 2 ? 2.0f : 8.0f);
    noisy.xStep = 0.002;
    plotter.setContent(noisy);
    for (const double y : {2.2, 5.0, 7.8})
        EXPECT_EQ(colorAt(5, y), curveColor);
    EXPECT_EQ(colorAt(5, 9), ground);
}

TEST_F(Plot, HasBarsFromZeroWithErrorBars) {
    PlotContent content;
    content.gridShown = false;
    content.yRange = {-4, 4};
    content.bars = {{"Faces", QColor(200, 80, 100), 2, 1}, {"Houses", Qt::black, -3, 0}};
    plotter.setContent(content);
    EXPECT_EQ(colorAt(-0.2, 1), QColor(200, 80, 100));
    EXPECT_EQ(colorAt(-0.2, 2.5), ground);
    EXPECT_GT(colorAt(0, 2.5).lightness(), 150) << "error bar";
    EXPECT_GT(qGray(colorAt(1, -2).rgb()), 90) << "black can be seen";
    EXPECT_EQ(plotter.readOutAt(pointAt(0.3, 3)), QString("Faces: 2 \u00b1 1"));
    EXPECT_EQ(plotter.readOutAt(pointAt(1, 3)), "Houses: -3");
}

TEST_F(Plot, StacksItsCurvesAndLosesNoPeak) {
    const QColor upper(220, 120, 110);
    PlotContent content = bare({4, 2, -1, nan});
    content.xStart = 1;
    content.stacked = true;
    content.curves.push_back({"Upper", upper, {3, nan, 5}, {}});
    plotter.setContent(content);
    const std::tuple<double, double, QColor> cases[] = {
        {1, 3.7, curveColor}, {1, 4.3, upper},      {1, 6.7, upper},  {1, 7.3, ground},
        {1.48, 2, ground},    {2, 1.7, curveColor}, {2, 2.3, ground}, {3, 0.3, upper},
        {3, 4.7, upper},      {3, 5.3, ground},     {4, 0.3, ground}};
    for (const auto& [x, y, color] : cases)
        EXPECT_EQ(colorAt(x, y), color) << x << ' ' << y;
    EXPECT_EQ(plotter.readOutAt(pointAt(1, 9)), "x: 1\nCurve 1: 4\nUpper: 3\nSum: 7");
    content.yRange.reset();
    EXPECT_EQ(wholeYRange(content), (PlotRange{0, 8}));

    // Twenty points to a pixel, one of them high.
    content = bare(std::vector<float>(5000, 1));
    content.xRange = PlotRange{0, 5000};
    content.stacked = true;
    content.curves[0].values[1234] = 9;
    plotter.setContent(content);
    const QImage picture = plotter.picture().toImage();
    const int row = pointAt(0, 8).y();
    int high = 0;
    for (int x = 0; x < picture.width(); ++x)
        high += picture.pixelColor(x, row) == curveColor;
    EXPECT_EQ(high, 1);
    EXPECT_EQ(colorAt(3000, 0.5), curveColor);
}

TEST_F(Plot, ReadsOutThePointAndTheIntervals) {
    PlotContent content = bare({1, 2.5, 3});
    content.curves.push_back({"Model", Qt::red, {4, nan, 6}, {0.5, 0.5, 0.25}});
    content.curves.push_back({"Short", Qt::red, {7}, {}});
    content.xStart = 1;
    content.xLabel = "Time (scans)";
    content.bands = {
        {1.5, 2.2, Qt::red, "Faces"}, {2, 3, Qt::red, "Faces"}, {2, 9, Qt::red, "All"}};
    plotter.setContent(content);
    const std::pair<QPoint, QString> cases[] = {
        {pointAt(2.1, 1),
         "Time (scans): 2\nFaces\nAll\nCurve 1: 2.5\nModel: \u2013\nShort: \u2013"},
        {pointAt(0.9, 9), "Time (scans): 1\nCurve 1: 1\nModel: 4 \u00b1 0.5\nShort: 7"},
        {QPoint(2, 50), ""}};
    for (const auto& [place, text] : cases)
        EXPECT_EQ(plotter.readOutAt(place), text);
    plotter.setContent({});
    EXPECT_EQ(plotter.readOutAt({120, 80}), "");
}

TEST_F(Plot, ZoomsByKeysAndGoesBack) {
    PlotContent fine = bare(std::vector<float>(101, 1));
    fine.xStep = 0.1;
    plotter.setContent(fine);
    const std::tuple<Qt::Key, PlotRange, PlotRange> cases[] = {
        {Qt::Key_Left, {0, 10}, {0, 10}},
        {Qt::Key_Plus, {2.5, 7.5}, {2.5, 7.5}},
        {Qt::Key_Right, {3.75, 8.75}, {2.5, 7.5}},
        {Qt::Key_Up, {3.75, 8.75}, {3.75, 8.75}},
        {Qt::Key_Right, {5, 10}, {3.75, 8.75}},
        {Qt::Key_Right, {5, 10}, {3.75, 8.75}},
        {Qt::Key_Equal, {6.25, 8.75}, {5, 7.5}},
        {Qt::Key_Left, {5.625, 8.125}, {5, 7.5}},
        {Qt::Key_Down, {5.625, 8.125}, {4.375, 6.875}},
        {Qt::Key_Minus, {4.375, 9.375}, {3.125, 8.125}},
        {Qt::Key_Minus, {0, 10}, {0, 10}}, // not beyond the whole
        {Qt::Key_Home, {0, 10}, {0, 10}}};
    for (const auto& [key, x, y] : cases) {
        QTest::keyClick(&plotter, key);
        EXPECT_EQ(plotter.shownX(), x) << x.from << ' ' << y.from;
        EXPECT_EQ(plotter.shownY(), y) << x.from << ' ' << y.from;
    }
    QTest::keyClick(&plotter, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(plotter.shownX(), (PlotRange{0, 10}));
    for (int i = 0; i < 200; ++i)
        plotter.zoomIn();
    EXPECT_NEAR(plotter.shownX().to - plotter.shownX().from, 0.4, 1e-9) << "four points";
}

TEST_F(Plot, ZoomsByMouse) {
    PlotContent content = bare(std::vector<float>(1001, 5));
    content.xStep = 0.01;
    plotter.setContent(content);
    constexpr double pixel = 0.15; // about as much as the widget's pixels are wide
    const auto expectShown = [&](PlotRange x, PlotRange y) {
        EXPECT_NEAR(plotter.shownX().from, x.from, pixel);
        EXPECT_NEAR(plotter.shownX().to, x.to, pixel);
        EXPECT_NEAR(plotter.shownY().from, y.from, pixel);
        EXPECT_NEAR(plotter.shownY().to, y.to, pixel);
    };
    mouse::drag(plotter, pointAt(2, 3), pointAt(6, 8));
    expectShown({2, 6}, {3, 8});
    plotter.setContent(content);
    expectShown({2, 6}, {3, 8});
    mouse::send(plotter, QEvent::MouseButtonDblClick, pointAt(3, 5));
    EXPECT_EQ(plotter.shownX(), (PlotRange{0, 10}));
    mouse::drag(plotter, pointAt(8, 5), pointAt(4, 5.1)); // along x only
    expectShown({4, 8}, {0, 10});
    mouse::send(plotter, QEvent::MouseButtonDblClick, pointAt(5, 5));
    mouse::drag(plotter, pointAt(5, 5), pointAt(5.05, 5.1)); // a click
    EXPECT_FALSE(mouse::wheel(plotter, pointAt(2, 4), -1)) << "left to a scroll area";
    EXPECT_TRUE(mouse::wheel(plotter, pointAt(2, 4), 1));
    expectShown({0.4, 8.4}, {0.8, 8.8}); // 1 / 1.25 around (2, 4)
    EXPECT_TRUE(mouse::wheel(plotter, pointAt(2, 4), -1));
    EXPECT_TRUE(mouse::wheel(plotter, {5, pointAt(0, 10).y()}, 1));
    expectShown({0, 10}, {2, 10});

    PlotContent bars;
    bars.bars = {{"", Qt::red, 1, 0}};
    plotter.setContent(bars);
    plotter.zoomToWhole();
    plotter.zoomIn();
    EXPECT_EQ(plotter.shownX(), (PlotRange{-0.5, 0.5}));
    EXPECT_NE(plotter.shownY(), wholeYRange(bars));
}

TEST_F(Plot, PaintsOnlyWhatIsNewAndShown) {
    plotter.setContent(bare({1, 2}));
    QCoreApplication::processEvents();
    EXPECT_EQ(plotter.paintings, 0) << "hidden";
    plotter.show();
    QCoreApplication::processEvents();
    const int shown = plotter.paintings;
    EXPECT_GE(shown, 1);
    mouse::send(plotter, QEvent::MouseMove, pointAt(5, 5));
    plotter.repaint();
    (void)plotter.picture();
    EXPECT_EQ(plotter.paintings, shown);
    plotter.setContent(bare({2, 3}));
    plotter.repaint();
    plotter.zoomIn();
    plotter.repaint();
    EXPECT_EQ(plotter.paintings, shown + 2);
}

TEST_F(Plot, KeepsItsAxesWhileACurveGrows) {
    PlotContent content;
    content.xRange = {0, 100};
    content.curves = {{"", curveColor, {100, 110}, {}}};
    plotter.setContent(content);
    const PlotRange y = plotter.shownY();
    const QRectF axes = plotter.geometryShown().axes;
    for (const float value : {101.0f, 110.5f, 1900.0f}) {
        EXPECT_EQ(plotter.shownY(), y);
        content.curves[0].values.push_back(value);
        plotter.setContent(content);
    }
    EXPECT_NE(plotter.shownY(), y);
    EXPECT_EQ(plotter.geometryShown().axes, axes);
}

TEST_F(Plot, SurvivesWhatCantBeShown) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::vector<PlotContent> contents(9, bare({1, 2, 3}));
    contents[0].curves[0].values = {1e30f, -1e30f, 3e38f};
    contents[0].yRange.reset();
    contents[1].curves[0].values = {7};
    contents[1].xRange.reset();
    contents[2].xStep = 0;
    contents[3].xStep = -infinity;
    contents[4].xRange = contents[4].yRange = PlotRange{5, 5};
    contents[5].curves[0].errors = {1};
    contents[5].curves.push_back({"other", Qt::blue, {nan, nan}, {nan, 1}, -5});
    contents[6].bands = {
        {-infinity, infinity, Qt::red, "a"}, {nan, 1, Qt::red, "b"}, {4, 3, {}, ""}};
    contents[6].lines = {{double(nan), Qt::Vertical, Qt::red, "c"},
                         {1e300, Qt::Horizontal, {}, "d"}};
    contents[7] = {};
    contents[7].bars = {{"a", Qt::red, nan, nan}, {"b", Qt::red, 1e30f, -1}};
    contents[8].xRange = {1e300, 1.1e300};
    contents[8].xStart = double(nan);
    for (size_t i = 0; i < contents.size(); ++i)
        for (const QSize size : {QSize(0, 0), QSize(1, 1), QSize(240, 160)}) {
            contents[i].note = "Nothing to show";
            plotter.resize(size);
            plotter.setContent(contents[i]);
            plotter.zoomIn();
            EXPECT_EQ(plotter.picture().size(), size);
            (void)plotter.readOutAt({120, 80});
            EXPECT_TRUE(isUsable(plotter.shownX()) && isUsable(plotter.shownY())) << i;
        }
}

TEST_F(Plot, IsSavedAsBitmap) {
    ScriptedMessages messages;
    const QTemporaryDir folder;
    plotter.setContent(bare({1, 9}));
    messages.expectFileChoice("Save Bitmap File", folder.filePath("plot.bmp"));
    plotter.slotSaveAsBMP();
    const QImage saved(folder.filePath("plot.bmp"), "BMP");
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32),
              plotter.picture().toImage().convertToFormat(QImage::Format_RGB32));
    plotter.resize(0, 0);
    messages.expectWarning("WARNING: There is no plot to save!");
    plotter.slotSaveAsBMP();
}

TEST(Plot2D, KeepsTitleAndLabelsWhenItIsEmptied) {
    Plot2DDlg dialog;
    dialog.setTitle("Event-Related Averaging Plot");
    dialog.setLabels("Time (sec)", "Response");
    dialog.setContent(bare({1, 2}));
    dialog.plotter().zoomIn();
    dialog.init();
    const PlotContent& content = dialog.plotter().content();
    EXPECT_TRUE(content.curves.empty());
    EXPECT_EQ(dialog.plotter().shownY(), wholeYRange(content));
    EXPECT_EQ(content.xLabel + "; " + content.yLabel, "Time (sec); Response");
}

} // namespace
