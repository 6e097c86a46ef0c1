// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/neurofeedback_dialog.h"

#include "dialogs/dialog_setup.h"
#include "feedback/ui/delayed_feedback_dialog.h"
#include "feedback/ui/dry_run_dialog.h"
#include "feedback/ui/feedback_curve_painting.h"
#include "feedback/ui/feedback_state.h"
#include "feedback/ui/neurofeedback_options_dialog.h"
#include "feedback/ui/subject_screen_chooser.h"
#include "ui_neurofeedback_dialog.h"

#include <QCloseEvent>

namespace {

constexpr char dialogName[] = "NeurofeedbackDlg";

/// A value that is the same must not disturb the operator who is writing another one.
template<typename SpinBox, typename Value> void showValue(SpinBox& field, Value value) {
    const QSignalBlocker quiet(field);
    if (field.value() != value)
        field.setValue(value);
}

} // namespace

NeurofeedbackDlg::NeurofeedbackDlg(RunSession& session, QWidget& window)
    : QDialog(&window), session_(session), ui_(std::make_unique<Ui::NeurofeedbackDlg>()),
      subjectScreen_(new SubjectScreenChooser(window, this)) {
    ui_->setupUi(this);
    ui_->SubjectScreenLayout->addWidget(subjectScreen_);
    modes_ = {ui_->m_UseTimeCourse1, ui_->m_UseTimeCourse2, ui_->m_UseTimeCourse3,
              ui_->m_UseTC1And2,     ui_->m_UseTC1And3,     ui_->m_UseTC2And3,
              ui_->m_UseTC1And2And3};
    types_ = {ui_->m_FeedbackBar, ui_->m_FeedbackTimeCourse, ui_->m_FeedbackPongSubject1,
              ui_->m_FeedbackPongSubject2, ui_->DelayedFeedbackOp};
    // Always two lines: the picture must not change its size when the text does.
    ui_->FeedbackStateLbl->setFixedHeight(2 * fontMetrics().lineSpacing());
    connectModes();
    connectTypes();
    connectScale();
    connectButtons();
    prepareDialog(*this);
    session_.listeners.add(*this, ListenerPlace::Dialogs);
}

// Hidden while it still is a dialog, so that the session lets go of it.
NeurofeedbackDlg::~NeurofeedbackDlg() {
    hide();
}

void NeurofeedbackDlg::connectModes() {
    using Dialog = NeurofeedbackDlg;
    constexpr void (Dialog::*selected[])() = {
        &Dialog::selectedROI1TimeCourse,        &Dialog::selectedROI2TimeCourse,
        &Dialog::selectedROI3TimeCourse,        &Dialog::selectedROI1And2TimeCourse,
        &Dialog::selectedROI1And3TimeCourse,    &Dialog::selectedROI2And3TimeCourse,
        &Dialog::selectedROI1And2And3TimeCourse};
    for (size_t mode = 0; mode < modes_.size(); ++mode)
        connect(modes_[mode], &QRadioButton::clicked, this, selected[mode]);
    connect(ui_->UseSVMOutputOp, &QRadioButton::clicked, this, &Dialog::selectedSVMOutput);
    connect(ui_->AverageROIsOp, &QRadioButton::clicked, this,
            &Dialog::selectedMultiROIAveragingMode);
    connect(ui_->VisualizeMultipleROIsOp, &QRadioButton::clicked, this,
            &Dialog::selectedMultiROIVisualizationMode);
}

