// The names by which operators, scripts and other parts know the window, its menus and its plots.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/matrix_plotter.h"
#include "display/plots/matrix_plotter_dialog.h"
#include "display/plots/plot_2d_dialog.h"
#include "display/plots/plotter.h"
#include "display/qt_cortivo_view.h"
#include "regions/ui/time_course_plot_dialog.h"
#include "run/window/main_window.h"

#include <QMetaMethod>
#include <QSet>

namespace {

// A class, and the widgets of it.
const std::pair<const char*, const char*> widgets[] = {
    {"QToolButton",
     "RecordBtn ToBeginBtn ToEndBtn ReloadDataBtn EPISlicesBtn EPISlices3DBtn VMRBtn "
     "LeftHemiBtn RightHemiBtn"},
    {"QPushButton", "AutoAdvanceRunBtn AutoStartRunBtn"},
    {"QFrame", "ImageView InputPanelFrm MenuBarFrm"},
    {"QTextBrowser", "LogInfos"},
    {"QDoubleSpinBox", "ThresholdSpBx ColorMaxThresholdSpBx"},
    {"QSpinBox", "ClusterSizeSpBx MultiSliceROISelectionSpBx"},
    {"QTreeWidget", "ContrastList"},
    {"QCheckBox", "ConjunctionOfContrastsOp TogglePluginMapsOp"},
    {"QLineEdit", "MultiRunTC1 MultiRunTC2 MultiRunTC3"},
    {"QScrollBar", "MultiRunTC1ScrollBar MultiRunTC2ScrollBar MultiRunTC3ScrollBar"},
    {"QGroupBox", "ContrastBackgroundGrpBx"},
    {"TimeCoursesContainer", "TimeCoursesContainer"},
    {"TimeCoursePlotDlg", "TimeCourse1 TimeCourse2 TimeCourse3"},
    {"QWidget", "BetaPlot1 BetaPlot2 BetaPlot3"}};

struct Slots {
    const QMetaObject& object;
    const char* names;
};

// clang-format off
const Slots slotsOfClasses[] = {
    {VeloCortivo::staticMetaObject,
     "slotSetVCOSettingsFile slotEditVCOSettingsFile slotEditMasterVCOFileSettings slotRenameDICOMFiles "
     "slotVMR2VMRCoregistration slotClose slotExitVCO slotSwitchToSignificanceColorCoding "
     "slotSwitchToMultiMapColorCoding slotSwitchAveragingType slotStimulationProtocol onOfflineSVMDlg onRFEDlg "
     "onRealTimeSVMClassification slotPostProcessData slotShowNeurofeedbackDlg slotShowBOLDDecoder "
     "slotSwitchToFMRView slotSwitchToEPI3DView slotSwitchToVMRView slotSwitchToSurfaceView slotShowOnEPIs "
     "slotShowOnCurrentEPIs slotShowOnInplanes onShowROIsAsRectangles onShowROIsAsMarkedVoxels "
     "onShowROIsAsRectanglesAndMarkedVoxels onShowTimeCoursesContainer slotRemoveROITimeCoursePlots "
     "onToggleROITimeCoursesDetrended slotShowLicenseInfoDlg slotShowAboutDlg slotRealTimeAnalysis slotReloadData "
     "slotToNextRecording slotToPreviousRecording slotSaveAsBMP slotShowHelpHTML slotShowIFISHelpHTML "
     "slotSaveRTPsOption slotSaveROITimeCourses slotSaveROIBetaTimeCourses slotLoadVOIs slotSaveVOIs slotLoadROIs "
     "slotSaveROIs updateVMRSwitchForMac slotSwitchToSurfaceViewLeftMesh slotSwitchToSurfaceViewRightMesh "
     "slotFileMenuAboutToShow slotAnalysisMenuAboutToShow slotViewMenuAboutToShow slotMultiRunMenuAboutToShow "
     "slotClickedContrastList slotDoubleClickedContrastList slotDeleteAllContrasts slotRunSelectedInTC1 "
     "slotRunSelectedInTC2 slotRunSelectedInTC3 slotMultiRunMenuActivated slotSelectMVCOFile onPreLoadROI "
     "onPreLoadVOI slotUpdateAutoAdvance slotUpdateAutoStart slotROIGLM slotShowROIVoxels "
     "slotUpdateShowROIGLMBetaPlots initVars initDefaultPalettes onPluginsMenuAboutToShow onCallPlugin "
     "onToggleShowPluginMaps timerCheckState slotSwitchWindowSize slotUpdateWindowSize slotChangeThreshold "
     "slotChangeColorMaxThreshold slotChangeClusterSize slotChangeMultiSliceROISelection slotConjunctionAnalysis"},
    {QtCortivoView::staticMetaObject, "slotDocumentChanged slotSaveAsBMP slotShowHelpHTML slotClearArea"},
    {TimeCoursePlotDlg::staticMetaObject,
     "clearPlot showProtocol showGrid slotToggleOptions init cleanUp slotSaveAsBMP slotShowHelpHTML"},
    {TimeCoursesContainer::staticMetaObject,
     "onNrOfRowsChanged onShowOnlyTCs onShowOnlyBetas onShowTCsAndBetas onOptions onCloseOptionsDlg "
     "onUseIndividualScalingForBetaPlots onUseCommonScalingForBetaPlots onChangeMinValSpBx onChangeMaxValSpBx"},
    {Plotter::staticMetaObject, "zoomIn zoomOut slotSaveAsBMP"},
    {Plot2DDlg::staticMetaObject, "init"},
    {MatrixPlotter::staticMetaObject,
     "selectMatrix zoomIn zoomOut changedNrOfSignals selectedSignalChanged"},
    {MatrixPlotterDlg::staticMetaObject,
     "onChangeSliderRange onSelectedSignalChanged onSelectSliderChanged onSelectSpBxChanged onBrowseLUTFile"},
};

constexpr const char* prescribedEntries[] = {
    "Set New VCO File...", "Edit VCO File...", "Edit MasterVCO File...", "Rename DICOM Files...",
    "VMR-VMR Coregistration...", "Close", "Exit", "Colors Code Significance", "Colors Code Contrasts",
    "Epoch-Based Averaging", "Stimulation Protocol...", "SVM Training...", "RFE Training...",
    "Real-Time SVM Classification...", "Post-Processing...", "Neurofeedback... ", "BOLD Decoder... ",
    "Multi-Slice View", "Volume View", "Anatomical Volume View", "Surface View", "Overlay On First Func Volume",
    "Overlay On Current Func Volume", "Overlay On Inplanes", "Show ROIs With Rectangles",
    "Show ROIs With Highlighted Voxels", "Show ROIs With Rectangles And Highlighted Voxels",
    "Show ROI Time Courses Container", "Remove ROI Time Course Plots", "Display Detrended ROI Time Courses",
    "License Information...", "About Velo-Cortivo ",
};
// clang-format on

} // namespace

