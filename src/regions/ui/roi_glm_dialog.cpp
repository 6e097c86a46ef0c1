// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/roi_glm_dialog.h"

#include "regions/ui/roi_glm_windows.h"
#include "regions/ui/session_region.h"
#include "ui_roi_glm_dialog.h"

ROIGLMDlg::ROIGLMDlg(int nrOfRegions, QWidget* parent)
    : EditDialog(parent), ui_(std::make_unique<Ui::ROIGLMDlg>()) {
    ui_->setupUi(this);
    for (int number = 0; number < nrOfRegions; ++number)
        ui_->RegionCmBx->addItem(regionName(number));
    ui_->RegionLbl->setVisible(nrOfRegions > 1);
    ui_->RegionCmBx->setVisible(nrOfRegions > 1);
    setUpEditing();
}

ROIGLMDlg::~ROIGLMDlg() = default;

int ROIGLMDlg::region() const {
    return ui_->RegionCmBx->currentIndex();
}

bool ROIGLMDlg::correctSerialCorrelations() const {
    return ui_->CorrectSerialCorrelationsOp->isChecked();
}

void ROIGLMDlg::leave() {
    stopListening();
    hide();
    deleteLater();
}

void openROIGLMDialog(RunSession& session, QWidget& window) {
    if (!session.regions.roiGLMHindrance().isEmpty())
        return;
    delete window.findChild<ROIGLMDlg*>();
    auto* dialog = new ROIGLMDlg(nrOfRegions(session), &window);
    session.listeners.add(*dialog, ListenerPlace::Dialogs);
    QObject::connect(dialog, &QDialog::finished, dialog, &QObject::deleteLater);
    QObject::connect(dialog, &QDialog::accepted, &window, [&session, &window, dialog] {
        const int region = dialog->region();
        const std::optional<RegionGLM> model =
            session.regions.computeROIGLM(region, dialog->correctSerialCorrelations());
        if (model)
            showRegionGLM(*model, regionGLMHeading(session, region), window);
    });
    // Returns at once: auto-start may begin a run, which closes the dialog.
    dialog->open();
}
