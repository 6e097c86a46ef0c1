// The dialog in which the operator chooses the region to be modelled.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/edit_dialog.h"
#include "run/loop/run_listeners.h"

#include <memory>

class RunSession;

namespace Ui {
class ROIGLMDlg;
}

/// Asks for the region, where there are several, and for the correction of serial correlations. It
/// closes when the run or its regions change.
class ROIGLMDlg : public EditDialog, public RunListener {
    Q_OBJECT

public:
    ROIGLMDlg(int nrOfRegions, QWidget* parent);
    ~ROIGLMDlg() override;

    /// The number of the chosen region, from 0.
    [[nodiscard]] int region() const;
    [[nodiscard]] bool correctSerialCorrelations() const;

    void documentsLeaving() override { leave(); }
    void settingsFileChanged() override { leave(); }
    void regionsChanged(QtCortivoDoc&) override { leave(); }

protected:
    [[nodiscard]] bool apply() override { return true; }

private:
    void leave();

    const std::unique_ptr<Ui::ROIGLMDlg> ui_;
};

/// Opens the dialog as a child of `window`, replacing one that is open, and returns; "OK" fits the
/// model and shows its windows. Nothing happens while no region can be modelled.
void openROIGLMDialog(RunSession& session, QWidget& window);
