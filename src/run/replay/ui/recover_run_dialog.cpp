// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/ui/recover_run_dialog.h"

#include "base/messages.h"
#include "base/paths.h"
#include "dialogs/dialog_setup.h"
#include "run/session/settings_file_watch.h"
#include "ui_recover_run_dialog.h"

#include <QDateTime>
#include <QFile>
#include <QHeaderView>
#include <QPointer>
#include <algorithm>

namespace {

constexpr int infoLines = 5;
constexpr int columnGap = 16; // pixels

} // namespace

RecoverRunDlg::RecoverRunDlg(RunSession& session, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::RecoverRunDlg>()), session_(session),
      journals_(offeredJournals(session.unfinishedJournals())) {
    ui_->setupUi(this);
    ui_->JournalTable->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // Room for the longest text, so that nothing moves from row to row.
    ui_->JournalInfo->setMinimumHeight(infoLines * fontMetrics().lineSpacing());
    connectControls();
    prepareDialog(*this);
    fillTable(0);
    ui_->JournalTable->setFocus();
}

RecoverRunDlg::~RecoverRunDlg() = default;

void RecoverRunDlg::connectControls() {
    connect(ui_->JournalTable, &QTableWidget::itemSelectionChanged, this,
            &RecoverRunDlg::showChosen);
    connect(ui_->OpenBtn, &QPushButton::clicked, this, &RecoverRunDlg::openJournal);
    connect(ui_->RemoveBtn, &QPushButton::clicked, this, &RecoverRunDlg::removeJournal);
    connect(ui_->GoOnBtn, &QPushButton::clicked, this, [this] { play(PlayPurpose::GoOn); });
    connect(ui_->RecoverBtn, &QPushButton::clicked, this, [this] { play(PlayPurpose::Recover); });
    connect(ui_->NotNowBtn, &QPushButton::clicked, this, &QDialog::reject);
}

void RecoverRunDlg::done(int result) {
    stopListening(); // the run that follows is no reason to close it once more
    QDialog::done(result);
}

const JournalDescription* RecoverRunDlg::chosen() const {
    const QList<QTableWidgetSelectionRange> rows = ui_->JournalTable->selectedRanges();
    return rows.isEmpty() ? nullptr : &journals_.at(size_t(rows.first().topRow()));
}

PlayOptions RecoverRunDlg::options() const {
    const JournalDescription* journal = chosen();
    return journal ? recoveryOptions(*journal, ui_->FolderEdit->text()) : PlayOptions();
}

void RecoverRunDlg::fillTable(int chosenRow) {
    ui_->IntroLbl->setText(
        journals_.empty()
            ? "There is no run left to recover. \"Open...\" takes a journal that lies elsewhere."
            : "These runs were measured, but not saved. Their journals hold what had arrived.");
    QTableWidget& table = *ui_->JournalTable;
    table.clearSelection();
    table.setRowCount(int(journals_.size()));
    for (int row = 0; row < table.rowCount(); ++row) {
        const QStringList texts = recoveryColumns(journals_[size_t(row)]);
        for (int column = 0; column < table.columnCount(); ++column)
            table.setItem(row, column, new QTableWidgetItem(texts[column]));
    }
    table.resizeColumnsToContents();
    for (int column = 0; column + 1 < table.columnCount(); ++column)
        table.setColumnWidth(column, table.columnWidth(column) + columnGap);
    table.selectRow(chosenRow);
    showChosen();
}

void RecoverRunDlg::showChosen() {
    const JournalDescription* journal = chosen();
    ui_->JournalInfo->setText(journal ? recoveryText(*journal, QDateTime::currentMSecsSinceEpoch())
                                      : QString());
    ui_->FolderEdit->setText(journal ? journal->head.targetFolder : QString());
    const RecoveryChoices choices = journal ? recoveryChoices(*journal) : RecoveryChoices();
    ui_->FolderEdit->setEnabled(journal);
    ui_->RemoveBtn->setEnabled(journal);
    ui_->RecoverBtn->setEnabled(choices.recover);
    ui_->GoOnBtn->setEnabled(choices.goOn);
}

