// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/svm_options_dialog.h"

#include "base/messages.h"
#include "dialogs/dialog_setup.h"
#include "ui_svm_options_dialog.h"

#include <QPointer>

SVMOptionsDlg::SVMOptionsDlg(const SVMTrainingOptions& options, Taken taken, QWidget* parent)
    : EditDialog(parent), ui_(std::make_unique<Ui::SVMOptionsDlg>()), options_(options),
      taken_(std::move(taken)) {
    ui_->setupUi(this);
    (options.scaling.mode == ScalingMode::Standardize ? ui_->StandardizeOp
     : options.scaling.mode == ScalingMode::Range     ? ui_->ScaleToRangeOp
                                                      : ui_->NoScalingOp)
        ->setChecked(true);
    ui_->ScaleLowSpBx->setValue(options.scaling.low);
    ui_->ScaleHighSpBx->setValue(options.scaling.high);
    ui_->CSpBx->setValue(options.svm.C);
    ui_->GammaSpBx->setValue(options.svm.gamma);
    ui_->DegreeSpBx->setValue(options.svm.degree);
    ui_->SearchCLinearOp->setChecked(options.searchLinear);
    ui_->SearchCRBFOp->setChecked(options.searchRBF);
    ui_->GammaSpBx->setEnabled(options.svm.kernel != SVMKernel::Linear);
    ui_->DegreeSpBx->setEnabled(options.svm.kernel == SVMKernel::Polynomial);
    connect(ui_->ScaleToRangeOp, &QRadioButton::toggled, this, &SVMOptionsDlg::refreshRange);
    refreshRange();
    setUpEditing();
}

SVMOptionsDlg::~SVMOptionsDlg() = default;

void SVMOptionsDlg::refreshRange() {
    for (QWidget* field : {ui_->ScaleLowSpBx, ui_->ScaleHighSpBx})
        field->setEnabled(ui_->ScaleToRangeOp->isChecked());
}

bool SVMOptionsDlg::apply() {
    ScalingOptions& scaling = options_.scaling;
    scaling.mode = ui_->StandardizeOp->isChecked()    ? ScalingMode::Standardize
                   : ui_->ScaleToRangeOp->isChecked() ? ScalingMode::Range
                                                      : ScalingMode::None;
    scaling.low = ui_->ScaleLowSpBx->value();
    scaling.high = ui_->ScaleHighSpBx->value();
    if (scaling.mode == ScalingMode::Range && scaling.low >= scaling.high) {
        const QPointer<SVMOptionsDlg> self(this);
        showWarning("The range for scaling must begin below its end.");
        if (self)
            returnToControl(*ui_->ScaleLowSpBx);
        return false;
    }
    // A value that the field shows rounded stays exact unless it was edited.
    const auto take = [](const QDoubleSpinBox& field, double& value) {
        QDoubleSpinBox asShown;
        asShown.setDecimals(field.decimals());
        asShown.setRange(field.minimum(), field.maximum());
        asShown.setValue(value);
        if (asShown.value() != field.value())
            value = field.value();
    };
    take(*ui_->CSpBx, options_.svm.C);
    take(*ui_->GammaSpBx, options_.svm.gamma);
    options_.svm.degree = ui_->DegreeSpBx->value();
    options_.searchLinear = ui_->SearchCLinearOp->isChecked();
    options_.searchRBF = ui_->SearchCRBFOp->isChecked();
    taken_(options_);
    return true;
}
