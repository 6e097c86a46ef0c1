// The options of training: scaling, parameters, the search for C.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/feature_scaling.h"
#include "classify/svm_library.h"
#include "dialogs/edit_dialog.h"

#include <functional>
#include <memory>

namespace Ui {
class SVMOptionsDlg;
}

/// What the dialog edits; the kernel is chosen elsewhere.
struct SVMTrainingOptions {
    ScalingOptions scaling;
    SVMOptions svm;
    bool searchLinear = false;
    bool searchRBF = false;
};

/// OK gives the options to `taken`.
class SVMOptionsDlg : public EditDialog {
    Q_OBJECT

public:
    using Taken = std::function<void(const SVMTrainingOptions& options)>;
    SVMOptionsDlg(const SVMTrainingOptions& options, Taken taken, QWidget* parent);
    ~SVMOptionsDlg() override;

protected:
    /// Refuses a range that is empty.
    [[nodiscard]] bool apply() override;

private:
    void refreshRange();

    const std::unique_ptr<Ui::SVMOptionsDlg> ui_;
    SVMTrainingOptions options_;
    Taken taken_;
};
