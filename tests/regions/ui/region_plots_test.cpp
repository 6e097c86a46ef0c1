// The plots of regions: what they show, and how the container arranges them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plotter.h"
#include "regions/ui/averaging_plot_dialog.h"
#include "regions/ui/session_region.h"
#include "regions/ui/time_course_plot_dialog.h"
#include "regions/ui/time_courses_container.h"
#include "run/loop/multi_run_fixture.h"

#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <numeric>

namespace {

/// 60 volumes of 2000 ms, the first 40 of which are measured; two conditions and a baseline.
class RegionPlots : public SessionFixture {
protected:
    RegionPlots() {
        session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        document = session.functionalDocument.get();
        document->project.TR = 2000;
        for (const auto& [name, first] : {std::pair("Rest", 1), {"Faces", 6}, {"Houses", 16}}) {
            const int index = document->protocol.conditionIndex(name);
            for (int from = first; from <= 50; from += 20)
                EXPECT_TRUE(document->protocol.addInterval(index, from, from + 4));
        }
        DesignMatrix& design = document->design;
        design.PredictorNames = {"Faces", "Houses", "Constant"};
        design.PredictorColors = {{255, 80, 60}, {60, 160, 255}, {255, 255, 255}};
        design.NrOfConditionPredictors = 2;
        design.NrOfConfoundPredictors = 1;
        session.report.currentVolume = 39;
        (new QVBoxLayout(&window))->addWidget(&container);
        window.resize(900, 600);
        window.show();
    }

    void fitModel(RegionOfInterest& region) {
        region.predictorsInFit = 3;
        region.ROIBetas = {1.5f, -0.5f, 1000.0f};
        region.BetaCovariance = {0.25, 0, 0, 0, 0.09, 0, 0, 0, 1};
        region.residualVariance = 100.0f;
    }
    /// The signal of each is 1000 * its number, and 2 % more at the volumes from 6 to 11, 26 to 31.
    void addRegions(int count) {
        for (; count > 0; --count) {
            RegionOfInterest region;
            const int number = document->regions.count() + 1;
            for (int x = 0; x < 30 + number; ++x)
                region.voxels.append(x, 5, 8);
            region.CurrentTimePoint = 39;
            for (int v = 0; v < 60; ++v) {
                const float signal = v % 20 >= 6 && v % 20 < 12 ? 1020.0f : 1000.0f;
                region.TimeCourseValues.push_back(float(number) * signal + float(v * 7 % 5));
            }
            document->regions.add(std::move(region));
        }
        session.listeners.regionsChanged(*document);
    }
    void passVolume() { EXPECT_TRUE(session.listeners.atStep(VolumeStep::Plots, {*document, 39})); }

