// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/decoding_settings_dialog.h"

#include "base/file_writing.h"
#include "base/number_text.h"
#include "base/text_reading.h"
#include "decoder/ui/decoding_plots.h"
#include "dialogs/dialog_setup.h"
#include "ui_decoding_settings_dialog.h"

#include <QHeaderView>
#include <QSignalBlocker>

namespace {

const QString weightsFilter = QStringLiteral("WGT files (*.wgt)");
const QString settingsFilter = QStringLiteral("BDS files (*.bds)");
constexpr int visibleRows = LetterCode::nrOfTasks;

/// The text of a file that the operator chose; nothing after a message.
std::optional<QString> textOf(const QString& path) {
    QString text;
    if (readTextFile(path, text))
        return text;
    // The text is prescribed, though nothing is written.
    showWarning(QStringLiteral("ERROR: Can not open file \"%1\" for writing.").arg(path));
    return std::nullopt;
}

void setUpTable(QTableWidget& table) {
    QStringList tasks;
    QStringList regions;
    for (int task = 1; task <= LetterCode::nrOfTasks; ++task)
        tasks << QStringLiteral("Task %1").arg(task);
    for (int roi = 0; roi < nrOfDecoderROIs; ++roi) {
        QString name = decoderROIName(roi); // on two lines, so that six fit side by side
        regions << name.replace(name.indexOf(' '), 1, '\n');
    }
    table.setVerticalHeaderLabels(tasks);
    table.setHorizontalHeaderLabels(regions);
    table.horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    for (int row = 0; row < table.rowCount(); ++row)
        for (int column = 0; column < table.columnCount(); ++column) {
            auto* item = new QTableWidgetItem;
            item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            table.setItem(row, column, item);
        }
    table.setFixedHeight(table.horizontalHeader()->sizeHint().height() +
                         visibleRows * table.rowHeight(0) + 2 * table.frameWidth() + 2);
}

} // namespace

BOLDDecodingSettingsDlg::BOLDDecodingSettingsDlg(SessionDecoder& decoder, QWidget* parent)
    : EditDialog(parent), decoder_(decoder), ui_(std::make_unique<Ui::BOLDDecodingSettingsDlg>()),
      preparation_(decoder.preparation()), sizeOfRun_(decoder.sizeOfRun()) {
    if (preparation_.dataPath.isEmpty())
        preparation_.dataPath = decoder.samplePath();
    ui_->setupUi(this);
    setUpTable(*ui_->TaskVOIWeightsTable);
    // A group box does not make room for its title, so a long one is a label that wraps.
    ui_->RoleGrpBx->setAccessibleName(ui_->RoleLbl->text());
    connectControls();
    setUpEditing();
    showPreparation();
}

BOLDDecodingSettingsDlg::~BOLDDecodingSettingsDlg() = default;

void BOLDDecodingSettingsDlg::connectControls() {
    using Dialog = BOLDDecodingSettingsDlg;
    const std::pair<QAbstractButton*, void (Dialog::*)()> slotsOfButtons[] = {
        {ui_->SelectIdealResponsesRTCFileBtn, &Dialog::selectIdealResponsesRTCFile},
        {ui_->SelectOfflineRTCFileBtn, &Dialog::selectOfflineRTCFile},
        {ui_->OfflineAnalysisOp, &Dialog::selectOfflineAnalysisOp},
        {ui_->RealTimeAnalysisOp, &Dialog::selectRealTimeAnalysisOp},
        {ui_->LoadWeightsBtn, &Dialog::loadWeights},
        {ui_->SaveWeightsBtn, &Dialog::saveWeights},
        {ui_->LoadDefaultSettingsBtn, &Dialog::loadDefaultSettings},
        {ui_->SaveDefaultSettingsBtn, &Dialog::saveDefaultSettings}};
    for (const auto& [button, slot] : slotsOfButtons)
        connect(button, &QAbstractButton::clicked, this, slot);
    connect(ui_->OfflineRTCFileEd, &QLineEdit::editingFinished, this, [this] {
        if (isOffline_ && ui_->OfflineRTCFileEd->text().trimmed() != shownFile_)
            readOfflineFile();
    });
    connect(ui_->CorrBetaTauDSpBx, &QDoubleSpinBox::valueChanged, this,
            [this](double tau) { tau_ = float(tau); });
    connect(ui_->NrOfExtraLinesSpBx, &QSpinBox::valueChanged, this,
            &Dialog::onNrOfExtraLinesChanged);
    connect(ui_->ExtraLineNrSpBx, &QSpinBox::valueChanged, this, &Dialog::onExtraLineNrChanged);
    connect(ui_->ExtraLineAtPointDSpBx, &QDoubleSpinBox::valueChanged, this,
            &Dialog::onExtraLineAtPointChanged);
}

