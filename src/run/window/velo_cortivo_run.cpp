// What a run shows in the main window.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/progress_boxes.h"
#include "display/qt_cortivo_view.h"
#include "run/window/contrast_list.h"
#include "run/window/velo_cortivo.h"
#include "volume/ui/postprocessing_dialog.h"

#include <QCheckBox>
#include <QLayout>
#include <QPushButton>
#include <QTextBrowser>
#include <QToolButton>

void VeloCortivo::slotRealTimeAnalysis() {
    session_.runButtonPressed();
}

void VeloCortivo::slotReloadData() {
    if (!runInProgress_)
        session_.reloadData();
}

void VeloCortivo::setPreLoadEnabled(bool enabled) {
    preLoadRoiButton_->setEnabled(enabled);
    preLoadVoiButton_->setEnabled(enabled);
}

void VeloCortivo::runStarting() {
    runInProgress_ = true;
    timer_.stop();
    // Dragging selected text would hold up the run.
    logInfos_->setTextInteractionFlags(Qt::NoTextInteraction);
    toBeginButton_->setEnabled(false);
    toEndButton_->setEnabled(false);
    reloadButton_->setEnabled(false);
    setPreLoadEnabled(false);
}

void VeloCortivo::documentsLeaving() {
    delete postprocessingDialog_;
    contrastList_->setContrasts(nullptr);
    conjunctionBox_->setChecked(false);
    delete functionalView_;
    functionalView_ = nullptr;
    refreshViewButtons();
}

void VeloCortivo::documentsArrived() {
    functionalView_ = new QtCortivoView(session_.functionalDocument.get(), imageView_);
    functionalView_->setObjectName("FunctionalView");
    imageView_->layout()->addWidget(functionalView_);
    functionalView_->hide();
}

void VeloCortivo::runPrepared() {
    contrastList_->setContrasts(&session_.functionalDocument->contrasts);
    functionalView_->show();
    updateViews();
    refreshViewButtons();
    refreshControls();
}

void VeloCortivo::preparationFailed() {
    runInProgress_ = false;
    logInfos_->setTextInteractionFlags(Qt::TextBrowserInteraction);
    endIfAsked();
}

void VeloCortivo::runEnded() {
    runInProgress_ = false;
    logInfos_->setTextInteractionFlags(Qt::TextBrowserInteraction);
    reloadButton_->setEnabled(true);
    setPreLoadEnabled(true);
    refreshControls();
    updateViews();
    timer_.start(checkStateInterval_);
    endIfAsked();
}

void VeloCortivo::clearRunDisplay() {
    delete postprocessingDialog_;
    session_.state.currentVolume = -1;
    session_.state.elapsedRunTime = 0;
    contrastList_->setContrasts(nullptr);
}

void VeloCortivo::setRunButtonState(RunButtonState state) {
    static constexpr const char* icons[] = {"record_none", "record_ready", "record_finished",
                                            "record_running"};
    recordButton_->setIcon(QIcon(QStringLiteral(":/images/%1.png").arg(icons[int(state)])));
}

void VeloCortivo::showLogText(const QString& html) {
    // The same text again would throw away the operator's selection.
    if (logInfos_->property("shownHtml").toString() == html)
        return;
    logInfos_->setProperty("shownHtml", html);
    logInfos_->setHtml(html);
}

std::unique_ptr<ProgressReporter> VeloCortivo::openSavingProgress() {
    // Nothing is cancelled: a run that is half saved would be lost.
    return openProgressBox(
        this, {"SavingProgressDlg", " Saving Analyzed Data... ", " Cancel ", {250, 80}});
}
