// The constants of a response that was fitted to a person.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/edit_dialog.h"
#include "stats/hrf.h"

#include <array>
#include <functional>
#include <memory>

class QDoubleSpinBox;

namespace Ui {
class HRFParamsDlg;
}

/// OK gives the constants to `taken`.
class HRFParamsDlg : public EditDialog {
    Q_OBJECT

public:
    using Taken = std::function<void(const TwoGammaHRFParams& params)>;
    HRFParamsDlg(const TwoGammaHRFParams& params, Taken taken, QWidget* parent);
    ~HRFParamsDlg() override;

protected:
    [[nodiscard]] bool apply() override;

private:
    struct Field {
        QDoubleSpinBox* box;
        float TwoGammaHRFParams::*value;
    };
    void showParams(const TwoGammaHRFParams& params);

    const std::unique_ptr<Ui::HRFParamsDlg> ui_;
    std::array<Field, 7> fields_;
    Taken taken_;
};