void NeurofeedbackDlg::connectTypes() {
    using Dialog = NeurofeedbackDlg;
    for (QRadioButton* thermometer :
         {ui_->m_FeedbackBar, ui_->m_FeedbackPongSubject1, ui_->m_FeedbackPongSubject2})
        connect(thermometer, &QRadioButton::clicked, this, &Dialog::selectedBarFeedback);
    connect(ui_->m_FeedbackTimeCourse, &QRadioButton::clicked, this,
            &Dialog::selectedTCPlotFeedback);
    connect(ui_->DelayedFeedbackOp, &QRadioButton::clicked, this, &Dialog::selectedDelayedFeedback);
    const auto connectChoice = [this](QCheckBox* box, bool FeedbackChoices::*choice) {
        connect(box, &QCheckBox::clicked, this, [this, choice](bool on) {
            change([&](FeedbackChoices& choices) { choices.*choice = on; });
        });
    };
    connectChoice(ui_->BlockOutputOp, &FeedbackChoices::BlockOutput);
    connectChoice(ui_->ShowConditionNameAsInstructionOp,
                  &FeedbackChoices::ShowConditionNameAsInstruction);
    connectChoice(ui_->m_SetToMaxValue, &FeedbackChoices::SetToMaxValue);
    connectChoice(ui_->UseTCGLMB0ForBaselineOp, &FeedbackChoices::UseTCGLMB0ForBaseline);
}

void NeurofeedbackDlg::connectScale() {
    const auto connectNumber = [this](QSpinBox* field, int FeedbackChoices::*choice) {
        connect(field, &QSpinBox::valueChanged, this, [this, choice](int value) {
            change([&](FeedbackChoices& choices) { choices.*choice = value; });
        });
    };
    connectNumber(ui_->AveragePastFeedbackValuesSpBx, &FeedbackChoices::NrOfPastValues);
    connectNumber(ui_->BaselineDisplayLevelSpBx, &FeedbackChoices::DisplayBaseLevel);
    for (QDoubleSpinBox* maximum : {ui_->MaxPSCFlSpBx, ui_->MaxPSC2FlSpBx})
        connect(maximum, &QDoubleSpinBox::valueChanged, this, &NeurofeedbackDlg::changeMaxPSC);
}

void NeurofeedbackDlg::connectButtons() {
    connect(ui_->OptionsBtn, &QPushButton::clicked, this, &NeurofeedbackDlg::invokeOptionsDlg);
    connect(ui_->DelayedFeedbackOptionsBtn, &QPushButton::clicked, this,
            &NeurofeedbackDlg::onDelayedFeedbackOptions);
    connect(ui_->DryRunBtn, &QPushButton::clicked, this, &NeurofeedbackDlg::openDryRun);
    connect(ui_->FeedbackArea, &RenderArea::resized, this, [this] { session_.feedback.update(); });
}

QSize NeurofeedbackDlg::frameSize() const {
    return ui_->FeedbackArea->size();
}

void NeurofeedbackDlg::paintCurve(QPainter& painter, QSize size, const FeedbackCurve& curve) {
    paintFeedbackCurve(painter, size, session_, curve);
}

void NeurofeedbackDlg::showPicture() {
    const SessionFeedback& feedback = session_.feedback;
    // The subject's screen is painted again when it is uncovered: it has its own copy of the curve.
    subjectScreen_->showNow({feedback.frame(), frameSize(),
                             [this, curve = feedback.curve()](QPainter& painter, QSize size) {
                                 paintCurve(painter, size, curve);
                             }});
    ui_->FeedbackArea->setPicture(feedback.picture());
}

void NeurofeedbackDlg::refreshControls() {
    refreshModes();
    refreshTypes();
    refreshScale();
    refreshBaseline();
    refreshState();
}

void NeurofeedbackDlg::refreshModes() {
    const FeedbackChoices& choices = session_.feedback.choices();
    const int regions = session_.feedback.nrOfRegions();
    for (int mode = 0; mode < nrOfROIModes; ++mode) {
        modes_[size_t(mode)]->setChecked(mode == choices.roiMode && !choices.UseSVMOutput);
        modes_[size_t(mode)]->setEnabled(isModeAvailable(mode, regions));
    }
    ui_->UseSVMOutputOp->setChecked(choices.UseSVMOutput);
    ui_->UseSVMOutputOp->setEnabled(session_.feedback.classifierPredicts());
    (choices.VisualizeROIs ? ui_->VisualizeMultipleROIsOp : ui_->AverageROIsOp)->setChecked(true);
    for (QRadioButton* button : {ui_->AverageROIsOp, ui_->VisualizeMultipleROIsOp})
        button->setEnabled(regions >= 2);
}