void BOLDDecodingSettingsDlg::showPreparation() {
    isOffline_ = preparation_.offline;
    QRadioButton& chosen = *(isOffline_ ? ui_->OfflineAnalysisOp : ui_->RealTimeAnalysisOp);
    chosen.setChecked(true);
    chosen.setFocus();
    ui_->OfflineRTCFileEd->setText(preparation_.dataPath);
    shownFile_ = preparation_.dataPath;
    ui_->IdealResponsesRTCFileEd->setText(preparation_.referencesPath);
    showSize({preparation_.settings.NrOfDataROIs, preparation_.settings.NrOfTimePoints});
    ui_->TimerIntervalSpBx->setValue(preparation_.settings.TimerInterval);
    showWeights(preparation_.settings.TaskVOIWeights);
    showSettings(preparation_.settings);
    refreshData();
}

// What a settings file holds.
void BOLDDecodingSettingsDlg::showSettings(const DecoderSettings& settings) {
    ui_->SkipTimePointsAtBeginSpBx->setValue(settings.SkipTimePointsAtBegin);
    ui_->FullWindowSizeSpBx->setValue(settings.FullWindowSize);
    ui_->SkipAtBeginSpBx->setValue(settings.SkipAtBeginOfWindow);
    ui_->SkipAtEndSpBx->setValue(settings.SkipAtEndOfWindow);
    ui_->IdealResponseWindowSizeSpBx->setValue(settings.IdealResponseWindowSize);
    ui_->UseTaskAndSMAVOIsOp->setChecked(settings.HelperVOIsMode == HelperVOIs::Both);
    ui_->UseOnlyTaskVOIsOp->setChecked(settings.HelperVOIsMode == HelperVOIs::OnlyTasks);
    ui_->UseOnlySMAVOIsOp->setChecked(settings.HelperVOIsMode == HelperVOIs::OnlyHelpers);
    tau_ = settings.CorrBetaTau;
    {
        const QSignalBlocker quiet(ui_->CorrBetaTauDSpBx);
        ui_->CorrBetaTauDSpBx->setValue(double(tau_));
    }
    ui_->MeanForPercSignalFromSpBx->setValue(settings.MeanForPercSignalFrom);
    ui_->MeanForPercSignalToSpBx->setValue(settings.MeanForPercSignalTo);
    extraLines_ = settings.extraLines;
    {
        const QSignalBlocker quiet(ui_->NrOfExtraLinesSpBx);
        ui_->NrOfExtraLinesSpBx->setValue(int(extraLines_.size()));
    }
    showExtraLine();
}

void BOLDDecodingSettingsDlg::showWeights(const TaskWeights& weights) {
    for (size_t task = 0; task < weights.size(); ++task)
        for (size_t roi = 0; roi < weights[task].size(); ++roi)
            ui_->TaskVOIWeightsTable->item(int(task), int(roi))
                ->setText(QString::fromLatin1(shortestText(weights[task][roi])));
}

void BOLDDecodingSettingsDlg::showExtraLine() {
    const bool any = !extraLines_.empty();
    const QSignalBlocker quietNumber(ui_->ExtraLineNrSpBx);
    const QSignalBlocker quietPoint(ui_->ExtraLineAtPointDSpBx);
    ui_->ExtraLineNrSpBx->setMaximum(any ? int(extraLines_.size()) : 1);
    ui_->ExtraLineNrSpBx->setEnabled(any);
    ui_->ExtraLineAtPointDSpBx->setEnabled(any);
    const auto line = size_t(ui_->ExtraLineNrSpBx->value() - 1);
    ui_->ExtraLineAtPointDSpBx->setValue(any ? double(extraLines_[line]) : 0.0);
}

void BOLDDecodingSettingsDlg::onNrOfExtraLinesChanged(int nrOfLines) {
    extraLines_.resize(size_t(std::clamp(nrOfLines, 0, mostExtraLines)));
    showExtraLine();
}