    template<typename Widget> Widget* find(const QString& name) {
        auto* found = container.findChild<Widget*>(name);
        EXPECT_TRUE(found) << name.toStdString();
        return found;
    }
    const PlotContent& contentOf(const QString& plot) {
        return find<QWidget>(plot)->findChild<Plotter*>()->content();
    }
    QStringList visible() {
        QStringList names;
        for (const char* kind : {"TimeCourse%1", "BetaPlot%1"})
            for (int i = 1; i <= 6; ++i) {
                const auto* plot = container.findChild<QWidget*>(QString(kind).arg(i));
                if (plot && plot->isVisible())
                    names << plot->objectName();
            }
        return names;
    }
    void removeRegions() {
        document->regions.clear();
        session.listeners.regionsChanged(*document);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    AveragingPlotDlg* averages() { return container.findChild<AveragingPlotDlg*>(); }

    QtCortivoDoc* document = nullptr;
    QWidget window;
    TimeCoursesContainer container{session, &window};
};

TEST_F(RegionPlots, HeadingsSayWhatARegionIs) {
    addRegions(2);
    RegionOfInterest& region = document->regions[1];
    region.voxels.append(1, 1, 9);
    region.TimeCourseValues.assign(60, 0.0f);
    for (size_t v = 0; v < 40; v += 2)
        region.TimeCourseValues[v] = 2.0f; // mean 1, variance 40 / 39
    EXPECT_EQ(regionHeading(*regionOfSession(session, 1)),
              "ROI 2 · 33 voxels · slices 9-10 · tSNR 1.0");
    session.requests.regions.BestVoxelSelection = true;
    region.TopVoxelRatio = 0.1f;
    region.SortedVoxelList = std::vector<int>(33, 0);
    region.CurrentTimePoint = 0;
    EXPECT_EQ(regionHeading(*regionOfSession(session, 1)), "ROI 2 · 3 of 33 voxels · slices 9-10");
    EXPECT_FALSE(regionOfSession(session, 2));
}

TEST_F(RegionPlots, HeadingsLeaveOutWhatHasNoRoom) {
    addRegions(1);
    auto* label = find<QLabel>("RegionInfoLbl");
    const QString whole = label->text();
    EXPECT_TRUE(whole.startsWith("ROI 1 · 31 voxels · slice 9 · tSNR ")) << whole.toStdString();
    for (const QString& text : {QString(whole).remove(" · slice 9"), QString("ROI 1")}) {
        label->resize(label->fontMetrics().horizontalAdvance(text) + 1, label->height());
        document->regions[0].voxels.append(1, 1, 8); // another heading
        passVolume();
        EXPECT_EQ(label->text().count("·"), text.count("·"));
        EXPECT_EQ(label->text().contains("tSNR"), text.contains("tSNR"));
    }
}

TEST_F(RegionPlots, CurvesStandOnTheProtocol) {
    addRegions(1);
    const PlotContent& content = contentOf("TimeCourse1");
    ASSERT_EQ(content.curves.size(), 1u);
    EXPECT_EQ(content.curves[0].values.size(), 40u);
    EXPECT_EQ(content.curves[0].values[6], 1022.0f);
    EXPECT_EQ(content.xStart, 1.0);
    EXPECT_EQ(content.xRange, (PlotRange{0.5, 60.5}));
    EXPECT_EQ(content.lines.at(0).at, 40.0);
    EXPECT_EQ(content.lines.at(0).text, "1003.0");
    ASSERT_EQ(content.bands.size(), 8u);
    EXPECT_EQ(content.bands[3].name, "Faces");
    EXPECT_EQ(content.bands[3].from, 5.5);
    EXPECT_EQ(content.bands[3].to, 10.5);

    // The same in milliseconds; a condition that arrives is there at the next volume.
    document->protocol.resolutionOfTime = ResolutionOfTime::Milliseconds;
    document->protocol.conditions[1].from[0] = 10000;
    document->protocol.conditions[1].to[0] = 19999;
    document->protocol.conditions.push_back(document->protocol.conditions[1]);
    session.report.interruptedAtVolume = 29;
    passVolume();
    EXPECT_EQ(content.curves[0].values.size(), 30u);
    EXPECT_EQ(content.bands[3].to, 10.5);
    EXPECT_EQ(content.bands.size(), 11u);
}

TEST_F(RegionPlots, OptionsOfATimeCourse) {
    addRegions(1);
    const PlotContent& content = contentOf("TimeCourse1");
    auto* plot = find<TimeCoursePlotDlg>("TimeCourse1");
    auto* row = find<QWidget>("PlotOptions");
    auto* button = find<QToolButton>("ShowOptionsBtn");
    plot->slotToggleOptions();
    EXPECT_TRUE(row->isVisible() && button->isChecked());
    button->click();
    EXPECT_FALSE(row->isVisible());
    const auto trigger = [&](const char* name) { plot->findChild<QAction*>(name)->trigger(); };
    trigger("GridOp");
    trigger("ProtocolOp");
    trigger("LegendOp");
    EXPECT_FALSE(content.gridShown || content.legendShown);
    EXPECT_TRUE(content.bands.empty());
    trigger("PercentOp");
    EXPECT_EQ(content.lines.at(0).text, "-0.50");
    EXPECT_EQ(content.yLabel, "% signal change");
    EXPECT_NEAR(double(content.curves[0].values[6]), 100 * (1022.0 / 1008.0 - 1), 1e-3);
    const std::vector<float> before = content.curves[0].values;
    container.setDetrended(true);
    EXPECT_NE(content.curves[0].values, before);

    auto* plotter = plot->findChild<Plotter*>();
    plotter->zoomIn();
    plot->clearPlot();
    plot->refresh();
    EXPECT_EQ(plotter->shownX(), *content.xRange) << "the zoom of another region";
    plot->clearPlot();
    EXPECT_TRUE(content.curves.empty());
    session.settings.ParadigmHelpFile = "/nowhere.html";
    messages.expectWarning("WARNING: Unable to open help file \"/nowhere.html\"!");
    trigger("HelpAction");
}

// A menu with an event loop of its own would hold up a run.
TEST_F(RegionPlots, OptionsWithoutRoomOpenBesideARun) {
    window.resize(300, 300);
    addRegions(3);
    find<TimeCoursePlotDlg>("TimeCourse1")->slotToggleOptions();
    QCoreApplication::processEvents();
    QTimer::singleShot(0, [] {
        if (QWidget* menu = QApplication::activePopupWidget())
            menu->close();
    });
    QTest::mouseClick(find<QToolButton>("qt_toolbar_ext_button"), Qt::LeftButton);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->actions().contains(find<QAction>("HelpAction")));
    menu->close();
}

TEST_F(RegionPlots, BetasAreBarsWithStandardErrors) {
    addRegions(2);
    const PlotContent& content = contentOf("BetaPlot1");
    EXPECT_EQ(content.note, "No model yet");
    fitModel(document->regions[0]);
    passVolume();
    ASSERT_EQ(content.bars.size(), 2u);
    EXPECT_EQ(content.yLabel, "Beta (%)");
    EXPECT_EQ(content.bars[0].name, "Faces");
    EXPECT_EQ(content.bars[1].value, -0.5f);
    EXPECT_FLOAT_EQ(content.bars[0].error, 0.5f); // sqrt(0.25 * 100) / 1000 * 100
    document->regions[0].ROIBetas[2] = 0.01f;     // too small to be a baseline
    passVolume();
    EXPECT_FLOAT_EQ(content.bars[1].error, 3.0f);
}

TEST_F(RegionPlots, FixedPlotsAreKeptAndFurtherRegionsFloat) {
    addRegions(2);
    EXPECT_EQ(visible().join(' '), "TimeCourse1 TimeCourse2 BetaPlot1 BetaPlot2");
    const QWidget* first = find<QWidget>("TimeCourse1");
    addRegions(3);
    EXPECT_EQ(visible().size(), 10);
    // The third colour, (40, 30, 255), is too dark for the ground of a plot.
    EXPECT_EQ(contentOf("TimeCourse3").curves[0].color, QColor(88, 80, 255));
    auto* fourth = find<QWidget>("RegionSlot4");
    EXPECT_TRUE(fourth->isWindow());
    EXPECT_EQ(fourth->windowTitle(), "ROI Signal Time Course");

    // Closing a window leaves its region, which is shown again on demand.
    fourth->close();
    passVolume();
    EXPECT_EQ(visible().size(), 8);
    container.showContainer();
    EXPECT_EQ(visible().size(), 10);

    removeRegions();
    EXPECT_FALSE(container.findChild<QWidget*>("TimeCourse4"));
    EXPECT_TRUE(find<QWidget>("NoRegionsLbl")->isVisible());
    addRegions(1);
    EXPECT_EQ(find<QWidget>("TimeCourse1"), first);
    session.listeners.settingsFileChanged();
    EXPECT_TRUE(visible().isEmpty());
    session.listeners.playedRunStays(*document);
    EXPECT_EQ(visible().size(), 2);
    session.listeners.documentsLeaving();
    session.functionalDocument.reset();
    EXPECT_TRUE(visible().isEmpty() && contentOf("TimeCourse1").curves.empty());
}

TEST_F(RegionPlots, HiddenPlotsTakeTheLatestWhenTheyAreShown) {
    addRegions(4);
    find<QWidget>("RegionSlot4")->close();
    container.onShowOnlyTCs();
    fitModel(document->regions[0]);
    for (int i = 0; i < 4; ++i)
        document->regions[i].CurrentTimePoint = 20;
    passVolume();
    EXPECT_EQ(contentOf("TimeCourse1").curves[0].values.size(), 21u);
    EXPECT_EQ(contentOf("TimeCourse4").curves[0].values.size(), 40u);
    EXPECT_TRUE(contentOf("BetaPlot1").bars.empty());
    container.onShowOnlyBetas();
    EXPECT_EQ(contentOf("BetaPlot1").bars.size(), 2u);
    container.showContainer();
    container.onShowTCsAndBetas();
    EXPECT_EQ(contentOf("TimeCourse4").curves[0].values.size(), 21u);
}

TEST_F(RegionPlots, RowsAndButtonsArrangeThePlots) {
    addRegions(3);
    const auto place = [&](int slot) {
        QCoreApplication::processEvents();
        return find<QWidget>(QString("RegionSlot%1").arg(slot))->pos();
    };
    const auto sameRow = [&](int a, int b) { return place(a).y() == place(b).y(); };
    auto* rows = find<QSpinBox>("NrOfRowsSpBx");
    EXPECT_TRUE(sameRow(1, 2) && sameRow(2, 3));
    rows->setValue(2);
    EXPECT_TRUE(sameRow(1, 2) && !sameRow(2, 3));
    container.onNrOfRowsChanged(3);
    EXPECT_EQ(rows->value(), 3);
    EXPECT_TRUE(!sameRow(1, 2) && place(1).x() == place(3).x());
    for (const auto& [button, plots] :
         {std::pair("ShowTCsBtn", "TimeCourse1 TimeCourse2 TimeCourse3"),
          {"ShowBetasBtn", "BetaPlot1 BetaPlot2 BetaPlot3"},
          {"ShowBothBtn", "TimeCourse1 TimeCourse2 TimeCourse3 BetaPlot1 BetaPlot2 BetaPlot3"}}) {
        find<QToolButton>(button)->click();
        EXPECT_EQ(visible().join(' '), plots);
    }
    container.onShowOnlyBetas();
    EXPECT_TRUE(find<QToolButton>("ShowBetasBtn")->isChecked());
    window.resize(716, 210);
    EXPECT_EQ(window.width(), 716) << "three regions fit below the slices";
}

TEST_F(RegionPlots, RangesAreOwnOrCommon) {
    addRegions(2);
    for (int i = 0; i < 2; ++i)
        fitModel(document->regions[i]);
    passVolume();
    find<QToolButton>("OptionsBtn")->click();
    auto* minimum = find<QDoubleSpinBox>("MinValueSpBx");
    auto* maximum = find<QDoubleSpinBox>("MaxValueSpBx");
    EXPECT_FALSE(minimum->isEnabled() || contentOf("BetaPlot1").yRange);
    find<QRadioButton>("CommonBetaScalingOp")->click();
    maximum->setValue(5.0);
    minimum->setValue(-4.0);
    EXPECT_EQ(contentOf("BetaPlot2").yRange, (PlotRange{-4.0, 5.0}));
    minimum->setValue(6.0);
    EXPECT_EQ(contentOf("BetaPlot1").yRange, (PlotRange{6.0, 6.1}));
    container.onChangeMaxValSpBx(2.0);
    EXPECT_EQ(contentOf("BetaPlot1").yRange, (PlotRange{1.9, 2.0}));
    find<QRadioButton>("IndividualBetaScalingOp")->click();
    EXPECT_FALSE(contentOf("BetaPlot1").yRange);
    find<QRadioButton>("CommonTCScalingOp")->click();
    EXPECT_EQ(contentOf("TimeCourse1").yRange, (PlotRange{1000.0, 2200.0})); // of 1000 to 2044
    // In another unit a plot doesn't share the range.
    find<TimeCoursePlotDlg>("TimeCourse2")->findChild<QAction*>("PercentOp")->trigger();
    EXPECT_LT(contentOf("TimeCourse1").yRange->to, 1100.0);
    EXPECT_LT(contentOf("TimeCourse2").yRange->to, 10.0);
    find<QRadioButton>("IndividualTCScalingOp")->click();
    EXPECT_FALSE(contentOf("TimeCourse1").yRange);
}

TEST_F(RegionPlots, AveragesFollowTheRun) {
    EXPECT_FALSE(find<QToolButton>("AverageBtn")->isEnabled());
    addRegions(2);
    find<QToolButton>("AverageBtn")->click();
    ASSERT_TRUE(averages());
    const PlotContent& content = averages()->findChild<Plotter*>()->content();
    EXPECT_EQ(content.xLabel, "Time (scans)");
    EXPECT_EQ(content.yLabel, "fMRI response (% BOLD signal)");
    EXPECT_EQ(content.xStart, -2.0);
    ASSERT_EQ(content.curves.size(), 2u); // not that of "Rest"
    ASSERT_EQ(content.curves[0].errors.size(), 13u);
    const float percent = content.curves[0].values[4];

    find<QComboBox>("AveragedRegionCmBx")->setCurrentIndex(0);
    ASSERT_EQ(content.curves.size(), 4u);
    EXPECT_EQ(content.curves[3].legend, "ROI 2 Houses");
    find<QCheckBox>("AveragePercentOp")->click();
    EXPECT_EQ(content.yLabel, "fMRI response (arbitrary units)");
    EXPECT_NEAR(double(content.curves[0].values[4] / percent), 10.0, 0.1);
    find<QSpinBox>("BeforeOnsetSpBx")->setValue(3);
    find<QSpinBox>("AfterOnsetSpBx")->setValue(40);
    ASSERT_EQ(content.curves[0].values.size(), 44u);
    EXPECT_TRUE(std::isnan(content.curves[0].values[43])) << "no trial reaches so far";
    for (const auto& [axis, label, start] :
         {std::tuple(1, "Time (sec)", -6.0), {2, "Time (2000 msec)", -3.0}}) {
        find<QComboBox>("TimeAxisCmBx")->setCurrentIndex(axis);
        EXPECT_EQ(content.xLabel, label);
        EXPECT_EQ(content.xStart, start);
    }
    find<QSpinBox>("BaselineFromSpBx")->setValue(2);
    const float own = content.curves[0].values[0];
    container.setEpochBased(false);
    EXPECT_NE(content.curves[0].values[0], own);
    for (int i = 0; i < 2; ++i)
        document->regions[i].CurrentTimePoint = 3;
    passVolume();
    EXPECT_EQ(content.note, "No trial yet");
    removeRegions();
    EXPECT_FALSE(averages());
}

TEST_F(RegionPlots, AveragesThatCanNotBeDrawn) {
    addRegions(1);
    messages.expectWarning("INTERNAL ERROR: Plot dialog not available!");
    find<TimeCoursePlotDlg>("TimeCourse1")->drawAverages();
    find<QToolButton>("AverageBtn")->click();
    ASSERT_TRUE(averages());
    ProtocolCondition full = document->protocol.conditions[1];
    full.nrOfIntervals = ProtocolCondition::maximumIntervals;
    full.from.fill(10);
    full.to.fill(12);
    for (int i = 0; i < 7; ++i)
        document->protocol.conditions.push_back(full);
    messages.expectWarning("ERROR: Too many trigger points!");
    passVolume();
    passVolume(); // no second message
    EXPECT_FALSE(averages()->isVisible());
    EXPECT_EQ(messages.shownModeless().size(), 2);
}

// Regions come and go while the run pumps events.
TEST_F(SessionFixture, PlotsFollowARun) {
    writeSession(30, 0);
    TimeCoursesContainer container(session, nullptr);
    std::vector<size_t> lengths;
    script.atVolume = [&](int volume) {
        if (volume == 5) {
            EXPECT_TRUE(session.regions.selectRectangle({1, 2, 5, 2, 5}));
        }
        if (volume == 25)
            session.regions.removeAll();
    };
    ProbeListener probe(session.listeners, ListenerPlace::Logs);
    probe.onStep = [&](VolumeStep step, const VolumeAtHand&) {
        const auto* plot = container.findChild<QWidget*>("TimeCourse1");
        if (step == VolumeStep::Plots && plot->isVisible())
            lengths.push_back(plot->findChild<Plotter*>()->content().curves[0].values.size());
        return true;
    };
    session.runButtonPressed();
    std::vector<size_t> expected(20);
    std::iota(expected.begin(), expected.end(), 6);
    EXPECT_EQ(lengths, expected);
}

} // namespace

