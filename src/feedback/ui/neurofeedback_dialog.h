// The dialog that shows the feedback to the subject, and in which the operator chooses it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/session/run_session.h"

#include <QDialog>
#include <QPointer>
#include <array>
#include <memory>

class QRadioButton;
class SubjectScreenChooser;

namespace Ui {
class NeurofeedbackDlg;
}

/// The controls show the choices of `session.feedback` and edit them; the picture is its picture.
/// While the dialog is shown the feedback of the session is open. It stays as it is when it is
/// closed, and goes with the settings file.
class NeurofeedbackDlg : public QDialog, public FeedbackScreen, public RunListener {
    Q_OBJECT

public:
    /// `window` is the main window, which keeps off the subject's screen.
    NeurofeedbackDlg(RunSession& session, QWidget& window);
    ~NeurofeedbackDlg() override;

    [[nodiscard]] QSize frameSize() const override;
    void paintCurve(QPainter& painter, QSize size, const FeedbackCurve& curve) override;
    void showPicture() override;
    void refreshControls() override;

    void settingsFileChanged() override;
    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc&) override { refreshControls(); }

public Q_SLOTS:
    void selectedSVMOutput();
    void selectedROI1TimeCourse() { selectROIMode(useROI1); }
    void selectedROI2TimeCourse() { selectROIMode(useROI2); }
    void selectedROI3TimeCourse() { selectROIMode(useROI3); }
    void selectedROI1And2TimeCourse() { selectROIMode(useROI1And2); }
    void selectedROI1And3TimeCourse() { selectROIMode(useROI1And3); }
    void selectedROI2And3TimeCourse() { selectROIMode(useROI2And3); }
    void selectedROI1And2And3TimeCourse() { selectROIMode(useROI1And2And3); }
    void selectedMultiROIAveragingMode() { showROIsApart(false); }
    void selectedMultiROIVisualizationMode() { showROIsApart(true); }
    void selectedTCPlotFeedback();
    /// Of the three types with a thermometer, the one that is checked.
    void selectedBarFeedback();
    /// Also opens its options.
    void selectedDelayedFeedback();
    void changedArrowLevel();
    /// Takes over what the fields of the maxima say.
    void changeMaxPSC();
    /// Shows the maxima of the mode.
    void setMaxPSCValue();
    /// Shows that of the classifier, if it is chosen.
    void setMaxClassifierOutputValue();
    void onDelayedFeedbackOptions();
    void invokeOptionsDlg();
    void openDryRun();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// Of Escape: closes the dialog, but not while a run is prepared or recorded.
    void reject() override;

private:
    void connectModes();
    void connectTypes();
    void connectScale();
    void connectButtons();
    void change(const std::function<void(FeedbackChoices&)>& edit);
    void selectROIMode(int mode);
    void showROIsApart(bool apart);
    void selectType(FeedbackType type);
    void refreshModes();
    void refreshTypes();
    void refreshScale();
    void refreshBaseline();
    void refreshState();
    [[nodiscard]] const StimulationProtocol& currentProtocol() const;

    RunSession& session_;
    const std::unique_ptr<Ui::NeurofeedbackDlg> ui_;
    SubjectScreenChooser* subjectScreen_;
    std::array<QRadioButton*, nrOfROIModes> modes_;      ///< by ROIMode
    std::array<QRadioButton*, nrOfFeedbackTypes> types_; ///< by FeedbackType
    StimulationProtocol planned_;                        ///< of the settings, for use without a run
    QPointer<QDialog> options_;
};

/// Shows the dialog beside the slices, as a child of `window`, or raises it.
void openNeurofeedbackDialog(RunSession& session, QWidget& window);