void BOLDDecodingSettingsDlg::onExtraLineNrChanged(int) {
    showExtraLine();
}

void BOLDDecodingSettingsDlg::onExtraLineAtPointChanged(double point) {
    if (const auto line = size_t(ui_->ExtraLineNrSpBx->value() - 1); line < extraLines_.size())
        extraLines_[line] = float(point);
}

DecoderSettings BOLDDecodingSettingsDlg::readSettings() const {
    DecoderSettings settings = preparation_.settings;
    settings.NrOfDataROIs = ui_->NrOfVOIsSpBx->value();
    settings.NrOfTimePoints = ui_->NrOfTimePointsSpBx->value();
    settings.TimerInterval = ui_->TimerIntervalSpBx->value();
    settings.SkipTimePointsAtBegin = ui_->SkipTimePointsAtBeginSpBx->value();
    settings.FullWindowSize = ui_->FullWindowSizeSpBx->value();
    settings.SkipAtBeginOfWindow = ui_->SkipAtBeginSpBx->value();
    settings.SkipAtEndOfWindow = ui_->SkipAtEndSpBx->value();
    settings.IdealResponseWindowSize = ui_->IdealResponseWindowSizeSpBx->value();
    settings.HelperVOIsMode = ui_->UseTaskAndSMAVOIsOp->isChecked() ? HelperVOIs::Both
                              : ui_->UseOnlyTaskVOIsOp->isChecked() ? HelperVOIs::OnlyTasks
                                                                    : HelperVOIs::OnlyHelpers;
    settings.CorrBetaTau = tau_;
    settings.MeanForPercSignalFrom = ui_->MeanForPercSignalFromSpBx->value();
    settings.MeanForPercSignalTo = ui_->MeanForPercSignalToSpBx->value();
    settings.extraLines = extraLines_;
    return settings;
}

std::optional<TaskWeights> BOLDDecodingSettingsDlg::readWeights() {
    WeightCells cells;
    for (size_t task = 0; task < cells.size(); ++task)
        for (size_t roi = 0; roi < cells[task].size(); ++roi)
            cells[task][roi] = ui_->TaskVOIWeightsTable->item(int(task), int(roi))->text();
    const TypedWeights typed = typedWeights(cells);
    if (typed.fault.isEmpty())
        return typed.weights;
    showWarning(typed.fault);
    ui_->TaskVOIWeightsTable->setFocus();
    return std::nullopt;
}

void BOLDDecodingSettingsDlg::selectIdealResponsesRTCFile() {
    chooseFileToOpen(
        "Select RTC file with 9 ideal responses", ui_->IdealResponsesRTCFileEd->text(),
        rtcFilesFilter,
        [this](const QString& path) { ui_->IdealResponsesRTCFileEd->setText(path); }, &chooser_);
}

void BOLDDecodingSettingsDlg::selectOfflineRTCFile() {
    // The title is prescribed; a file may have up to 6.
    chooseFileToOpen(
        "Select RTC file with 3 or 4 VOI time courses", ui_->OfflineRTCFileEd->text(),
        rtcFilesFilter, [this](const QString& path) { takeOfflineFile(path); }, &chooser_);
}

void BOLDDecodingSettingsDlg::selectVOITimeCoursesRTCFile() {
    selectOfflineAnalysisOp();
    selectOfflineRTCFile();
}

void BOLDDecodingSettingsDlg::selectOfflineAnalysisOp() {
    ui_->OfflineAnalysisOp->setChecked(true);
    if (!isOffline_) {
        sizeOfRun_ = {ui_->NrOfVOIsSpBx->value(), ui_->NrOfTimePointsSpBx->value()};
        isOffline_ = true;
        readOfflineFile();
    }
    refreshData();
}

void BOLDDecodingSettingsDlg::selectRealTimeAnalysisOp() {
    ui_->RealTimeAnalysisOp->setChecked(true);
    if (isOffline_)
        showSize(sizeOfRun_);
    isOffline_ = false;
    refreshData();
}

void BOLDDecodingSettingsDlg::takeOfflineFile(const QString& path) {
    ui_->OfflineRTCFileEd->setText(path);
    readOfflineFile();
}

