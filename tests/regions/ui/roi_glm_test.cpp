// The model of a region: when it can be had, its dialog, its page and its windows.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/information_browser.h"
#include "display/plots/plot_2d_dialog.h"
#include "display/plots/plotter.h"
#include "regions/ui/roi_glm_dialog.h"
#include "regions/ui/roi_glm_windows.h"
#include "run/loop/session_fixture.h"
#include "support/dialog_checks.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

namespace {

/// A run of 40 volumes with the model of one condition, a constant and two regions.
class RegionModel : public SessionFixture, protected DrivenWindow {
protected:
    RegionModel() {
        session.functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
        document = session.functionalDocument.get();
        document->project.projectPath = "results/test.fmr";
        session.listeners.documentsArrived(*document);
        session.regions.setDataFolder(path("data/"));
        WholeRunModel& model = document->wholeRunModel;
        model.studies = {{40, "test.fmr", "test.rtc"}};
        model.predictors = {{"Predictor: 1", "Faces", {}}, {"Predictor: 2", "", {}}};
        model.GLMInverse.assign(4, 1.0f);
        for (int region = 0; region < 2; ++region) {
            RegionOfInterest added;
            added.CurrentTimePoint = 39;
            for (int t = 0; t < 40; ++t)
                added.TimeCourseValues.push_back(
                    float(1000 + (t % 8 < 4 ? 0 : 5 + region) + (t * 7 % 5) + (t * t / 9 % 3)));
            document->regions.add(std::move(added));
        }
        for (int t = 0; t < 40; ++t)
            model.GLMDesign.insert(model.GLMDesign.end(), {t % 8 < 4 ? 0.0f : 1.0f, 1.0f});
        window.show();
    }
    ~RegionModel() override { session.listeners.documentsLeaving(); }

    void setLength(int n) {
        document->wholeRunModel.studies[0].dataPoints = n;
        document->wholeRunModel.GLMDesign.resize(size_t(n) * 2);
        document->regions[0].CurrentTimePoint = n - 1;
    }
    /// The page as the fit of the region gives it, with the correction.
    QByteArray expectedPage(int region) {
        ROIGLM fit;
        ROIGLM second;
        const std::vector<float>& curve = document->regions[region].TimeCourseValues;
        EXPECT_TRUE(fitROIGLM(document->wholeRunModel, curve, fit));
        EXPECT_TRUE(fitWhitenedROIGLM(document->wholeRunModel, curve, fit, second));
        return roiGLMTable(fit, &second, {"Faces", "Predictor: 2"});
    }
    QByteArray page() { return content("data/HTMLOutput/ROI_GLM_Info.html"); }
    static void deleteWhatLeft() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    ROIGLMDlg* dialog() { return window.findChild<ROIGLMDlg*>(); }

    QtCortivoDoc* document = nullptr;
};

} // namespace

TEST_F(RegionModel, SaysWhatItLacksAndDoesNothingThen) {
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"", [] {}},
        {"", [&] { setLength(30); }}, // stopped
        {"A region is modelled from 30 volumes on", [&] { setLength(29); }},
        {"The model has 40 volumes, the regions have 39",
         [&] { document->regions[0].CurrentTimePoint = 38; }},
        {"The model is of several runs, the regions are of one",
         [&] {
             document->wholeRunModel.studies = {{20, {}, {}}, {20, {}, {}}};
             document->regions[0].CurrentTimePoint = 30;
         }},
        {"The design of the model is damaged", [&] { document->wholeRunModel.GLMDesign[3] = NAN; }},
        {"There is no model of a complete run", [&] { document->wholeRunModel.release(); }},
        {"Not while a run is measured or worked on", [&] { session.phase.enter(Phase::Saving); }},
        {"Select a region first: the model is fitted to its time course",
         [&] { document->regions.clear(); }},
        {"There is no run in memory", [&] { session.listeners.documentsLeaving(); }}};
    const WholeRunDesign design = document->wholeRunModel;
    for (const auto& [hindrance, change] : cases) {
        static_cast<WholeRunDesign&>(document->wholeRunModel) = design;
        document->wholeRunModel.GLMInverse.assign(4, 1.0f);
        if (!document->regions.empty())
            document->regions[0].CurrentTimePoint = 39;
        session.phase.enter(Phase::Idle);
        change();
        EXPECT_EQ(session.regions.roiGLMHindrance(), hindrance);
        EXPECT_EQ(session.regions.computeROIGLM(0, false).has_value(), !*hindrance) << hindrance;
        openROIGLMDialog(session, window);
        EXPECT_EQ(dialog() != nullptr, !*hindrance) << hindrance;
        delete dialog();
    }
}