TEST_F(MultiRunFixture, AScrollBarChoosesTheRunOfAPlotOfAProject) {
    TimeCoursesContainer container(session, nullptr);
    QObject::connect(&container, &TimeCoursesContainer::runChosen, &container,
                     [this](int slot, int value) { session.multiRun.showRun(slot, value); });
    auto& bar = *container.findChild<QScrollBar*>("MultiRunTC2ScrollBar");
    ASSERT_TRUE(analysed());
    ASSERT_TRUE(session.regions.selectRectangle(drag));
    EXPECT_TRUE(bar.isHidden()) << "there is one region";
    ASSERT_TRUE(session.regions.selectRectangle(drag));
    container.showContainer();
    EXPECT_TRUE(bar.isVisible());
    auto& plot = *container.findChild<TimeCoursePlotDlg*>("TimeCourse2");
    EXPECT_EQ(plot.visibleCurve().size(), 40U);
    bar.setValue(-1);
    EXPECT_EQ(bar.value(), 2) << "it wraps";
    bar.setValue(1);
    EXPECT_EQ(container.findChild<QLineEdit*>("MultiRunTC2")->text(), "two.fmr");
    EXPECT_EQ(plot.visibleCurve().size(), 30U);
    EXPECT_EQ(timingOfRegion(session, 1).protocol.conditions[2].name, "Tools");
    EXPECT_EQ(timingOfRegion(session, 0).protocol.conditions[2].name, "Houses");
    session.changeSettingsFile(path("one.vco"));
    EXPECT_TRUE(bar.isHidden());
}