void NeurofeedbackDlg::refreshTypes() {
    const FeedbackChoices& choices = session_.feedback.choices();
    types_[size_t(choices.type)]->setChecked(true);
    ui_->BlockOutputOp->setChecked(choices.BlockOutput);
    ui_->ShowConditionNameAsInstructionOp->setChecked(choices.ShowConditionNameAsInstruction);
}

void NeurofeedbackDlg::refreshScale() {
    const FeedbackChoices& choices = session_.feedback.choices();
    setMaxPSCValue();
    setMaxClassifierOutputValue();
    const int regions = choices.UseSVMOutput ? 0 : roisOfMode(choices.roiMode).count;
    ui_->MaxPSCFlSpBx->setEnabled(regions > 0);
    ui_->MaxPSC2FlSpBx->setEnabled(regions == 2);
    ui_->m_SetToMaxValue->setChecked(choices.SetToMaxValue);
    showValue(*ui_->AveragePastFeedbackValuesSpBx, choices.NrOfPastValues);
    showValue(*ui_->BaselineDisplayLevelSpBx, choices.DisplayBaseLevel);
}

void NeurofeedbackDlg::refreshBaseline() {
    const FeedbackChoices& choices = session_.feedback.choices();
    ui_->UseTCGLMB0ForBaselineOp->setChecked(choices.UseTCGLMB0ForBaseline);
    showValue(*ui_->BaselineStartShiftTRsSpBx, choices.BaselineStartShift);
    showValue(*ui_->BaselineEndShiftTRsSpBx, choices.BaselineEndShift);
    const QStringList names = conditionNames(currentProtocol());
    QStringList listed;
    for (int i = 0; i < ui_->BaselineCondCmBx->count(); ++i)
        listed << ui_->BaselineCondCmBx->itemText(i);
    if (names != listed) {
        ui_->BaselineCondCmBx->clear();
        ui_->BaselineCondCmBx->addItems(names);
    }
}

void NeurofeedbackDlg::refreshState() {
    const SessionFeedback& feedback = session_.feedback;
    QString reasons = "What the display lacks, or what it shows now";
    ui_->FeedbackStateLbl->setText(feedbackStateText(feedback, [&] {
        FeedbackForecast forecast = forecastFeedback(feedback.choices(), currentProtocol(),
                                                     feedback.nrOfVolumes(), feedback.TR());
        reasons = forecast.text;
        return forecast;
    }));
    ui_->FeedbackStateLbl->setToolTip(reasons);
}

const StimulationProtocol& NeurofeedbackDlg::currentProtocol() const {
    return session_.feedback.awaitsRun() ? planned_ : session_.functionalDocument->protocol;
}

void NeurofeedbackDlg::change(const std::function<void(FeedbackChoices&)>& edit) {
    session_.feedback.change(edit);
    // Also where nothing has changed: the control that was used may show something else.
    refreshControls();
}

void NeurofeedbackDlg::selectedSVMOutput() {
    change(chooseClassifierOutput);
}

void NeurofeedbackDlg::selectROIMode(int mode) {
    if (!session_.feedback.documentExists() ||
        !isModeAvailable(mode, session_.feedback.nrOfRegions()))
        return refreshControls();
    change([mode](FeedbackChoices& choices) {
        choices.roiMode = mode;
        choices.UseSVMOutput = false;
    });
}

void NeurofeedbackDlg::showROIsApart(bool apart) {
    change([apart](FeedbackChoices& choices) { choices.VisualizeROIs = apart; });
}

