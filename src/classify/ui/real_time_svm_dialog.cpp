// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/real_time_svm_dialog.h"

#include "base/paths.h"
#include "dialogs/dialog_setup.h"
#include "ui_real_time_svm_dialog.h"

#include <QCloseEvent>
#include <QPointer>
#include <QSignalBlocker>

namespace {

constexpr char dialogName[] = "RealTimeSVMClassificationDlg";

/// Setting the same value again would disturb the operator who is typing another one.
void showValue(QSpinBox& field, int value) {
    const QSignalBlocker quiet(field);
    if (field.value() != value)
        field.setValue(value);
}

QString stateText(const SessionClassifier& classifier) {
    if (classifier.modelPath().isEmpty())
        return "Choose a trained classifier to predict with.";
    const QString model = QStringLiteral("%1, %2 voxels")
                              .arg(paths::fileName(classifier.modelPath()))
                              .arg(classifier.NrOfVoxelsUsed());
    if (!classifier.IncrementalPredictionOn())
        return "Off: " + model;
    const int patterns = classifier.NrOfOnlinePatterns();
    const QString text = QStringLiteral("Predicting with %1, %2 %3 so far")
                             .arg(model)
                             .arg(patterns)
                             .arg(patterns == 1 ? "pattern" : "patterns");
    return classifier.options().mode == PredictionMode::Continuous
               ? text + ". This mode makes no predictions."
               : text;
}

} // namespace

RealTimeSVMClassificationDlg::RealTimeSVMClassificationDlg(RunSession& session, QWidget& window)
    : QDialog(&window), session_(session),
      ui_(std::make_unique<Ui::RealTimeSVMClassificationDlg>()) {
    ui_->setupUi(this);
    ui_->btnInBox->button(QDialogButtonBox::Close)
        ->setToolTip("Close the dialog, which ends the prediction");
    QFont font("Courier New");
    font.setStyleHint(QFont::Monospace);
    font.setPointSizeF(0.9 * font.pointSizeF()); // a prediction fits into two lines
    ui_->LogPredictionsTxEd->setFont(font);
    connectControls();
    prepareDialog(*this);
    session_.listeners.add(*this, ListenerPlace::Dialogs);
}

// Hidden while it still is a dialog, so that the session lets go of it.
RealTimeSVMClassificationDlg::~RealTimeSVMClassificationDlg() {
    hide();
}

void RealTimeSVMClassificationDlg::connectControls() {
    using Dialog = RealTimeSVMClassificationDlg;
    const std::pair<QGroupBox*, void (Dialog::*)()> modes[] = {
        {ui_->TrialEstimationApproachGrpBx, &Dialog::onTrialEstimationMode},
        {ui_->PointInConditionEstimationApproachGrpBx, &Dialog::onPointInConditionEstimationMode},
        {ui_->ContinousPointEstimationApproachGrpBx, &Dialog::onContinousPointEstimationMode}};
    for (const auto& [group, selected] : modes)
        connect(group, &QGroupBox::clicked, this, selected);
    const auto connectNumber = [this](QSpinBox* field,
                                      const std::function<int&(LiveOptions&)>& of) {
        connect(field, &QSpinBox::valueChanged, this, [this, of](int value) {
            change([&](LiveOptions& options) { of(options) = value; });
        });
    };
    connectNumber(ui_->PreOnsetSpBx, [](LiveOptions& o) -> int& { return o.trial.preOnset; });
    connectNumber(ui_->PostOnsetSpBx, [](LiveOptions& o) -> int& { return o.trial.postOnset; });
    connectNumber(ui_->PreOnsetPointEstimationSpBx,
                  [](LiveOptions& o) -> int& { return o.pointPreOnset; });
    connectNumber(ui_->HRDelaySpBx, [](LiveOptions& o) -> int& { return o.haemodynamicDelay; });
    connectNumber(ui_->PostCondPointEstimationSpBx,
                  [](LiveOptions& o) -> int& { return o.postCondition; });
    connect(ui_->UseTrialDurationForDataWindowOp, &QCheckBox::clicked, this,
            &Dialog::onUseConditionDuration);
    connect(ui_->PredictBtn, &QPushButton::clicked, this, &Dialog::toggleIncrementalPrediction);
    connect(ui_->SelectTrainedClassfierFileBtn, &QPushButton::clicked, this,
            &Dialog::selectClassifierFile);
    connect(ui_->btnInBox, &QDialogButtonBox::clicked, this, &Dialog::btnInBoxClicked);
}

void RealTimeSVMClassificationDlg::log(const QString& text) {
    ui_->LogPredictionsTxEd->appendPlainText(text);
}

void RealTimeSVMClassificationDlg::change(const std::function<void(LiveOptions&)>& edit) {
    LiveOptions options = session_.classifier.options();
    edit(options);
    session_.classifier.setOptions(options);
    refreshControls();
}

// A click on the title of the chosen mode unchecks it, which the refresh takes back.
void RealTimeSVMClassificationDlg::selectMode(PredictionMode mode) {
    change([mode](LiveOptions& options) { options.mode = mode; });
}

