// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/velo_cortivo.h"

#include "classify/ui/multi_voxel_dialog.h"
#include "classify/ui/real_time_svm_dialog.h"
#include "classify/ui/rfe_dialog.h"
#include "decoder/ui/decoding_window.h"
#include "dialogs/appearance.h"
#include "dialogs/progress_boxes.h"
#include "display/waiting_notice.h"
#include "feedback/ui/neurofeedback_dialog.h"
#include "regions/ui/roi_glm_dialog.h"
#include "run/loop/status_text.h"
#include "run/protocol/ui/response_plot_dialog.h"
#include "run/replay/ui/recover_run_dialog.h"
#include "run/replay/ui/replay_run_dialog.h"
#include "run/window/message_boxes.h"
#include "run/window/program_dialogs.h"
#include "run/window/title_row.h"
#include "run/window/window_layout.h"
#include "stats/ui/contrast_list.h"
#include "volume/ui/motion_plot_dialog.h"
#include "volume/ui/postprocessing_dialog.h"

#include <QApplication>
#include <QCloseEvent>
#include <utility>

VeloCortivo::VeloCortivo(const StandardFolders& folders, EventPump& pump)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint), pump_(pump), session_(pump, *this),
      watch_(folders, session_, pump, *this, *this), frame_(*this, watch_), keys_(*this),
      menus_(*createTitleRow(*this), *this), viewPanel_(new ViewPanel(session_, this)),
      logPanel_(new LogPanel(this)), inputPanel_(new InputPanel(this)),
      contrastPanel_(new ContrastPanel(session_, this)),
      timeCourses_(new TimeCoursesContainer(session_, this)),
      plugins_({session_, pump, *this, folders.pluginsPath, folders.dataPath, *this}) {
    setProgramAccess(this);
    setObjectName("VeloCortivo");
    setWindowTitle("Velo-Cortivo");
    setWindowIcon(QIcon(":/images/velo-cortivo-256.png"));
    viewPanel_->dock(*timeCourses_);
    new WaitingNotice(session_, pump_, viewPanel_);
    session_.licencePermits = licencePermits;
    session_.journal.setPlaces(folders.dataPath,
                               JournalList(folders.applicationDataPath + "OpenJournals"));
    session_.regions.setDataFolder(folders.dataPath);
    wrapToolTips(*this);
    initDefaultPalettes();
    qApp->installEventFilter(this);
}

VeloCortivo::~VeloCortivo() {
    qApp->removeEventFilter(this);
    // Views go before the documents that they show, dialogs before the session that they work on.
    session_.listeners.documentsLeaving();
    qDeleteAll(findChildren<QDialog*>(Qt::FindDirectChildrenOnly));
    qDeleteAll(findChildren<QMainWindow*>(Qt::FindDirectChildrenOnly));
    setProgramAccess(nullptr);
}

void VeloCortivo::initVars() {
    initDefaultPalettes();
    showLogText(QStringLiteral("<body style=\"font-size:%1pt\"> Velo-Cortivo %2<br><br>Looking "
                               "for the settings file...<br></body>")
                    .arg(QString::number(session_.requests.logFontSize), VELO_VERSION));
    session_.setRunButton(RunButtonState::Ready);
    refreshViewButtons();
    refreshControls();
    connectPanels();
    inputPanel_->focusRunButton();
    watch_.start();
}

void VeloCortivo::connectPanels() {
    using Contrasts = ContrastPanel;
    using Window = VeloCortivo;
    inputPanel_->connectTo(*this);
    connect(viewPanel_, &ViewPanel::slicesWanted, this, &Window::slotSwitchToFMRView);
    connect(viewPanel_, &ViewPanel::volumeWanted, this, &Window::slotSwitchToEPI3DView);
    connect(viewPanel_, &ViewPanel::anatomyWanted, this, &Window::slotSwitchToVMRView);
    connect(contrastPanel_, &Contrasts::thresholdEdited, this, &Window::slotChangeThreshold);
    connect(contrastPanel_, &Contrasts::colorMaxThresholdEdited, this,
            &Window::slotChangeColorMaxThreshold);
    connect(contrastPanel_, &Contrasts::clusterSizeEdited, this, &Window::slotChangeClusterSize);
    connect(contrastPanel_, &Contrasts::multiSliceEdited, this,
            &Window::slotChangeMultiSliceROISelection);
    connect(contrastPanel_, &Contrasts::conjunctionClicked, this, &Window::slotConjunctionAnalysis);
    connect(contrastPanel_, &Contrasts::showPluginMapsClicked, this,
            &Window::onToggleShowPluginMaps);
    connect(contrastPanel_, &Contrasts::statisticChanged, this, &Window::refreshControls);
    connect(contrastPanel_, &Contrasts::numberEntered, this, &Window::focusView);
    using RunChosen = void (Window::*)(int);
    connect(timeCourses_, &TimeCoursesContainer::runChosen, this, [this](int slot, int value) {
        constexpr RunChosen chosen[] = {&Window::slotRunSelectedInTC1,
                                        &Window::slotRunSelectedInTC2,
                                        &Window::slotRunSelectedInTC3};
        (this->*chosen[slot])(value);
    });
}