// A file that can't be decoded leaves the numbers; OK says what is wrong with it.
void BOLDDecodingSettingsDlg::readOfflineFile() {
    shownFile_ = ui_->OfflineRTCFileEd->text().trimmed();
    if (const std::optional<CurvesSize> size = sizeOfOfflineCurves(shownFile_))
        showSize(*size);
}

void BOLDDecodingSettingsDlg::showSize(const CurvesSize& size) {
    ui_->NrOfVOIsSpBx->setValue(size.nrOfROIs);
    ui_->NrOfTimePointsSpBx->setValue(size.nrOfTimePoints);
}

void BOLDDecodingSettingsDlg::refreshData() {
    for (QWidget* control : std::initializer_list<QWidget*>{
             ui_->OfflineRTCFileLbl, ui_->OfflineRTCFileEd, ui_->SelectOfflineRTCFileBtn,
             ui_->TimerIntervalLbl, ui_->TimerIntervalSpBx})
        control->setEnabled(isOffline_);
}

void BOLDDecodingSettingsDlg::loadWeights() {
    chooseFileToOpen(
        "Select file containing VOI weighting pattern for each task", {}, weightsFilter,
        [this](const QString& path) { openWeights(path); }, &chooser_);
}

void BOLDDecodingSettingsDlg::openWeights(const QString& path) {
    const std::optional<QString> text = textOf(path);
    if (!text)
        return;
    if (const std::optional<TaskWeights> weights = parseWeights(*text))
        showWeights(*weights);
    else
        showWarning(QStringLiteral("The file \"%1\" does not hold the weights of 3 tasks and 6 "
                                   "VOIs.")
                        .arg(path));
}

void BOLDDecodingSettingsDlg::saveWeights() {
    const std::optional<TaskWeights> weights = readWeights();
    if (!weights)
        return;
    chooseFileToSave(
        "Select file for storing VOI weighting pattern for each task", {}, weightsFilter,
        [text = weightsText(*weights)](const QString& path) { writeText(path, text); }, &chooser_);
}

void BOLDDecodingSettingsDlg::loadDefaultSettings() {
    chooseFileToOpen(
        "Load BDS File", {}, settingsFilter, [this](const QString& path) { openSettings(path); },
        &chooser_);
}

void BOLDDecodingSettingsDlg::openSettings(const QString& path) {
    const std::optional<QString> text = textOf(path);
    if (!text)
        return;
    if (const std::optional<DecoderSettings> settings = parseDecoderSettings(*text, readSettings()))
        showSettings(*settings);
    else
        showWarning(
            QStringLiteral("The file \"%1\" does not hold valid settings of the letter decoder.")
                .arg(path));
}

void BOLDDecodingSettingsDlg::saveDefaultSettings() {
    const DecoderSettings settings = readSettings();
    if (const QString fault = decoderSettingsFault(settings); !fault.isEmpty())
        return showWarning(fault);
    chooseFileToSave(
        "Save BDS File", {}, settingsFilter,
        [text = decoderSettingsText(settings)](const QString& path) { writeText(path, text); },
        &chooser_);
}

void BOLDDecodingSettingsDlg::writeText(const QString& path, const QByteArray& text) {
    if (!writeFileAtomically(path, text))
        showWarning(outputFileFault(path));
}

bool BOLDDecodingSettingsDlg::apply() {
    DecoderPreparation edited = preparation_;
    edited.settings = readSettings();
    if (const QString fault = decoderSettingsFault(edited.settings); !fault.isEmpty()) {
        showWarning(fault);
        return false;
    }
    const std::optional<TaskWeights> weights = readWeights();
    if (!weights)
        return false;
    edited.settings.TaskVOIWeights = *weights;
    edited.referencesPath = ui_->IdealResponsesRTCFileEd->text().trimmed();
    edited.offline = isOffline_;
    edited.dataPath = ui_->OfflineRTCFileEd->text().trimmed();
    return decoder_.prepare(edited);
}

void openDecodingSettingsDialog(SessionDecoder& decoder, QWidget& window) {
    auto* dialog = window.findChild<BOLDDecodingSettingsDlg*>({}, Qt::FindDirectChildrenOnly);
    if (dialog && !dialog->isVisible()) {
        delete dialog; // it shows what was prepared when it was made
        dialog = nullptr;
    }
    if (!dialog)
        dialog = new BOLDDecodingSettingsDlg(decoder, &window);
    showInFront(*dialog);
}