void RecoverRunDlg::play(PlayPurpose purpose) {
    const JournalDescription* journal = chosen();
    if (!journal)
        return;
    const QString fault = resultsFolderFault(typedFolder(ui_->FolderEdit->text()));
    const QString question = replacementQuestion(*journal, ui_->FolderEdit->text());
    const QPointer<RecoverRunDlg> self(this);
    if (fault.isEmpty() && (question.isEmpty() || askBeforeLoss(question))) {
        if (!self)
            return;
        purpose_ = purpose;
        return accept();
    }
    if (!fault.isEmpty())
        showWarning("ERROR: " + fault);
    if (self)
        returnToControl(*ui_->FolderEdit);
}

void RecoverRunDlg::openJournal() {
    // A chooser and a message process events: a run may begin in them and delete the dialog.
    const QPointer<RecoverRunDlg> self(this);
    const JournalDescription* journal = chosen();
    const QString place =
        journal ? paths::folderWithSlash(journal->path) : session_.settings.TargetFolder;
    const QString path = waitForFileToOpen("Open File", place, "Journals (*.vcj)");
    if (self && !path.isEmpty())
        addJournal(path);
}

void RecoverRunDlg::addJournal(const QString& path) {
    if (journalIsInUse(path))
        return showWarning(QStringLiteral("ERROR: The journal \"%1\" is being written by a running "
                                          "program.")
                               .arg(path));
    std::optional<JournalDescription> journal = describeJournal(path);
    if (!journal)
        return showWarning("ERROR: " + noJournalText(path));
    std::erase_if(journals_, [&](const JournalDescription& known) { return known.path == path; });
    journals_.push_back(*std::move(journal));
    std::rotate(journals_.begin(), journals_.end() - 1, journals_.end());
    fillTable(0);
}

void RecoverRunDlg::removeJournal() {
    const JournalDescription* journal = chosen();
    if (!journal)
        return;
    const QPointer<RecoverRunDlg> self(this);
    const QString path = journal->path;
    const QString question =
        QStringLiteral("Do you want to delete the journal of the run \"%1\"? Its %2 volumes can "
                       "not be recovered then.\n\n%3")
            .arg(journal->head.projectName, QString::number(journal->nrOfVolumes), path);
    if (!askBeforeLoss(question) || !self)
        return;
    if (!QFile::remove(path))
        return showWarning(QStringLiteral("ERROR: The file \"%1\" can not be deleted.").arg(path));
    session_.journal.list().remove(path);
    std::erase_if(journals_, [&](const JournalDescription& known) { return known.path == path; });
    fillTable(0);
}

RecoverRunDlg& openRecoverRunDialog(RunSession& session, SettingsFileWatch& watch,
                                    QWidget& window) {
    if (auto* open = window.findChild<RecoverRunDlg*>()) {
        open->reject(); // whoever waits for it hears of its end
        delete open;
    }
    auto* dialog = new RecoverRunDlg(session, &window);
    session.listeners.add(*dialog, ListenerPlace::Dialogs);
    QObject::connect(dialog, &QDialog::finished, dialog, &QObject::deleteLater);
    QObject::connect(dialog, &QDialog::accepted, &window,
                     [&watch, dialog] { watch.playJournal(dialog->options(), dialog->purpose()); });
    // Returns at once: auto-start may begin a run, which closes the dialog.
    dialog->open();
    return *dialog;
}

void offerRecovery(RunSession& session, SettingsFileWatch& watch, QWidget& window) {
    if (offeredJournals(session.unfinishedJournals()).empty())
        return;
    watch.hold(true);
    QObject::connect(&openRecoverRunDialog(session, watch, window), &QDialog::finished, &window,
                     [&watch] { watch.hold(false); });
}
