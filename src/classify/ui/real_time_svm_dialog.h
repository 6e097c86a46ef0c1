// The dialog of the classifier that predicts during a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/session/run_session.h"

#include <QDialog>
#include <memory>

class QAbstractButton;

namespace Ui {
class RealTimeSVMClassificationDlg;
}

/// The controls show the choices of `session.classifier` and edit them. While the dialog is shown
/// the classifier of the session is open; closing it ends the prediction, and Escape does not close
/// it while it predicts. It goes with the settings file.
class RealTimeSVMClassificationDlg : public QDialog, public ClassifierScreen, public RunListener {
    Q_OBJECT

public:
    RealTimeSVMClassificationDlg(RunSession& session, QWidget& window);
    ~RealTimeSVMClassificationDlg() override;

    void log(const QString& text) override;
    void refreshControls() override;

    void settingsFileChanged() override;

public Q_SLOTS:
    void onTrialEstimationMode() { selectMode(PredictionMode::EndOfTrial); }
    void onPointInConditionEstimationMode() { selectMode(PredictionMode::WithinCondition); }
    void onContinousPointEstimationMode() { selectMode(PredictionMode::Continuous); }
    /// Takes over the option, with the post value that it begins with.
    void onUseConditionDuration();
    void toggleIncrementalPrediction();
    void selectClassifierFile();
    void btnInBoxClicked(QAbstractButton* button);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void connectControls();
    void change(const std::function<void(LiveOptions&)>& edit);
    void selectMode(PredictionMode mode);
    void refreshModes();
    void refreshModel();
    void refreshPrediction();

    RunSession& session_;
    const std::unique_ptr<Ui::RealTimeSVMClassificationDlg> ui_;
    OpenChooser chooser_;
};

/// Opens the dialog as a child of `window`, or brings the open one to the front, and returns.
void openRealTimeSVMDialog(RunSession& session, QWidget& window);
