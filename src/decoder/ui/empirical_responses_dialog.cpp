// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/empirical_responses_dialog.h"

#include "base/paths.h"
#include "dialogs/dialog_setup.h"
#include "run/session/session_decoder.h"
#include "ui_empirical_responses_dialog.h"

#include <QDir>

CreateEmpiricalResponsesDlg::CreateEmpiricalResponsesDlg(SessionDecoder& decoder,
                                                         EmpiricalSource source, QWidget* parent)
    : EditDialog(parent), decoder_(decoder), source_(source),
      ui_(std::make_unique<Ui::CreateEmpiricalResponsesDlg>()) {
    ui_->setupUi(this);
    // Responses of another length than the window that is compared could not be loaded.
    ui_->WindowTimePointsSpBx->setValue(decoder_.decoder().settings().IdealResponseWindowSize);
    for (QWidget* part : std::initializer_list<QWidget*>{
             ui_->DataRTCFileLbl, ui_->DataRTCFileEd, ui_->SelectDataRTCFileBtn,
             ui_->ProtocolFileLbl, ui_->ProtocolFileEd, ui_->SelectProtocolFileBtn})
        part->setVisible(source_ == EmpiricalSource::Files);
    connect(ui_->SelectDataRTCFileBtn, &QPushButton::clicked, this, [this] {
        browse(*ui_->DataRTCFileEd, "Select RTC file with VOI time courses", rtcFilesFilter);
    });
    connect(ui_->SelectProtocolFileBtn, &QPushButton::clicked, this, [this] {
        browse(*ui_->ProtocolFileEd, "Select protocol file", "Protocol files (*.prt)");
    });
    connect(ui_->SelectIdealResponsesFileBtn, &QPushButton::clicked, this,
            &CreateEmpiricalResponsesDlg::browseResponses);
    connect(ui_->DataRTCFileEd, &QLineEdit::editingFinished, this,
            &CreateEmpiricalResponsesDlg::proposeFiles);
    setUpEditing();
    proposeFiles();
}

CreateEmpiricalResponsesDlg::~CreateEmpiricalResponsesDlg() = default;

void CreateEmpiricalResponsesDlg::browse(QLineEdit& field, const QString& title,
                                         const QString& filter) {
    chooseFileToOpen(
        title, field.text(), filter,
        [this, &field](const QString& path) {
            field.setText(path);
            proposeFiles();
        },
        &chooser_);
}

void CreateEmpiricalResponsesDlg::proposeFiles() {
    const QString curves = ui_->DataRTCFileEd->text().trimmed();
    if (ui_->IdealResponsesFileEd->text().isEmpty())
        ui_->IdealResponsesFileEd->setText(decoder_.proposedResponsesPath(curves));
    if (curves.isEmpty() || !ui_->ProtocolFileEd->text().isEmpty())
        return;
    const QDir folder(paths::folderWithSlash(curves));
    const QStringList protocols = folder.entryList({"*.prt"}, QDir::Files);
    if (protocols.size() == 1)
        ui_->ProtocolFileEd->setText(folder.filePath(protocols.front()));
}

void CreateEmpiricalResponsesDlg::browseResponses() {
    chooseFileToSave(
        "Select RTC file for the empirical responses", ui_->IdealResponsesFileEd->text(),
        rtcFilesFilter, [this](const QString& path) { ui_->IdealResponsesFileEd->setText(path); },
        &chooser_);
}

EmpiricalOptions CreateEmpiricalResponsesDlg::options() const {
    EmpiricalOptions options;
    options.WindowTimePoints = ui_->WindowTimePointsSpBx->value();
    options.PreTrialBeginDataPoints = ui_->PreTrialBeginDataPointsSpBx->value();
    options.PostTrialDataPoints = ui_->PostTrialDataPointsSpBx->value();
    options.ShortestTaskDuration = ui_->ShortestTaskDurationSpBx->value();
    options.rois = ui_->IncludeSMAsForIdealResponsesBtn->isChecked()     ? ResponseROIs::All
                   : ui_->UseOnlySMAROIsForIdealResponsesOp->isChecked() ? ResponseROIs::Helpers
                                                                         : ResponseROIs::Tasks;
    return options;
}

QLineEdit* CreateEmpiricalResponsesDlg::missingFile() const {
    for (QLineEdit* field : {ui_->DataRTCFileEd, ui_->ProtocolFileEd, ui_->IdealResponsesFileEd})
        if (!field->isHidden() && field->text().trimmed().isEmpty())
            return field;
    return nullptr;
}

bool CreateEmpiricalResponsesDlg::apply() {
    if (QLineEdit* missing = missingFile()) {
        showWarning("Choose all files of this dialog first.");
        returnToControl(*missing);
        return false;
    }
    const QString responses = ui_->IdealResponsesFileEd->text().trimmed();
    return source_ == EmpiricalSource::Run
               ? decoder_.createEmpiricalResponses(options(), responses)
               : decoder_.createEmpiricalResponses(options(), ui_->DataRTCFileEd->text().trimmed(),
                                                   ui_->ProtocolFileEd->text().trimmed(),
                                                   responses);
}

void openEmpiricalResponsesDialog(SessionDecoder& decoder, EmpiricalSource source,
                                  QWidget& window) {
    delete window.findChild<CreateEmpiricalResponsesDlg*>({}, Qt::FindDirectChildrenOnly);
    showInFront(*new CreateEmpiricalResponsesDlg(decoder, source, &window));
}