void RealTimeSVMClassificationDlg::onUseConditionDuration() {
    change([this](LiveOptions& options) {
        chooseTrialDuration(options.trial, ui_->UseTrialDurationForDataWindowOp->isChecked());
    });
}

void RealTimeSVMClassificationDlg::toggleIncrementalPrediction() {
    const QPointer<RealTimeSVMClassificationDlg> self(this);
    session_.classifier.toggleIncrementalPrediction();
    if (self) // a message may have stood there while another settings file came
        refreshControls();
}

void RealTimeSVMClassificationDlg::selectClassifierFile() {
    const SessionClassifier& classifier = session_.classifier;
    chooseFileToOpen(
        "Select SVM File",
        classifier.modelPath().isEmpty() ? classifier.targetFolder() : classifier.modelPath(),
        "Trained SVM model files (*.svm)",
        [this](const QString& path) { session_.classifier.chooseModel(path); }, &chooser_);
}

void RealTimeSVMClassificationDlg::btnInBoxClicked(QAbstractButton* button) {
    if (ui_->btnInBox->standardButton(button) == QDialogButtonBox::Close)
        close();
}

void RealTimeSVMClassificationDlg::refreshControls() {
    refreshModes();
    refreshModel();
    refreshPrediction();
}

void RealTimeSVMClassificationDlg::refreshModes() {
    const LiveOptions& options = session_.classifier.options();
    ui_->TrialEstimationApproachGrpBx->setChecked(options.mode == PredictionMode::EndOfTrial);
    ui_->PointInConditionEstimationApproachGrpBx->setChecked(options.mode ==
                                                             PredictionMode::WithinCondition);
    ui_->ContinousPointEstimationApproachGrpBx->setChecked(options.mode ==
                                                           PredictionMode::Continuous);
    const TrialOptions& trial = options.trial;
    showValue(*ui_->PreOnsetSpBx, trial.preOnset);
    showValue(*ui_->PostOnsetSpBx, trial.postOnset);
    showValue(*ui_->PreOnsetPointEstimationSpBx, options.pointPreOnset);
    showValue(*ui_->HRDelaySpBx, options.haemodynamicDelay);
    showValue(*ui_->PostCondPointEstimationSpBx, options.postCondition);
    ui_->UseTrialDurationForDataWindowOp->setChecked(trial.useTrialDuration);
    ui_->PostOnsetLbl->setText(trial.useTrialDuration ? "P&ost-trial:" : "P&ost-onset:");
}

void RealTimeSVMClassificationDlg::refreshModel() {
    const SessionClassifier& classifier = session_.classifier;
    const QString& path = classifier.modelPath();
    ui_->TrainedClassifierFileEd->setText(paths::fileName(path));
    ui_->TrainedClassifierFileEd->setToolTip(path.isEmpty() ? "The model to predict with: none"
                                                            : path);
    const bool on = classifier.IncrementalPredictionOn();
    ui_->SelectTrainedClassfierFileBtn->setEnabled(!on);
    ui_->PredictBtn->setText(on ? "&Predicting..." : "&Predict");
    ui_->ClassifierStateLbl->setText(stateText(classifier));
}

void RealTimeSVMClassificationDlg::refreshPrediction() {
    const std::optional<LivePrediction>& last = session_.classifier.lastPrediction();
    for (QLabel* label : {ui_->PredictedClassLbl, ui_->PredictedValueLbl})
        label->setEnabled(session_.classifier.predictedClass() > 0);
    if (!last) {
        ui_->PredictedClassLbl->setText("-");
        ui_->PredictedValueLbl->setText("No prediction yet");
        return;
    }
    const SVMPrediction& prediction = last->prediction;
    const QString value = last->twoClasses
                              ? QStringLiteral("value %1, ").arg(prediction.output, 0, 'f', 3)
                              : QString();
    ui_->PredictedClassLbl->setText(QStringLiteral("Class %1").arg(prediction.classNumber));
    ui_->PredictedValueLbl->setText(value + QStringLiteral("volume %1").arg(last->volume + 1));
}

void RealTimeSVMClassificationDlg::settingsFileChanged() {
    stopListening();
    setObjectName({}); // until it is gone, another one may be opened
    hide();
    deleteLater();
}

// Being minimized and restored is no reason to begin anew.
void RealTimeSVMClassificationDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous())
        session_.classifier.open(*this);
}

void RealTimeSVMClassificationDlg::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (event->spontaneous())
        return;
    chooser_.close();
    session_.classifier.close();
}

void RealTimeSVMClassificationDlg::closeEvent(QCloseEvent* event) {
    QDialog::reject();
    event->accept();
}

void RealTimeSVMClassificationDlg::reject() {
    if (!session_.classifier.IncrementalPredictionOn() || !session_.phase.canBeStopped())
        QDialog::reject();
}

void openRealTimeSVMDialog(RunSession& session, QWidget& window) {
    auto* dialog = window.findChild<RealTimeSVMClassificationDlg*>(dialogName);
    if (!dialog)
        dialog = new RealTimeSVMClassificationDlg(session, window);
    showBeside(*dialog);
}
