// The main window.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/log_panel.h"
#include "display/view_panel.h"
#include "plugin/host/plugin_host.h"
#include "plugin/host/program_access.h"
#include "regions/ui/time_courses_container.h"
#include "run/loop/run_display.h"
#include "run/session/settings_file_watch.h"
#include "run/window/input_panel.h"
#include "run/window/key_commands.h"
#include "run/window/menu_table.h"
#include "run/window/window_frame.h"
#include "stats/ui/contrast_panel.h"

#include <QWidget>

/// A facade over its parts: panels, menus, keys and frame here, and the session, which knows no
/// widgets. A slot is one line that calls an operation of one of them.
class VeloCortivo : public QWidget,
                    public RunDisplay,
                    public SettingsFileDisplay,
                    public ProgramAccess {
    Q_OBJECT

public:
    VeloCortivo(const StandardFolders& folders, EventPump& pump);
    ~VeloCortivo() override;

    [[nodiscard]] RunSession& session() override { return session_; }
    [[nodiscard]] PluginHost& plugins() override { return plugins_; }

    /// Reads MasterVCO and takes what it says. False when there is neither a file nor a way to make
    /// one: the window then has its default size and place.
    [[nodiscard]] bool readMasterFile() { return watch_.readMasterFile(); }
    /// Writes what the operator changed: the settings file, the window's size and place.
    [[nodiscard]] bool writeMasterFile() { return watch_.writeMasterFile(); }
    /// Takes a settings file; with an empty name a file chooser asks for it.
    void setSettingsFile(const QString& name) { watch_.setSettingsFile(name); }
    /// The look at the settings file; with true before the event loop runs.
    void timerCheckState(bool BeforeAppExec) { watch_.look(BeforeAppExec); }
    /// Skin, mask and panels for the window's size.
    void applyWindowSize();
    /// Moves the window to the place that the master file gives on this screen.
    void placeOnScreen() { frame_.placeOnScreen(); }

    /// Opens the dialog of recovery if a run was not saved when the program ended.
    void offerUnsavedRuns();

    /// There are a document and its view.
    [[nodiscard]] bool documentShown() const { return viewPanel_->documentShown(); }
    /// The operator closed the window during a run, which is saved first.
    [[nodiscard]] bool endsAfterRun() const { return endAfterRun_; }
    /// Writes what the session has into the controls, and, unless a run owns it, into the panel.
    void refreshControls();
    [[nodiscard]] RoiDisplayStyle roiDisplayStyle() const { return viewPanel_->roiDisplayStyle(); }
    [[nodiscard]] const TimeCoursesContainer& timeCourses() const { return *timeCourses_; }
    void nextROIDisplayStyle();
    /// True when something was being dragged on a view; it is given up.
    bool cancelDrag() { return viewPanel_->cancelDrag(); }
    /// The keyboard goes from a control back to the view.
    void focusView();

    // What a run shows.
    void workStarting() override;
    void workEnded() override;
    void setRunButtonState(RunButtonState state) override { inputPanel_->showRunButton(state); }
    void showLogText(const QString& html) override;
    void refreshViewButtons() override { viewPanel_->refreshButtons(); }
    void updateViews() override { viewPanel_->update(keys_.controlKeepsFocus()); }
    [[nodiscard]] std::unique_ptr<ProgressReporter> openSavingProgress() override;
    [[nodiscard]] std::unique_ptr<ProgressReporter> openModelProgress(const QString& text) override;
    [[nodiscard]] std::unique_ptr<ProgressReporter>
    openAnalysisProgress(const QString& text) override;
    void showInputControls(const InputControls& controls) override;
    void showTitle(const QString& title) override;
    void paintNow() override { repaint(); }

public Q_SLOTS:
    void initVars();
    void initDefaultPalettes();
    void timerCheckState() { watch_.look(); }
    void slotRealTimeAnalysis() { session_.runButtonPressed(); }
    void slotReloadData() { session_.reloadData(); }
    void slotToNextRecording() { watch_.toNeighbour(+1); }
    void slotToPreviousRecording() { watch_.toNeighbour(-1); }
    void slotUpdateAutoAdvance() { watch_.setAutoAdvance(inputPanel_->autoAdvanceLit()); }
    void slotUpdateAutoStart() { watch_.setAutoStart(inputPanel_->autoStartLit()); }
    void onPreLoadROI() { watch_.choosePreLoadedRegions(); }
    void onPreLoadVOI() { watch_.choosePreLoadedVolumesOfInterest(); }
    void slotSetVCOSettingsFile() { watch_.chooseSettingsFile(); }
    void slotRecoverRun();
    void slotReplayRun();
    void slotSaveAsBMP() { viewPanel_->saveAsBMP(); }
    void slotSwitchWindowSize();
    void slotUpdateWindowSize();
    void slotClose() { close(); }
    void endProgramOrderly();
    void slotExitVCO() { close(); }
    void slotShowLicenseInfoDlg();
    void slotShowAboutDlg();
    void slotFileMenuAboutToShow() { menus_.refresh("&File"); }
    void slotAnalysisMenuAboutToShow() { menus_.refresh("&Analysis"); }
    void slotViewMenuAboutToShow() { menus_.refresh("&View"); }
    void slotMultiRunMenuAboutToShow();
    void onPluginsMenuAboutToShow();
    void slotHelpMenuAboutToShow() { menus_.refresh("&Help"); }
    void slotChangeThreshold();
    void slotChangeColorMaxThreshold();
    void slotChangeClusterSize();
    void slotChangeMultiSliceROISelection() { contrastPanel_->takeMultiSliceROISelection(); }
    void slotClickedContrastList(QTreeWidgetItem* item, int column);
    void slotDoubleClickedContrastList(QTreeWidgetItem* item, int column);
    void slotDeleteAllContrasts();
    void slotConjunctionAnalysis() { contrastPanel_->takeConjunction(); }
    void slotSwitchToSignificanceColorCoding() { session_.changeColorCoding(true); }
    void slotSwitchToMultiMapColorCoding() { session_.changeColorCoding(false); }
    void slotSwitchToFMRView();
    void slotSwitchToEPI3DView();
    void slotSwitchToVMRView();
    void slotLoadAnatomy();
    void slotExportAsNifti() { session_.exports.chooseFileAndExport(); }
    void slotShowOnEPIs() { session_.showOnFirstVolume(); }
    void slotShowOnCurrentEPIs() { session_.showOnCurrentVolume(); }
    void slotShowOnInplanes() { session_.showOnInplanes(); }
    void slotToggleBeforePreprocessing() {
        session_.showBeforePreprocessing(session_.requests.overlayAfterPreprocessing);
    }
    void slotPostProcessData();
    void slotShowHelpHTML() { viewPanel_->showHelp(); }
    void slotShowIFISHelpHTML() { viewPanel_->showHelp(); }

    // Regions of interest.
    void slotLoadROIs() { session_.regions.chooseFileToLoad(); }
    void slotSaveROIs() { session_.regions.chooseFileToSave(); }
    void slotLoadVOIs() { session_.vois.chooseFileToLoad(); }
    void slotSaveVOIs() { session_.vois.chooseFileToSave(); }
    void onToggleSelectOnlyMapVoxels() {
        session_.regions.setSelectOnlyMapVoxels(!session_.requests.regions.SelectOnlyMapVoxels);
    }
    void slotRemoveROITimeCoursePlots() { session_.regions.removeAll(); }
    void slotSaveRTPsOption() { toggleLog(&OperatorRequests::saveRTPs); }
    void slotSaveROITimeCourses() { toggleLog(&OperatorRequests::saveROITimeCourses); }
    void slotSaveROIBetaTimeCourses() { toggleLog(&OperatorRequests::saveROIBetaTimeCourses); }
    void onShowTimeCoursesContainer() { timeCourses_->showContainer(); }
    void onToggleROITimeCoursesDetrended();
    void slotSwitchAveragingType();
    void slotUpdateShowROIGLMBetaPlots() { timeCourses_->onShowTCsAndBetas(); }
    void slotROIGLM();
    void slotShowNeurofeedbackDlg();
    void onOfflineSVMDlg();
    void onRFEDlg();
    void onRealTimeSVMClassification();
    void slotShowROIVoxels() { onShowROIsAsRectanglesAndMarkedVoxels(); }
    void slotShowMotionPlot();
    void slotShowResponsePlot();
    void onShowROIsAsRectangles() { viewPanel_->setROIDisplayStyle(RoiDisplayStyle::Rectangles); }
    void onShowROIsAsMarkedVoxels() {
        viewPanel_->setROIDisplayStyle(RoiDisplayStyle::MarkedVoxels);
    }
    void onShowROIsAsRectanglesAndMarkedVoxels() {
        viewPanel_->setROIDisplayStyle(RoiDisplayStyle::RectanglesAndMarkedVoxels);
    }

    // Several runs. The first two find in the action that was chosen which row it is.
    void slotMultiRunMenuActivated() { session_.multiRun.select(chosenRow()); }
    void slotSelectMVCOFile() {
        watch_.chooseProjectFile(session_.multiRun.projectFile(chosenRow()));
    }
    void slotRunSelectedInTC1(int value) { session_.multiRun.showRun(0, value); }
    void slotRunSelectedInTC2(int value) { session_.multiRun.showRun(1, value); }
    void slotRunSelectedInTC3(int value) { session_.multiRun.showRun(2, value); }

    void slotShowBOLDDecoder();

    // Plug-ins. The first finds in the action that was chosen which it is.
    void onCallPlugin() { plugins_.launch(chosenRow()); }
    void onToggleShowPluginMaps() { contrastPanel_->takeShowPluginMaps(); }

    // Of later versions: their entries are disabled, and a call says so.
    void slotEditVCOSettingsFile() { tellLater("Edit VCO File..."); }
    void slotEditMasterVCOFileSettings() { tellLater("Edit MasterVCO File..."); }
    void slotRenameDICOMFiles() { tellLater("Rename DICOM Files..."); }
    void slotVMR2VMRCoregistration() { tellLater("VMR-VMR Coregistration..."); }
    void slotStimulationProtocol() { tellLater("Stimulation Protocol..."); }
    void updateVMRSwitchForMac() { refreshViewButtons(); }
    void slotSwitchToSurfaceView() { tellLater("Surface View"); }
    void slotSwitchToSurfaceViewLeftMesh() { tellLater("Surface View"); }
    void slotSwitchToSurfaceViewRightMesh() { tellLater("Surface View"); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        return keys_.filter(watched, event);
    }
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent*) override { frame_.paint(); }
    void mousePressEvent(QMouseEvent* event) override { frame_.press(*event); }
    void mouseMoveEvent(QMouseEvent* event) override { frame_.drag(*event); }
    void mouseReleaseEvent(QMouseEvent*) override { frame_.release(); }

private:
    void connectPanels();
    void showSections(ShownCube cube);
    void toggleLog(bool OperatorRequests::*log);
    /// The data of the menu entry that the running slot was called by; -1 for no entry.
    [[nodiscard]] int chosenRow() const;
    /// Says what an entry that can't be chosen yet waits for.
    void tellLater(const char* entry);

    EventPump& pump_;
    OpenChooser anatomyChooser_;
    RunSession session_;
    SettingsFileWatch watch_;
    WindowFrame frame_;
    KeyCommands keys_;
    MenuTable menus_;
    ViewPanel* viewPanel_;
    LogPanel* logPanel_;
    InputPanel* inputPanel_;
    ContrastPanel* contrastPanel_;
    TimeCoursesContainer* timeCourses_;
    PluginHost plugins_;
    bool endAfterRun_ = false;
};
