// The options of the feedback: the condition without it, and the best voxels of regions.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/edit_dialog.h"
#include "run/loop/run_listeners.h"

#include <memory>

class RunSession;

namespace Ui {
class NeurofeedbackOptionsDlg;
}

/// OK takes the condition without feedback and its shifts; the choice of best voxels takes effect
/// at once. Conditions are those of the run in memory, and follow it.
class NeurofeedbackOptionsDlg : public EditDialog, public RunListener {
    Q_OBJECT

public:
    NeurofeedbackOptionsDlg(RunSession& session, QWidget* parent);
    ~NeurofeedbackOptionsDlg() override;

    void documentsLeaving() override { fill(); }
    void runPrepared(QtCortivoDoc&) override { fill(); }

public Q_SLOTS:
    void enableDynamicROIs();
    void changeBestROIVoxelsRatio();

protected:
    void showEvent(QShowEvent* event) override;
    [[nodiscard]] bool apply() override;

private:
    void fill();
    void fillVoxelSelection();

    RunSession& session_;
    const std::unique_ptr<Ui::NeurofeedbackOptionsDlg> ui_;
};