void VeloCortivo::initDefaultPalettes() {
    setPalette(darkPalette());
    setStyleSheet(windowStyleSheet());
}

void VeloCortivo::closeEvent(QCloseEvent* event) {
    if (!session_.phase.isIdle()) {
        // The volumes measured so far exist nowhere else: they are saved before the program ends.
        endAfterRun_ = true;
        showLogText(endingText(session_.requests.logFontSize, session_.phase.now()));
        session_.requestStop();
        event->ignore();
        return;
    }
    // Before the run is left: to save it is work too, and where it can't be saved the end of that
    // must not close the window, and ask, once more.
    endAfterRun_ = false;
    if (!session_.mayLeaveRun()) {
        event->ignore();
        return;
    }
    watch_.end();
    event->accept();
    QCoreApplication::quit();
}

void VeloCortivo::endProgramOrderly() {
    pump_.giveUpWaiting();
    cancelDialogsForGood();
    close();
}

void VeloCortivo::workStarting() {
    watch_.workStarting();
    logPanel_->setTextSelectable(false);
}

void VeloCortivo::workEnded() {
    logPanel_->setTextSelectable(true);
    watch_.workEnded();
    contrastPanel_->refresh();
    updateViews();
    // Not at once: the caller is still inside the run.
    if (std::exchange(endAfterRun_, false))
        QMetaObject::invokeMethod(
            this, [this] { close(); }, Qt::QueuedConnection);
}

void VeloCortivo::refreshControls() {
    contrastPanel_->refresh();
    if (session_.phase.isIdle() && session_.functionalDocument && !session_.report.startFailed)
        showLogText(session_.panelText());
}

// Between runs the panel is written anew once a second; why the menu of plug-ins stays empty must
// not be lost with that.
void VeloCortivo::showLogText(const QString& html) {
    const QString& ended = plugins_.endedAtLaunch();
    const bool told = ended.isEmpty() || !session_.phase.isIdle();
    logPanel_->showText(told ? html : withPluginEnded(html, ended, session_.requests.logFontSize));
}

void VeloCortivo::showInputControls(const InputControls& controls) {
    inputPanel_->showControls(controls);
}

void VeloCortivo::showTitle(const QString& title) {
    if (windowTitle() != title)
        setWindowTitle(title);
}

std::unique_ptr<ProgressReporter> VeloCortivo::openSavingProgress() {
    // Nothing is cancelled: a run that is half saved would be lost.
    return openProgressBox(
        this, {"SavingProgressDlg", " Saving Analyzed Data... ", " Cancel ", {250, 80}});
}

std::unique_ptr<ProgressReporter> VeloCortivo::openModelProgress(const QString& text) {
    return openCancellableProgressBox(
        this, {"ModelProgressDlg", text, " Abort GLM computation ", {320, 110}}, pump_);
}

std::unique_ptr<ProgressReporter> VeloCortivo::openAnalysisProgress(const QString& text) {
    return openCancellableProgressBox(this, {"AnalysisProgressDlg", text, "Stop"}, pump_);
}

void VeloCortivo::applyWindowSize() {
    frame_.applySize();
    // In the small window the seven lines after a run need all of the panel.
    logPanel_->setMargin(watch_.master().windowSize == 1 ? 0 : 6);
}

void VeloCortivo::slotUpdateWindowSize() {
    applyWindowSize();
    frame_.keepReachable();
    updateViews();
}

void VeloCortivo::slotSwitchWindowSize() {
    frame_.switchSize();
    slotUpdateWindowSize();
}

void VeloCortivo::slotChangeThreshold() {
    contrastPanel_->takeThreshold();
    refreshControls();
}

void VeloCortivo::slotChangeColorMaxThreshold() {
    contrastPanel_->takeColorMaxThreshold();
    refreshControls();
}

void VeloCortivo::slotChangeClusterSize() {
    contrastPanel_->takeClusterSize();
    refreshControls();
}

void VeloCortivo::slotSwitchToFMRView() {
    viewPanel_->showSlices();
    updateViews();
    refreshViewButtons();
}

void VeloCortivo::slotSwitchToEPI3DView() {
    showSections(ShownCube::Functional);
}

void VeloCortivo::slotSwitchToVMRView() {
    showSections(ShownCube::Anatomical);
}

void VeloCortivo::showSections(ShownCube cube) {
    viewPanel_->showSections(cube);
    updateViews();
    refreshViewButtons();
}

