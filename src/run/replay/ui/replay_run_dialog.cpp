// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/ui/replay_run_dialog.h"

#include "base/messages.h"
#include "base/paths.h"
#include "dialogs/dialog_setup.h"
#include "run/session/settings_file_watch.h"
#include "ui_replay_run_dialog.h"

#include <QPointer>

namespace {

constexpr int planLines = 4;

} // namespace

ReplayRunDlg::ReplayRunDlg(RunSettings current, QWidget* parent)
    : EditDialog(parent), ui_(std::make_unique<Ui::ReplayRunDlg>()), current_(std::move(current)) {
    ui_->setupUi(this);
    // Room for the longest text, so that nothing moves while the operator chooses.
    ui_->PlanInfo->setMinimumHeight(planLines * fontMetrics().lineSpacing());
    connectControls();
    setUpEditing();
    ui_->RunEdit->setText(projectOf(current_));
    runChanged();
}

ReplayRunDlg::~ReplayRunDlg() = default;

void ReplayRunDlg::connectControls() {
    connect(ui_->RunEdit, &QLineEdit::textChanged, this, &ReplayRunDlg::runChanged);
    connect(ui_->FolderEdit, &QLineEdit::textEdited, this, [this] { folderTyped_ = true; });
    for (QLineEdit* field : {ui_->SettingsEdit, ui_->FolderEdit})
        connect(field, &QLineEdit::textChanged, this, &ReplayRunDlg::choicesChanged);
    for (QRadioButton* button : {ui_->OtherSettingsBtn, ui_->AtTRBtn})
        connect(button, &QRadioButton::toggled, this, &ReplayRunDlg::choicesChanged);
    connect(ui_->BrowseRunBtn, &QPushButton::clicked, this,
            [this] { browse(*ui_->RunEdit, "Runs (*.vcj *.fmr)"); });
    connect(ui_->BrowseSettingsBtn, &QPushButton::clicked, this,
            [this] { browse(*ui_->SettingsEdit, "Velo-Cortivo settings files (*.vco)"); });
}

void ReplayRunDlg::done(int result) {
    stopListening(); // the run that follows is no reason to close it once more
    EditDialog::done(result);
}

ReplayChoices ReplayRunDlg::choices() const {
    return {ui_->OwnSettingsBtn->isChecked(),
            paths::withForwardSlashes(ui_->SettingsEdit->text().trimmed()), ui_->FolderEdit->text(),
            ui_->AtTRBtn->isChecked()};
}

void ReplayRunDlg::browse(QLineEdit& field, const QString& filter) {
    // The chooser processes events: a run may begin in them and delete the dialog.
    const QPointer<ReplayRunDlg> self(this);
    const QString& start = field.text().isEmpty() ? current_.settingsFilePath : field.text();
    const QString path = waitForFileToOpen("Open File", paths::folderWithSlash(start), filter);
    if (!self || path.isEmpty())
        return;
    if (&field == ui_->SettingsEdit)
        ui_->OtherSettingsBtn->setChecked(true);
    field.setText(path);
}

void ReplayRunDlg::runChanged() {
    run_ = describeReplayableRun(ui_->RunEdit->text(), current_);
    if (!folderTyped_)
        ui_->FolderEdit->setText(proposedReplayFolder(run_.path));
    choicesChanged();
}

void ReplayRunDlg::choicesChanged() {
    ui_->SettingsEdit->setEnabled(ui_->OtherSettingsBtn->isChecked());
    const QString fault = findReplayFault(run_, choices()).text;
    ui_->PlanInfo->setText(fault.isEmpty() ? replayText(run_, choices()) : fault);
}

QWidget* ReplayRunDlg::controlOf(ReplayChoice choice) const {
    switch (choice) {
    case ReplayChoice::None:
        break;
    case ReplayChoice::Run:
        return ui_->RunEdit;
    case ReplayChoice::Settings:
        return ui_->OwnSettingsBtn->isChecked() ? static_cast<QWidget*>(ui_->OtherSettingsBtn)
                                                : ui_->SettingsEdit;
    case ReplayChoice::Folder:
        return ui_->FolderEdit;
    }
    return nullptr;
}

bool ReplayRunDlg::apply() {
    run_ = describeReplayableRun(ui_->RunEdit->text(), current_); // it may have gone meanwhile
    const ReplayFault fault = findReplayFault(run_, choices());
    if (fault.choice == ReplayChoice::None)
        return true;
    // A message processes events: a run may begin in them and delete the dialog.
    const QPointer<ReplayRunDlg> self(this);
    showWarning("ERROR: " + fault.text);
    if (self)
        returnToControl(*controlOf(fault.choice));
    return false;
}

void openReplayRunDialog(RunSession& session, SettingsFileWatch& watch, QWidget& window) {
    const QPointer<QWidget> stillThere(&window);
    const RunSettings current = settingsOfCurrentFile(session.settings);
    if (!stillThere || !session.phase.isIdle()) // a message about the settings file was answered
        return;
    delete window.findChild<ReplayRunDlg*>();
    auto* dialog = new ReplayRunDlg(current, &window);
    session.listeners.add(*dialog, ListenerPlace::Dialogs);
    QObject::connect(dialog, &QDialog::finished, dialog, &QObject::deleteLater);
    QObject::connect(dialog, &QDialog::accepted, &window, [&watch, dialog] {
        const PlayOptions options = replayOptions(dialog->run(), dialog->choices());
        if (dialog->run().keepsSettings)
            watch.playJournal(options, PlayPurpose::Replay);
        else
            watch.playSavedRun(options, dialog->choices().ownSettings);
    });
    // Returns at once: auto-start may begin a run, which closes the dialog.
    dialog->open();
}
