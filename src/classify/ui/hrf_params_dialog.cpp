// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/hrf_params_dialog.h"

#include "ui_hrf_params_dialog.h"

HRFParamsDlg::HRFParamsDlg(const TwoGammaHRFParams& params, Taken taken, QWidget* parent)
    : EditDialog(parent), ui_(std::make_unique<Ui::HRFParamsDlg>()), taken_(std::move(taken)) {
    ui_->setupUi(this);
    using Params = TwoGammaHRFParams;
    fields_ = {{{ui_->TimeToPeakSpBx, &Params::timeToPeak},
                {ui_->TimeToUndershootSpBx, &Params::timeToUndershoot},
                {ui_->DispersionSpBx, &Params::dispersion},
                {ui_->UndershootDispersionSpBx, &Params::undershootDispersion},
                {ui_->UndershootRatioSpBx, &Params::undershootRatio},
                {ui_->OnsetSpBx, &Params::onset},
                {ui_->LengthSpBx, &Params::length}}};
    connect(ui_->StandardBtn, &QPushButton::clicked, this,
            [this] { showParams(TwoGammaHRFParams()); });
    showParams(params);
    setUpEditing();
}

HRFParamsDlg::~HRFParamsDlg() = default;

void HRFParamsDlg::showParams(const TwoGammaHRFParams& params) {
    for (const Field& field : fields_)
        field.box->setValue(double(params.*field.value));
}

bool HRFParamsDlg::apply() {
    TwoGammaHRFParams params;
    for (const Field& field : fields_)
        params.*field.value = float(field.box->value());
    taken_(params);
    return true;
}
