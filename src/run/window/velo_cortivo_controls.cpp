// Thresholds, contrasts and views of the main window.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/qt_cortivo_view.h"
#include "run/window/contrast_list.h"
#include "run/window/velo_cortivo.h"
#include "stats/thresholds.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>

void VeloCortivo::connectControls() {
    connect(recordButton_, &QToolButton::clicked, this, &VeloCortivo::slotRealTimeAnalysis);
    connect(reloadButton_, &QToolButton::clicked, this, &VeloCortivo::slotReloadData);
    connect(toBeginButton_, &QToolButton::clicked, this, &VeloCortivo::slotToPreviousRecording);
    connect(toEndButton_, &QToolButton::clicked, this, &VeloCortivo::slotToNextRecording);
    connect(preLoadRoiButton_, &QPushButton::clicked, this, &VeloCortivo::onPreLoadROI);
    connect(preLoadVoiButton_, &QPushButton::clicked, this, &VeloCortivo::onPreLoadVOI);
    connect(epiSlicesButton_, &QToolButton::clicked, this, &VeloCortivo::slotSwitchToFMRView);
    connect(thresholdBox_, &QDoubleSpinBox::valueChanged, this, &VeloCortivo::slotChangeThreshold);
    connect(colorMaxThresholdBox_, &QDoubleSpinBox::valueChanged, this,
            &VeloCortivo::slotChangeColorMaxThreshold);
    connect(clusterSizeBox_, &QSpinBox::valueChanged, this, &VeloCortivo::slotChangeClusterSize);
    connect(multiSliceBox_, &QSpinBox::valueChanged, this,
            &VeloCortivo::slotChangeMultiSliceROISelection);
    // The keys that scroll the slices work again once a number is entered.
    for (QAbstractSpinBox* box : {static_cast<QAbstractSpinBox*>(thresholdBox_),
                                  static_cast<QAbstractSpinBox*>(colorMaxThresholdBox_),
                                  static_cast<QAbstractSpinBox*>(clusterSizeBox_),
                                  static_cast<QAbstractSpinBox*>(multiSliceBox_)})
        connect(box->findChild<QLineEdit*>(), &QLineEdit::returnPressed, this, [this] {
            controlKeepsFocus_ = false;
            if (functionalView_)
                functionalView_->setFocus();
        });
    connect(contrastList_, &ContrastList::contrastsEdited, this,
            [this] { session_.contrastsChanged(); });
    connect(conjunctionBox_, &QCheckBox::clicked, this, &VeloCortivo::slotConjunctionAnalysis);
    connect(&timer_, &QTimer::timeout, this, [this] { timerCheckState(); });
}

void VeloCortivo::refreshControls() {
    const QSignalBlocker blockers[] = {
        QSignalBlocker(thresholdBox_), QSignalBlocker(colorMaxThresholdBox_),
        QSignalBlocker(clusterSizeBox_), QSignalBlocker(multiSliceBox_)};
    const OverlayThresholds& thresholds = session_.state.thresholds;
    thresholdBox_->setValue(double(thresholds.Threshold));
    colorMaxThresholdBox_->setValue(double(thresholds.ColorMaxThreshold));
    clusterSizeBox_->setValue(thresholds.ClusterSizePixels);
    multiSliceBox_->setValue(session_.settings.MultiSliceROISelection);
    if (session_.state.runActive)
        return; // the loop owns the panel
    if (session_.functionalDocument)
        showLogText(session_.panelText());
}

void VeloCortivo::slotChangeThreshold() {
    if (!session_.functionalDocument)
        return;
    changeThreshold(session_.state.thresholds, float(thresholdBox_->value()));
    session_.thresholdChanged();
    refreshControls();
}

void VeloCortivo::slotChangeColorMaxThreshold() {
    if (!session_.functionalDocument)
        return;
    changeColorMaxThreshold(session_.state.thresholds, float(colorMaxThresholdBox_->value()));
    updateViews(); // cluster sizes don't depend on it
    refreshControls();
}

void VeloCortivo::slotChangeClusterSize() {
    if (!session_.functionalDocument)
        return;
    changeClusterSize(session_.state.thresholds, clusterSizeBox_->value());
    session_.thresholdChanged();
    refreshControls();
}

void VeloCortivo::slotChangeMultiSliceROISelection() {
    session_.settings.MultiSliceROISelection = multiSliceBox_->value();
}

void VeloCortivo::slotConjunctionAnalysis() {
    QtCortivoDoc* document = session_.functionalDocument.get();
    if (!document || !setConjunction(document->contrasts, conjunctionBox_->isChecked())) {
        conjunctionBox_->setChecked(false);
        return;
    }
    session_.contrastsChanged();
}

bool VeloCortivo::documentShown() const {
    return session_.functionalDocument && functionalView_;
}

void VeloCortivo::refreshViewButtons() {
    const bool shown = documentShown();
    epiSlicesButton_->setEnabled(shown);
    epiSlicesButton_->setChecked(shown && functionalView_->isVisible());
    // These wait for views that don't exist yet in this session.
    for (QToolButton* button :
         {epiSlices3DButton_, vmrButton_, leftHemisphereButton_, rightHemisphereButton_}) {
        button->setEnabled(false);
        button->setChecked(false);
    }
}

void VeloCortivo::updateViews() {
    if (!functionalView_ || !functionalView_->isVisible())
        return;
    functionalView_->setShowInplanes(session_.state.pendingOverlayInplane == 1);
    functionalView_->setOverlayShown(session_.state.mapsPresent);
    functionalView_->setHelpFile(session_.settings.ParadigmHelpFile);
    functionalView_->slotDocumentChanged();
    if (!controlKeepsFocus_)
        functionalView_->setFocus();
}

void VeloCortivo::slotSwitchToFMRView() {
    if (functionalView_) {
        functionalView_->show();
        updateViews();
    }
    refreshViewButtons();
}

void VeloCortivo::onShowROIsAsRectangles() {
    roiDisplayStyle_ = RoiDisplayStyle::Rectangles;
    updateViews();
}

void VeloCortivo::onShowROIsAsMarkedVoxels() {
    roiDisplayStyle_ = RoiDisplayStyle::MarkedVoxels;
    updateViews();
}

void VeloCortivo::onShowROIsAsRectanglesAndMarkedVoxels() {
    roiDisplayStyle_ = RoiDisplayStyle::RectanglesAndMarkedVoxels;
    updateViews();
}

void VeloCortivo::slotSaveAsBMP() {
    if (functionalView_)
        functionalView_->slotSaveAsBMP();
}
