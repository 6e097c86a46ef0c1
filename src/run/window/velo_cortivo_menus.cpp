// The menus of the main window.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/velo_cortivo.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

void VeloCortivo::createMenus() {
    QMenu* file = menuBar_->addMenu("&File");
    setFileAction_ =
        file->addAction("Set New VCO File...", this, &VeloCortivo::slotSetVCOSettingsFile);
    saveViewAction_ = file->addAction("Save View As BMP...", this, &VeloCortivo::slotSaveAsBMP);
    file->addSeparator();
    file->addAction("Close", this, &VeloCortivo::slotClose);
    file->addAction("Exit", this, &VeloCortivo::slotExitVCO);
    connect(file, &QMenu::aboutToShow, this, &VeloCortivo::slotFileMenuAboutToShow);

    QMenu* analysis = menuBar_->addMenu("&Analysis");
    significanceAction_ = analysis->addAction("Colors Code Significance", this,
                                              &VeloCortivo::slotSwitchToSignificanceColorCoding);
    contrastColorsAction_ = analysis->addAction("Colors Code Contrasts", this,
                                                &VeloCortivo::slotSwitchToMultiMapColorCoding);
    auto* coding = new QActionGroup(this);
    for (QAction* action : {significanceAction_, contrastColorsAction_}) {
        action->setCheckable(true);
        coding->addAction(action);
    }
    analysis->addSeparator();
    postProcessAction_ =
        analysis->addAction("Post-Processing...", this, &VeloCortivo::slotPostProcessData);
    connect(analysis, &QMenu::aboutToShow, this, &VeloCortivo::slotAnalysisMenuAboutToShow);

    QMenu* view = menuBar_->addMenu("&View");
    multiSliceViewAction_ =
        view->addAction("Multi-Slice View", this, &VeloCortivo::slotSwitchToFMRView);
    view->addSeparator();
    firstVolumeAction_ =
        view->addAction("Overlay On First Func Volume", this, &VeloCortivo::slotShowOnEPIs);
    currentVolumeAction_ = view->addAction("Overlay On Current Func Volume", this,
                                           &VeloCortivo::slotShowOnCurrentEPIs);
    inplanesAction_ =
        view->addAction("Overlay On Inplanes", this, &VeloCortivo::slotShowOnInplanes);
    auto* overlay = new QActionGroup(this);
    for (QAction* action : {firstVolumeAction_, currentVolumeAction_, inplanesAction_}) {
        action->setCheckable(true);
        overlay->addAction(action);
    }
    view->addSeparator();
    view->addAction("Switch Window Size", this, &VeloCortivo::slotSwitchWindowSize);
    connect(view, &QMenu::aboutToShow, this, &VeloCortivo::slotViewMenuAboutToShow);

    QMenu* help = menuBar_->addMenu("&Help");
    help->addAction("License Information...", this, &VeloCortivo::slotShowLicenseInfoDlg);
    help->addAction("About Velo-Cortivo ", this, &VeloCortivo::slotShowAboutDlg);
}

void VeloCortivo::slotFileMenuAboutToShow() {
    setFileAction_->setEnabled(!runInProgress_);
    saveViewAction_->setEnabled(documentShown());
}

void VeloCortivo::slotAnalysisMenuAboutToShow() {
    const QtCortivoDoc* document = session_.functionalDocument.get();
    postProcessAction_->setEnabled(!runInProgress_ && session_.measuredVolumes() > 0);
    for (QAction* action : {significanceAction_, contrastColorsAction_})
        action->setEnabled(document != nullptr);
    if (!document)
        return;
    significanceAction_->setChecked(document->SignificanceColorCoding);
    contrastColorsAction_->setChecked(!document->SignificanceColorCoding);
}

void VeloCortivo::slotViewMenuAboutToShow() {
    const RunState& state = session_.state;
    const bool onInplanes = state.pendingOverlayInplane == 1;
    multiSliceViewAction_->setEnabled(documentShown());
    inplanesAction_->setEnabled(state.pendingOverlayInplane != -1);
    inplanesAction_->setChecked(onInplanes);
    firstVolumeAction_->setChecked(!onInplanes && state.overlayVolumeMode == 0);
    currentVolumeAction_->setChecked(!onInplanes && state.overlayVolumeMode != 0);
}