TEST_F(RegionModel, AFlatCurveIsWarnedOfAndHasATable) {
    document->regions[0].TimeCourseValues.assign(40, 1000.1f);
    messages.expectWarning("WARNING: overdetermined matrix or no variance in time series !");
    for (const int outside : {-1, 2})
        EXPECT_FALSE(session.regions.computeROIGLM(outside, false));
    ASSERT_TRUE(session.regions.computeROIGLM(0, false));
    EXPECT_EQ(messages.shown(), messages.shownModeless());
    EXPECT_TRUE(page().contains("<td>1</td><td> 0.000</td><td> 0.000</td><td> 0.000</td>"
                                "<td>1.000000</td>"));
}

TEST_F(RegionModel, IsChosenInADialogAndShownInTwoWindows) {
    openROIGLMDialog(session, window);
    expectExplained(*dialog());
    EXPECT_TRUE(find<QLabel>("RegionLbl").isVisible());
    EXPECT_EQ(find<QComboBox>("RegionCmBx").count(), 2);
    find<QComboBox>("RegionCmBx").setCurrentText("ROI 2");
    find<QCheckBox>("CorrectSerialCorrelationsOp").setChecked(true);
    click("OkBtn");
    deleteWhatLeft();
    EXPECT_FALSE(dialog());
    EXPECT_EQ(page(), expectedPage(1));
    auto& plot = find<Plot2DDlg>("GLMPlot");
    auto& browser = find<QTextBrowser>("InformationBrowser");
    EXPECT_TRUE(plot.isVisible() && browser.isVisible());
    EXPECT_EQ(plot.windowTitle(), "GLM - Data, Model and Residuals");
    EXPECT_EQ(browser.window()->windowTitle(), "ROI Time Course - GLM Results");
    EXPECT_TRUE(browser.toPlainText().contains("After Correction of Serial Correlations"));
    expectExplained(*window.findChild<InformationBrowserDlg*>());

    // The next fit is shown in the same windows.
    document->regions.clear();
    document->regions.add({}).TimeCourseValues.assign(40, 0.0f);
    for (size_t t = 20; t < 40; ++t)
        document->regions[0].TimeCourseValues[t] = 1.0f + float(t % 3);
    document->regions[0].CurrentTimePoint = 39;
    openROIGLMDialog(session, window);
    EXPECT_FALSE(find<QLabel>("RegionLbl").isVisible());
    click("OkBtn");
    EXPECT_FALSE(browser.toPlainText().contains("After Correction"));
    EXPECT_EQ(plot.plotter().content().title, "test · ROI 1");
    EXPECT_EQ(window.findChildren<Plot2DDlg*>().size(), 1);
    click("CloseBtn");
    EXPECT_FALSE(browser.isVisible());
}

TEST_F(RegionModel, APageThatCannotBeWrittenOpensNoWindow) {
    put("data", "a file where the folder should be");
    openROIGLMDialog(session, window);
    messages.expectWarning("ERROR: Can not save HTML table file - Write protection ?");
    click("OkBtn");
    EXPECT_FALSE(window.findChild<Plot2DDlg*>() || window.findChild<QTextBrowser*>());
}

TEST_F(RegionModel, TheDialogClosesWithItsRegions) {
    const std::function<void()> changes[] = {[&] { session.listeners.regionsChanged(*document); },
                                             [&] { session.listeners.settingsFileChanged(); },
                                             [&] { session.listeners.documentsLeaving(); }};
    for (const std::function<void()>& change : changes) {
        openROIGLMDialog(session, window);
        ASSERT_TRUE(dialog());
        change();
        EXPECT_FALSE(dialog()->isVisible());
        deleteWhatLeft();
        EXPECT_FALSE(dialog());
    }
}

TEST_F(RegionModel, ThePlotHasTheCurvesOfTheLastTable) {
    RegionGLM model = *session.regions.computeROIGLM(0, false);
    model.fit.data = {10, 12, 14};
    model.fit.model = {11, 12, 13};
    model.fit.residuals = {-1, 0, 1};
    const PlotContent content = regionGLMContent(model, "test");
    EXPECT_EQ(content.xLabel, "Time");
    EXPECT_EQ(content.xStart, 1.0);
    const std::pair<const char*, std::vector<float>> curves[] = {
        {"Data", {10, 12, 14}}, {"Model", {11, 12, 13}}, {"Residuals", {11, 12, 13}}};
    ASSERT_EQ(content.curves.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(content.curves[i].legend, curves[i].first);
        EXPECT_EQ(content.curves[i].values, curves[i].second);
    }
    model.whitened = model.fit;
    model.whitened->data = {3, 4};
    model.whitened->whitenedBy = 0.25;
    const PlotContent whitened = regionGLMContent(model, "test");
    EXPECT_EQ(whitened.xStart, 2.0);
    EXPECT_EQ(whitened.curves[0].values, (std::vector<float>{3, 4}));
    EXPECT_EQ(whitened.title, "test · whitened with AR(1) = 0.250");
}
