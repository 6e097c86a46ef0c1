// The motion plot, by the object names of its parts.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/ui/motion_plot_dialog.h"

#include "display/plots/plotter.h"
#include "run/loop/session_fixture.h"
#include "volume/head_volume.h"

#include <QLabel>
#include <QTest>
#include <cmath>

namespace {

constexpr double arcOfDegree = 0.8726646; // millimetres at a radius of 50 mm

class MotionPlot : public SessionFixture {
protected:
    /// 6 volumes, 4 of which are measured: the signal rises by 10 from 100, Y moves by 0.6 mm at
    /// volume 2 (from 0), and Z turns by half a degree at volume 3.
    void makeRun(int size = 4) {
        session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        FMRProject& project = document().project;
        project.ResolutionX = project.ResolutionY = size;
        project.NrOfSlices = size;
        project.NrOfVolumes = 6;
        ASSERT_TRUE(project.allocateVolumes());
        for (int v = 0; v < 4; ++v)
            std::ranges::fill(project.volumes[size_t(v)], int16_t(100 + 10 * v));
        document().mask.voxels.assign(project.volumes.samplesOfEach(), 1);
        ASSERT_TRUE(document().motion.allocateMotionParameters(6));
        auto& parameters = document().motion.motionParameters;
        parameters[1][2] = parameters[1][3] = 0.6f;
        parameters[5][3] = 0.5f;
        session.report.currentVolume = 3;
    }
    QtCortivoDoc& document() { return *session.functionalDocument; }
    MotionPlotDlg& dialog() { return *window.findChild<MotionPlotDlg*>("MotionPlot"); }
    const PlotContent& plot(const char* name) {
        return dialog().findChild<Plotter*>(name)->content();
    }
    /// The first curve; its first value says whether it exists.
    std::vector<float> course(const char* name, size_t curve = 0) {
        return plot(name).curves.at(curve).values;
    }
    std::string textOf(const char* label) {
        return dialog().findChild<QLabel*>(label)->text().toStdString();
    }
    void passVolume(int volume) {
        session.report.currentVolume = volume;
        EXPECT_TRUE(session.listeners.atStep(VolumeStep::Plots, {document(), volume}));
    }

    QWidget window;
};

} // namespace

TEST_F(MotionPlot, ShowsWhatIsMeasuredAndItsLatestNumbers) {
    makeRun();
    document().protocol.conditionIndex("Faces");
    ASSERT_TRUE(document().protocol.addInterval(0, 2, 3));
    openMotionPlot(session, window);
    EXPECT_EQ(dialog().windowTitle(), "Motion Plot");
    EXPECT_FALSE(dialog().isModal());
    EXPECT_EQ(course("TranslationPlot", 1), (std::vector<float>{0, 0, 0.6f, 0.6f}));
    EXPECT_EQ(course("RotationPlot", 2), (std::vector<float>{0, 0, 0, 0.5f}));
    for (const char* name : {"TranslationPlot", "RotationPlot", "DisplacementPlot", "DVARSPlot"}) {
        EXPECT_EQ(plot(name).lines.at(0).at, 4.0) << name;
        EXPECT_EQ(plot(name).xRange, (PlotRange{0.5, 6.5})) << name;
        ASSERT_EQ(plot(name).bands.size(), 1U) << name;
        EXPECT_EQ(plot(name).bands[0].from, 1.5) << name;
    }
    const std::vector<float> displacement = course("DisplacementPlot");
    EXPECT_TRUE(std::isnan(displacement.at(0)));
    EXPECT_NEAR(displacement.at(2), 0.6, 1e-6);
    EXPECT_NEAR(displacement.at(3), 0.5 * arcOfDegree, 1e-6);
    EXPECT_EQ(plot("DisplacementPlot").lines.at(1).at, 0.5);
    EXPECT_NEAR(course("DVARSPlot").at(3), 1000.0 / 120, 1e-5);
    EXPECT_EQ(textOf("MotionReadOutLbl"),
              "Volume     4   Translation  X  0.00  Y  0.60  Z  0.00 mm\n"
              "Rotation  X  0.00  Y  0.00  Z  0.50 deg   DVARS  8.33 %\n"
              "Framewise displacement  0.44 mm   Volumes above 0.5 mm:     1");
}

TEST_F(MotionPlot, FollowsTheRunOnlyWhileItIsShown) {
    openMotionPlot(session, window);
    EXPECT_EQ(plot("DVARSPlot").note, "No run yet");
    makeRun();
    session.settings.MotionCorrection = true;
    session.settings.IntraSessionMotionCorrection = true;
    session.report.currentVolume = 0;
    session.listeners.runPrepared(document());
    session.phase.enter(Phase::Recording);
    passVolume(1);
    EXPECT_TRUE(std::isnan(course("DisplacementPlot").at(1))) << "volume 0 is not aligned";
    dialog().hide();
    passVolume(3);
    EXPECT_EQ(course("DVARSPlot").size(), 2U);
    // Another settings file takes the report, not the run.
    session.report.currentVolume = -1;
    session.settings.IntraSessionMotionCorrection = false;
    openMotionPlot(session, window);
    EXPECT_EQ(window.findChildren<MotionPlotDlg*>().size(), 1);
    EXPECT_EQ(course("DVARSPlot").size(), 4U);
    EXPECT_TRUE(std::isnan(course("DisplacementPlot").at(1)));

    // Values are kept during a run; in an idle session the samples may have been post-processed.
    std::ranges::fill(document().project.volumes[3], int16_t(120));
    openMotionPlot(session, window);
    EXPECT_GT(course("DVARSPlot").at(3), 1.0f);
    session.phase.enter(Phase::Idle);
    openMotionPlot(session, window);
    EXPECT_EQ(course("DVARSPlot").at(3), 0.0f);
    session.listeners.documentsLeaving();
    EXPECT_TRUE(course("DVARSPlot").empty());
    EXPECT_EQ(plot("TranslationPlot").note, "No run yet");
}

