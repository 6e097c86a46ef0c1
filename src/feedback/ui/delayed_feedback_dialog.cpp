// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/delayed_feedback_dialog.h"

#include "base/messages.h"
#include "dialogs/dialog_setup.h"
#include "run/session/feedback_records.h"
#include "run/session/run_session.h"
#include "ui_delayed_feedback_dialog.h"

#include <QPointer>
#include <QScopedValueRollback>
#include <QSignalBlocker>

namespace {

/// The condition of the same name; the one to begin with if there is none.
int sameCondition(const StimulationProtocol& before, int condition,
                  const StimulationProtocol& now) {
    const auto index = size_t(condition);
    if (condition >= 0 && index < before.conditions.size()) {
        const QString& name = before.conditions[index].name;
        if (index < now.conditions.size() && now.conditions[index].name == name)
            return condition;
        const auto found = std::ranges::find(now.conditions, name, &ProtocolCondition::name);
        if (found != now.conditions.end())
            return int(found - now.conditions.begin());
    }
    return firstTrialCondition(now.nrOfConditions());
}

DelayedFeedbackSettings firstSettings(const RunSession& session,
                                      const StimulationProtocol& protocol) {
    if (session.feedback.delayed())
        return *session.feedback.delayed();
    DelayedFeedbackSettings settings;
    settings.condition = firstTrialCondition(protocol.nrOfConditions());
    return settings;
}

} // namespace

DelayedFeedbackDlg::DelayedFeedbackDlg(RunSession& session, const StimulationProtocol& planned,
                                       QWidget* parent)
    : EditDialog(parent), session_(session), ui_(std::make_unique<Ui::DelayedFeedbackDlg>()),
      protocol_(session.feedback.awaitsRun() ? planned : session.feedback.protocol()),
      settings_(firstSettings(session, protocol_)) {
    ui_->setupUi(this);
    fillConditions();
    connectFields();
    setUpEditing();
    showFields();
    showMessage();
    session_.feedback.setDelayed(settings_.applied());
    session_.listeners.add(*this, ListenerPlace::Dialogs);
}

DelayedFeedbackDlg::~DelayedFeedbackDlg() = default;

void DelayedFeedbackDlg::fillConditions() {
    const QSignalBlocker quiet(ui_->ReferenceConditionCmBx);
    ui_->ReferenceConditionCmBx->clear();
    ui_->ReferenceConditionCmBx->addItems(conditionNames(protocol_));
    ui_->MillisecondLbl->setVisible(protocol_.resolutionOfTime == ResolutionOfTime::Milliseconds);
}

void DelayedFeedbackDlg::connectFields() {
    for (QSpinBox* field : {ui_->BaselineFromSpBx, ui_->BaselineToSpBx, ui_->ModulationFromSpBx,
                            ui_->ModulationToSpBx, ui_->UpdateFeedbackFileSpBx})
        connect(field, &QSpinBox::valueChanged, this, &DelayedFeedbackDlg::readFields);
    connect(ui_->ScaleFactorDSpBx, &QDoubleSpinBox::valueChanged, this,
            &DelayedFeedbackDlg::readFields);
    connect(ui_->DelayedFeedbackFileNameEd, &QLineEdit::textChanged, this,
            &DelayedFeedbackDlg::readFields);
    connect(ui_->ReferenceConditionCmBx, &QComboBox::currentIndexChanged, this,
            &DelayedFeedbackDlg::onSelectedConditionChanged);
    connect(ui_->CloseBtn, &QPushButton::clicked, this, &DelayedFeedbackDlg::onClose);
}

void DelayedFeedbackDlg::readFields() {
    if (showing_)
        return;
    DelayedFeedbackSettings& edited = settings_.edited();
    edited.BaselineFrom = ui_->BaselineFromSpBx->value();
    edited.BaselineTo = ui_->BaselineToSpBx->value();
    edited.ModulationFrom = ui_->ModulationFromSpBx->value();
    edited.ModulationTo = ui_->ModulationToSpBx->value();
    edited.UpdateFeedbackFile = ui_->UpdateFeedbackFileSpBx->value();
    edited.ScaleFactor = ui_->ScaleFactorDSpBx->value();
    edited.fileName = ui_->DelayedFeedbackFileNameEd->text();
    refreshButtons();
}