void NeurofeedbackDlg::selectType(FeedbackType type) {
    change([type](FeedbackChoices& choices) { choices.type = type; });
}

void NeurofeedbackDlg::selectedTCPlotFeedback() {
    selectType(FeedbackType::TimeCourse);
}

void NeurofeedbackDlg::selectedBarFeedback() {
    selectType(ui_->m_FeedbackPongSubject1->isChecked()   ? FeedbackType::PongSubject1
               : ui_->m_FeedbackPongSubject2->isChecked() ? FeedbackType::PongSubject2
                                                          : FeedbackType::Thermometer);
}

void NeurofeedbackDlg::selectedDelayedFeedback() {
    change(chooseDelayedFeedback);
    onDelayedFeedbackOptions();
}

void NeurofeedbackDlg::changedArrowLevel() {
    if (session_.feedback.documentExists())
        session_.feedback.update();
}

void NeurofeedbackDlg::changeMaxPSC() {
    const ShownMaxima maxima{ui_->MaxPSCFlSpBx->value(), ui_->MaxPSC2FlSpBx->value()};
    change([&maxima](FeedbackChoices& choices) { storeMaxima(choices, maxima); });
}

void NeurofeedbackDlg::setMaxPSCValue() {
    const FeedbackChoices& choices = session_.feedback.choices();
    const ShownMaxima maxima = shownMaxima(choices);
    showValue(*ui_->MaxPSCFlSpBx, maxima.first);
    if (roisOfMode(choices.roiMode).count == 2)
        showValue(*ui_->MaxPSC2FlSpBx, maxima.second);
}

void NeurofeedbackDlg::setMaxClassifierOutputValue() {
    if (session_.feedback.choices().UseSVMOutput)
        showValue(*ui_->MaxPSCFlSpBx, maximumOfClassifier);
}

void NeurofeedbackDlg::onDelayedFeedbackOptions() {
    openDelayedFeedbackDialog(session_, *this);
}

void NeurofeedbackDlg::invokeOptionsDlg() {
    if (!options_)
        options_ = new NeurofeedbackOptionsDlg(session_, this);
    showInFront(*options_);
}

void NeurofeedbackDlg::openDryRun() {
    openFeedbackDryRunDialog(session_, *this, [this](const SubjectPicture& picture) {
        subjectScreen_->showNow(picture);
    });
}

void NeurofeedbackDlg::settingsFileChanged() {
    stopListening();
    setObjectName({}); // until it is gone, another one may be opened
    hide();
    deleteLater();
}

void NeurofeedbackDlg::documentsLeaving() {
    planned_ = session_.feedback.protocol();
    refreshControls();
}

// Being minimized and restored is no reason to begin anew.
void NeurofeedbackDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    planned_ = session_.feedback.protocol();
    session_.feedback.open(*this);
}

void NeurofeedbackDlg::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (event->spontaneous())
        return;
    for (QDialog* dialog : findChildren<QDialog*>(Qt::FindDirectChildrenOnly))
        dialog->close();
    session_.feedback.close();
    subjectScreen_->showNow({FeedbackFrame(), frameSize(), {}});
}

void NeurofeedbackDlg::closeEvent(QCloseEvent* event) {
    QDialog::reject();
    event->accept();
}

void NeurofeedbackDlg::reject() {
    if (!session_.phase.canBeStopped())
        QDialog::reject();
}

void NeurofeedbackDlg::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_D &&
        event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier))
        return change([](FeedbackChoices& choices) { choices.ShowValues = !choices.ShowValues; });
    QDialog::keyPressEvent(event);
}

void openNeurofeedbackDialog(RunSession& session, QWidget& window) {
    auto* dialog = window.findChild<NeurofeedbackDlg*>(dialogName);
    if (!dialog)
        dialog = new NeurofeedbackDlg(session, window);
    showBeside(*dialog);
}