TEST_F(MainWindow, HasEveryWidgetByItsName) {
    for (const auto& [className, names] : widgets)
        for (const QString& name : QString(names).split(' ')) {
            const QList<QWidget*> found = window_->findChildren<QWidget*>(name);
            ASSERT_EQ(found.size(), 1) << name.toStdString();
            EXPECT_TRUE(found[0]->inherits(className)) << name.toStdString();
        }
    EXPECT_EQ(control<QPushButton>("AutoAdvanceRunBtn").text(), "Pre-Load ROI");
    EXPECT_EQ(control<QPushButton>("AutoStartRunBtn").text(), "Pre-Load VOI");
    EXPECT_FALSE(control("TimeCoursesContainer").isVisible());
}

TEST_F(MainWindow, AndItsPartsHaveEverySlotByItsName) {
    for (const auto& [object, names] : slotsOfClasses) {
        QSet<QByteArray> methods;
        for (int i = 0; i < object.methodCount(); ++i)
            methods << object.method(i).name();
        for (const QByteArray& name : QByteArray(names).split(' '))
            EXPECT_TRUE(methods.contains(name)) << object.className() << " " << name.constData();
    }
}

TEST_F(MainWindow, HasEveryMenuEntryInOrder) {
    QStringList found;
    for (const MenuEntry& entry : menuEntries())
        found << entry.text;
    qsizetype last = -1;
    for (const char* text : prescribedEntries) {
        const qsizetype place = found.indexOf(text);
        EXPECT_GT(place, last) << text;
        last = place;
    }
    EXPECT_EQ(QSet<QString>(found.begin(), found.end()).size(), found.size());
}

// What comes in a later version can't be chosen, says why, and does no harm when it is called.
TEST_F(MainWindow, EntriesOfLaterVersionsAreDisabledAndSayWhy) {
    int nrOfLaterOnes = 0;
    for (const MenuEntry& entry : menuEntries()) {
        if (entry.phase != MenuPhase::Later)
            continue;
        ++nrOfLaterOnes;
        for (const QAction* action : entries(entry.menu))
            if (action->text() == entry.text) {
                EXPECT_FALSE(action->isEnabled()) << entry.text;
                EXPECT_EQ(action->toolTip(), entry.toolTip);
            }
        messages_.expectInformation(QByteArray(entry.toolTip) + ".");
        (window_.get()->*entry.slot)();
    }
    EXPECT_EQ(nrOfLaterOnes, 6);
}