void DelayedFeedbackDlg::showFields() {
    const QScopedValueRollback<bool> filling(showing_, true);
    const QSignalBlocker quiet(ui_->ReferenceConditionCmBx);
    const DelayedFeedbackSettings& edited = settings_.edited();
    ui_->ReferenceConditionCmBx->setCurrentIndex(edited.condition);
    ui_->BaselineFromSpBx->setValue(edited.BaselineFrom);
    ui_->BaselineToSpBx->setValue(edited.BaselineTo);
    ui_->ModulationFromSpBx->setValue(edited.ModulationFrom);
    ui_->ModulationToSpBx->setValue(edited.ModulationTo);
    ui_->UpdateFeedbackFileSpBx->setValue(edited.UpdateFeedbackFile);
    ui_->ScaleFactorDSpBx->setValue(edited.ScaleFactor);
    ui_->DelayedFeedbackFileNameEd->setText(edited.fileName);
    refreshButtons();
}

void DelayedFeedbackDlg::showMessage() {
    ui_->MessageEd->setText(session_.feedback.delayedMessage());
}

void DelayedFeedbackDlg::onSelectedConditionChanged(int index) {
    if (index < 0 || index >= protocol_.nrOfConditions())
        return;
    settings_.edited().condition = index;
    fitWindowToCondition(settings_.edited(), protocol_.conditions[size_t(index)],
                         session_.feedback.TR());
    showFields();
}

void DelayedFeedbackDlg::onApply() {
    applyAndStay();
}

void DelayedFeedbackDlg::onClose() {
    reject();
}

bool DelayedFeedbackDlg::apply() {
    const QString fault = delayedFeedbackFault(settings_.edited());
    if (!fault.isEmpty()) {
        showWarning(fault);
        return false;
    }
    session_.feedback.setDelayed(settings_.applied());
    return true;
}

void DelayedFeedbackDlg::revert() {
    settings_.revert();
    showFields();
}

// What the operator has not applied yet stays so.
void DelayedFeedbackDlg::runPrepared(QtCortivoDoc& functional) {
    DelayedFeedbackSettings edited = settings_.edited();
    settings_.revert();
    int& applied = settings_.edited().condition;
    applied = sameCondition(protocol_, applied, functional.protocol);
    edited.condition = sameCondition(protocol_, edited.condition, functional.protocol);
    session_.feedback.setDelayed(settings_.applied());
    settings_.edited() = std::move(edited);
    protocol_ = functional.protocol;
    fillConditions();
    showFields();
    showMessage();
}

void DelayedFeedbackDlg::endOfVolume(const VolumeAtHand&) {
    showMessage();
}

// A run that is recovered brings its own settings.
void DelayedFeedbackDlg::recordPlayed(const RunRecord& record) {
    if (record.name != feedbackRecord || !session_.feedback.delayed())
        return;
    settings_ = EditedCopy(*session_.feedback.delayed());
    showFields();
}

void DelayedFeedbackDlg::settingsFileChanged() {
    stopListening();
    hide();
    deleteLater();
}

void openDelayedFeedbackDialog(RunSession& session, QWidget& window) {
    auto* dialog = window.findChild<DelayedFeedbackDlg*>();
    // The one of another settings file is about to be deleted.
    if (dialog && !session.feedback.delayed()) {
        delete dialog;
        dialog = nullptr;
    }
    if (!dialog) {
        const QString path = session.settings.StimulationProtocol;
        StimulationProtocol planned;
        const QPointer<QWidget> parent(&window);
        if (session.feedback.awaitsRun() && isProtocolPathSet(path))
            (void)readProtocolForDelayedFeedback(path, planned);
        if (!parent) // auto-advance took another settings file while a message stood there
            return;
        dialog = new DelayedFeedbackDlg(session, planned, &window);
    }
    showInFront(*dialog);
}