void VeloCortivo::slotLoadAnatomy() {
    chooseFileToOpen(
        "Load Anatomy", session_.settings.settingsFileDir,
        "Anatomical volumes (*.vmr *.nii *.nii.gz)",
        [this](const QString& path) {
            if (session_.anatomy.load(path))
                slotSwitchToVMRView();
        },
        &anatomyChooser_);
}

void VeloCortivo::focusView() {
    keys_.releaseFocus();
    viewPanel_->focusView();
}

void VeloCortivo::nextROIDisplayStyle() {
    switch (RoiDisplayStyle((int(roiDisplayStyle()) + 1) % 3)) {
    case RoiDisplayStyle::Rectangles:
        return onShowROIsAsRectangles();
    case RoiDisplayStyle::RectanglesAndMarkedVoxels:
        return onShowROIsAsRectanglesAndMarkedVoxels();
    case RoiDisplayStyle::MarkedVoxels:
        return onShowROIsAsMarkedVoxels();
    }
}

void VeloCortivo::toggleLog(bool OperatorRequests::*log) {
    session_.regions.setLog(log, !(session_.requests.*log));
}

void VeloCortivo::onToggleROITimeCoursesDetrended() {
    timeCourses_->setDetrended(!timeCourses_->detrended());
}

void VeloCortivo::slotSwitchAveragingType() {
    timeCourses_->setEpochBased(!timeCourses_->epochBased());
}

void VeloCortivo::slotClickedContrastList(QTreeWidgetItem* item, int column) {
    contrastPanel_->list().slotClickedContrastList(item, column);
}

void VeloCortivo::slotDoubleClickedContrastList(QTreeWidgetItem* item, int column) {
    contrastPanel_->list().slotDoubleClickedContrastList(item, column);
}

void VeloCortivo::slotDeleteAllContrasts() {
    contrastPanel_->list().slotDeleteAllContrasts();
}

void VeloCortivo::tellLater(const char* entry) {
    for (const MenuEntry& row : menuEntries())
        if (QLatin1String(row.text) == QLatin1String(entry))
            showModelessInformation(QStringLiteral("%1.").arg(row.toolTip));
}

void VeloCortivo::slotMultiRunMenuAboutToShow() {
    using Kind = MultiRunMenuRow::Kind;
    std::vector<MenuRow> rows;
    for (const MultiRunMenuRow& row : session_.multiRun.menu()) {
        const bool isFile = row.kind == Kind::ProjectFile;
        const auto slot =
            isFile ? &VeloCortivo::slotSelectMVCOFile : &VeloCortivo::slotMultiRunMenuActivated;
        const bool enabled = isFile ? session_.phase.isIdle() : row.kind == Kind::Run;
        rows.push_back({row.text, row.kind == Kind::Separator ? nullptr : slot, row.index, enabled,
                        row.checked});
    }
    menus_.rebuild("&Multi-Run", rows);
}

void VeloCortivo::onPluginsMenuAboutToShow() {
    std::vector<MenuRow> rows;
    for (const PluginMenuRow& row : plugins_.menuRows())
        rows.push_back({.text = row.text,
                        .slot = row.text.isEmpty() ? nullptr : &VeloCortivo::onCallPlugin,
                        .data = row.index,
                        .enabled = row.index >= 0,
                        .toolTip = row.toolTip});
    menus_.rebuild("&Plugins", rows);
}

int VeloCortivo::chosenRow() const {
    const auto* action = qobject_cast<const QAction*>(sender());
    return action ? action->data().toInt() : -1;
}

void VeloCortivo::slotShowMotionPlot() {
    openMotionPlot(session_, *this);
}

void VeloCortivo::slotShowResponsePlot() {
    openResponsePlot(session_, *this);
}

void VeloCortivo::slotShowLicenseInfoDlg() {
    showLicenceDialog(this);
}

void VeloCortivo::slotShowAboutDlg() {
    showAboutDialog(this);
}

void VeloCortivo::offerUnsavedRuns() {
    offerRecovery(session_, watch_, *this);
}

void VeloCortivo::slotRecoverRun() {
    openRecoverRunDialog(session_, watch_, *this);
}

void VeloCortivo::slotReplayRun() {
    openReplayRunDialog(session_, watch_, *this);
}

void VeloCortivo::slotROIGLM() {
    openROIGLMDialog(session_, *this);
}

void VeloCortivo::slotShowNeurofeedbackDlg() {
    openNeurofeedbackDialog(session_, *this);
}

void VeloCortivo::slotShowBOLDDecoder() {
    openBOLDDecoder(session_, *this);
}

void VeloCortivo::onOfflineSVMDlg() {
    openMultiVoxelPatternDialog(session_, *this);
}

void VeloCortivo::onRFEDlg() {
    openRFEDialog(session_, *this);
}

void VeloCortivo::onRealTimeSVMClassification() {
    openRealTimeSVMDialog(session_, *this);
}

void VeloCortivo::slotPostProcessData() {
    openPostprocessingDialog(session_, pump_, *this);
}