TEST_F(MotionPlot, MissingValuesOfALargeRunComeInStepsAndNotWhileVolumesChange) {
    makeRun(180); // 5.8 million voxels, two volumes in a step
    openMotionPlot(session, window);
    EXPECT_EQ(course("DVARSPlot").size(), 2U);
    session.phase.enter(Phase::PostProcessing);
    QTest::qWait(1);
    EXPECT_EQ(course("DVARSPlot").size(), 2U);
    session.phase.enter(Phase::Idle);
    openMotionPlot(session, window);
    EXPECT_TRUE(QTest::qWaitFor([this] { return course("DVARSPlot").size() == 4; }));
    EXPECT_NEAR(course("DVARSPlot").at(3), 1000.0 / 120, 1e-4);
}

TEST_F(MotionPlot, ShowsAtOnceWhatPostProcessingCorrects) {
    writeSession(14, 2,
                 {{"MatrixSizeX:", "16"},
                  {"MatrixSizeY:", "16"},
                  {"MosaicResolutionX:", "48"},
                  {"MosaicResolutionY:", "48"},
                  {"NrOfSlices:", "6"}});
    script.atVolume = [this](int v) {
        FMRProject& project = document().project;
        HeadVolume(VolumeGrid(project))
            .fill({0.1f * float(v)}, 5.0, unsigned(v), project.volumes[size_t(v)]);
    };
    openMotionPlot(session, window);
    session.runButtonPressed();
    const float before = course("DVARSPlot").at(5);
    PostprocessingOptions options;
    options.motion = {.checked = true, .method = MotionMethod::LeastSquares};
    Reporter progress;
    ASSERT_TRUE(session.postprocess(options, false, progress));
    EXPECT_TRUE(QTest::qWaitFor([&] { return course("DVARSPlot").size() == 12; }));
    EXPECT_NE(course("DVARSPlot").at(5), before);
    EXPECT_EQ(course("TranslationPlot").size(), 12U);
    EXPECT_EQ(plot("TranslationPlot").note, "From the second volume on");
    EXPECT_GT(course("DisplacementPlot").at(1), 0.0f);
}

TEST_F(MotionPlot, HasWhatEachVolumeGaveAsSoonAsItIsDoneAndAfterAReload) {
    writeSession(14, 2, {{"MotionCorrection:", "0"}});
    openMotionPlot(session, window);
    EXPECT_FALSE(plot("TimingPlot").note.isEmpty());
    ProbeListener plugin(session.listeners, ListenerPlace::PlugIn);
    ProbeListener later(session.listeners, ListenerPlace::Dialogs);
    script.millisecondsPerVolume = 300;
    plugin.onBeforeVolume = [this](int volume) {
        pump.pumpWait(volume == 5 ? 9000 : 100);
        return true;
    };
    later.onEndOfVolume = [this](int volume) {
        // At volume 0 the mask is made after the plots.
        EXPECT_EQ(course("DVARSPlot").size(), volume == 0 ? 0U : size_t(volume + 1));
        EXPECT_EQ(course("TimingPlot").size(), size_t(volume + 1));
        EXPECT_EQ(plot("TimingPlot").yRange->to, volume < 5 ? 2500.0 : 6000.0) << "the TR is in it";
    };
    session.runButtonPressed();
    const std::vector<float> live = course("DVARSPlot");
    ASSERT_EQ(live.size(), 12U);
    EXPECT_GT(live[11], 0.0f);
    EXPECT_EQ(plot("TranslationPlot").note, "This run is without motion correction");
    EXPECT_TRUE(course("TranslationPlot").empty());
    const PlotContent& strip = plot("TimingPlot");
    ASSERT_TRUE(strip.stacked);
    EXPECT_EQ(strip.xRange, (PlotRange{0.5, 12.5}));
    float sum = 0.0f;
    for (const PlotCurve& curve : strip.curves) {
        sum += curve.values.at(5);
        if (curve.legend == "Reading" || curve.legend == "Plug-in") {
            EXPECT_EQ(curve.values.at(5), curve.legend == "Reading" ? 300.0f : 9000.0f);
        }
    }
    EXPECT_EQ(sum, 9300.0f) << "nothing else took time, and nothing is left out";
    EXPECT_EQ(strip.lines.at(1).at, 2000.0);
    EXPECT_EQ(textOf("TimingReadOutLbl"),
              "Needed   400 ms, 300 ms of it for reading; in time by  1600 ms\n"
              "Volumes above 3/4 of the TR:    1");

    ASSERT_TRUE(session.reloadData());
    const std::vector<float> reloaded = course("DVARSPlot");
    ASSERT_EQ(reloaded.size(), 12U);
    EXPECT_TRUE(std::equal(live.begin() + 1, live.end(), reloaded.begin() + 1));
    EXPECT_TRUE(plot("TimingPlot").curves.empty()) << "files have no times";
    EXPECT_EQ(textOf("TimingReadOutLbl"), "");
}
