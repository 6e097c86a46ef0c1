// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/decoding_window.h"

#include "base/paths.h"
#include "decoder/decoding_log.h"
#include "decoder/ui/decoding_settings_dialog.h"
#include "decoder/ui/empirical_responses_dialog.h"
#include "decoder/ui/reference_plot.h"
#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "run/session/run_session.h"
#include "ui_decoding_window.h"

#include <QActionGroup>
#include <QEvent>
#include <QScrollBar>
#include <QSignalBlocker>

namespace {

constexpr QSize comfortableSize(1000, 700);
/// In front of the main window, which messages and the end of a run raise; X11 keeps no other kind
/// of window there. It can't be minimized, since window managers take the main window along.
constexpr Qt::WindowFlags windowKind = Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                       Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint;
constexpr double logFontFactor = 0.8;
constexpr double letterFontFactor = 1.4;

QString scoreText(float score) {
    const QString text = QString::number(double(score), 'f', 2);
    return text == "-0.00" ? QStringLiteral("0.00") : text;
}

/// The scores of a reference with the tasks.
std::array<TaskMark, LetterCode::nrOfTasks> marksOf(const LetterDecoding& decoding, int reference,
                                                    bool hasProducts) {
    std::array<TaskMark, LetterCode::nrOfTasks> marks;
    for (size_t task = 0; task < marks.size(); ++task) {
        const auto row = size_t(reference);
        marks[task] = {.color = rankColor(rankOf(decoding.best, {int(task), reference})),
                       .score = scoreText(decoding.score[row][task]),
                       .product = hasProducts ? scoreText(decoding.product[row][task]) : QString(),
                       .isBest = decoding.bestReference[task] == reference &&
                                 decoding.score[row][task] > RankedLetter::startScore};
    }
    return marks;
}

/// What the timer plays, and how it is gone on with at its end.
QString dataText(const SessionDecoder& decoder) {
    if (!decoder.isOffline())
        return decoder.mayPlay() ? QStringLiteral("\"Run With Timer\" (F5) plays a sample message")
                                 : QString();
    if (!decoder.decoder().isReady())
        return {};
    const QString path = decoder.preparation().dataPath;
    const QString data =
        decoder.isSample() ? QStringLiteral("sample message ") + path : paths::fileName(path);
    const LetterDecoder& state = decoder.decoder();
    return state.currentVolume() + 1 < state.settings().NrOfTimePoints
               ? data
               : QStringLiteral("\"Reload ROI Data\" begins anew  ·  ") + data;
}

QString helpersText(const LetterDecoder& decoder) {
    return decoder.isReady() ? missingHelpersNote(decoder.settings()) : QString();
}

QString scoresLabel(const DecoderSettings& settings) {
    if (settings.UseCorr && settings.UseBeta)
        return weightedSumLabel(settings) + u'\n' + multiplicationLabel() + ", below the sum";
    return "The correlation score is shown in middle of plots\n";
}

} // namespace

BOLDDecodingMW::BOLDDecodingMW(SessionDecoder& decoder, QWidget* parent)
    : QMainWindow(parent, windowKind), decoder_(decoder),
      ui_(std::make_unique<Ui::BOLDDecodingMW>()) {
    ui_->setupUi(this);
    dataCurves_ = {ui_->DataCurve1Op, ui_->DataCurve2Op, ui_->DataCurve3Op,
                   ui_->DataCurve4Op, ui_->DataCurve5Op, ui_->DataCurve6Op};
    references_ = {ui_->ReferencePlot1, ui_->ReferencePlot2, ui_->ReferencePlot3,
                   ui_->ReferencePlot4, ui_->ReferencePlot5, ui_->ReferencePlot6,
                   ui_->ReferencePlot7, ui_->ReferencePlot8, ui_->ReferencePlot9};
    ui_->DataPlotter->setFocusPolicy(Qt::StrongFocus);
    ui_->DataCurvesPanel->hide();
    ui_->LogEd->setFont(numberFont(font(), logFontFactor));
    int rank = 0;
    for (QLineEdit* field : {ui_->DecodedText1Ed, ui_->DecodedText2Ed, ui_->DecodedText3Ed}) {
        QPalette colors = field->palette();
        colors.setColor(QPalette::Text, rankColor(rank++));
        field->setPalette(colors);
        field->setFont(numberFont(font(), letterFontFactor));
    }
    for (QAction* action : findChildren<QAction*>())
        toolTips_[action] = action->toolTip();
    connectActions();
    connectCurveActions();
    wrapToolTips(*this);
    refresh();
}

// Hidden while it still is a window, so that the session lets go of it.
BOLDDecodingMW::~BOLDDecodingMW() {
    hide();
}

void BOLDDecodingMW::connectActions() {
    using Window = BOLDDecodingMW;
    const std::pair<QAction*, void (Window::*)()> slotsOfActions[] = {
        {ui_->SettingsAction, &Window::callSettingsDlg},
        {ui_->EmpiricalFromVCOAction, &Window::createEmpiricalIdealResponsesFileFromVCO},
        {ui_->EmpiricalFromRTCAction, &Window::createEmpiricalIdealResponsesFileFromRTC},
        {ui_->RunWithTimerAction, &Window::runWithTimer},
        {ui_->NextLetterAction, &Window::goToNextLetter},
        {ui_->PreviousLetterAction, &Window::goToPreviousLetter},
        {ui_->ProcessLetterAction, &Window::processCurrentLetterWindow},
        {ui_->ReloadROIDataAction, &Window::reloadROIDataForOfflineAnalysis},
        {ui_->ABCDModeAction, &Window::checkABCDMode},
        {ui_->OnlyCorrAction, &Window::useOnlyCorrForComparisonWithIdealResponses},
        {ui_->CorrAndBetaAction, &Window::useCorrForShapeAndBetaForTaskSelection}};
    for (const auto& [action, slot] : slotsOfActions)
        connect(action, &QAction::triggered, this, slot);
    auto* scores = new QActionGroup(this);
    scores->addAction(ui_->OnlyCorrAction);
    scores->addAction(ui_->CorrAndBetaAction);
    connect(ui_->PreparationMenu, &QMenu::aboutToShow, this,
            &Window::slotPreparationMenuAboutToShow);
    connect(ui_->DecodingMenu, &QMenu::aboutToShow, this, &Window::refreshActions);
    connect(&timer_, &QTimer::timeout, this, &Window::nextTR);
}

void BOLDDecodingMW::connectCurveActions() {
    using Window = BOLDDecodingMW;
    const std::pair<QAction*, void (Window::*)()> slotsOfActions[] = {
        {ui_->AllCurvesAction, &Window::showAllCurvesInDataPlot},
        {ui_->TaskCurvesAction, &Window::showTaskCurvesInDataPlot},
        {ui_->SMACurvesAction, &Window::showSMACurvesInDataPlot},
        {ui_->TaskAndSMA1Action, &Window::showTaskAndSMA1InDataPlot},
        {ui_->TaskAndSMA2Action, &Window::showTaskAndSMA2InDataPlot},
        {ui_->TaskAndSMA3Action, &Window::showTaskAndSMA3InDataPlot},
        {ui_->ManageDataCurvesAction, &Window::manageDataCurves}};
    for (const auto& [action, slot] : slotsOfActions)
        connect(action, &QAction::triggered, this, slot);
    for (size_t roi = 0; roi < dataCurves_.size(); ++roi)
        connect(dataCurves_[roi], &QCheckBox::clicked, this, [this, roi](bool on) {
            ShownROIs shown = shown_;
            showInDataPlot(shown.set(roi, on));
        });
}

void BOLDDecodingMW::callSettingsDlg() {
    openDecodingSettingsDialog(decoder_, *this);
}

void BOLDDecodingMW::createEmpiricalIdealResponsesFileFromVCO() {
    openEmpiricalResponsesDialog(decoder_, EmpiricalSource::Run, *this);
}

void BOLDDecodingMW::createEmpiricalIdealResponsesFileFromRTC() {
    openEmpiricalResponsesDialog(decoder_, EmpiricalSource::Files, *this);
}

void BOLDDecodingMW::showInDataPlot(ShownROIs shown) {
    shown_ = shown;
    for (size_t roi = 0; roi < dataCurves_.size(); ++roi)
        dataCurves_[roi]->setChecked(shown_[roi]);
    ui_->DataPlotter->setContent(dataPlotContent(decoder_.decoder(), decoder_.curves(), shown_));
}

void BOLDDecodingMW::manageDataCurves() {
    ui_->DataCurvesPanel->setVisible(ui_->DataCurvesPanel->isHidden());
    ui_->ManageDataCurvesAction->setChecked(!ui_->DataCurvesPanel->isHidden());
}

void BOLDDecodingMW::fitGLMForLetter(int nrOfPoints, float* curve, float* reference, float& slope) {
    const auto points = size_t(std::max(nrOfPoints, 0));
    slope = ::fitGLMForLetter({curve, points}, {reference, points});
}

void BOLDDecodingMW::runWithTimer() {
    if (timer_.isActive())
        timer_.stop();
    else if (decoder_.beginPlaying())
        timer_.start(decoder_.decoder().settings().TimerInterval);
    refreshActions();
}

void BOLDDecodingMW::nextTR() {
    if (decoder_.nextTR())
        return;
    timer_.stop();
    refreshActions();
}

void BOLDDecodingMW::slotPreparationMenuAboutToShow() {
    setHindrance(*ui_->EmpiricalFromVCOAction, decoder_.responsesHindrance());
}

void BOLDDecodingMW::useOnlyCorrForComparisonWithIdealResponses() {
    decoder_.useOnlyCorrForComparisonWithIdealResponses();
}

void BOLDDecodingMW::useCorrForShapeAndBetaForTaskSelection() {
    decoder_.useCorrForShapeAndBetaForTaskSelection();
}

void BOLDDecodingMW::reloadROIDataForOfflineAnalysis() {
    timer_.stop();
    static_cast<void>(decoder_.reloadROIDataForOfflineAnalysis());
    refresh();
}

void BOLDDecodingMW::checkABCDMode() {
    decoder_.changeABCDMode(ui_->ABCDModeAction->isChecked());
}

void BOLDDecodingMW::log(const QString& text) {
    ui_->LogEd->appendPlainText(text);
    // It would no longer follow once a first letter has brought the horizontal bar.
    QScrollBar& bar = *ui_->LogEd->verticalScrollBar();
    bar.setValue(bar.maximum());
}

void BOLDDecodingMW::refresh() {
    refreshPlots();
    refreshReferences();
    refreshLetters();
    refreshActions();
    QStringList state{decoderStateText(decoder_.decoder()), decoder_.dataHindrance(),
                      helpersText(decoder_.decoder()), decoder_.fault(), dataText(decoder_)};
    state.removeAll({});
    ui_->StatusBar->showMessage(state.join("  ·  "));
}

void BOLDDecodingMW::refreshPlots() {
    ui_->DataPlotter->setContent(dataPlotContent(decoder_.decoder(), decoder_.curves(), shown_));
    ui_->ScoresLbl->setText(scoresLabel(decoder_.decoder().settings()));
}

void BOLDDecodingMW::refreshReferences() {
    const LetterDecoder& decoder = decoder_.decoder();
    const DecoderSettings& settings = decoder.settings();
    for (int reference = 0; reference < LetterCode::nrOfReferences; ++reference) {
        ReferencePlot& plot = *references_[size_t(reference)];
        plot.setContent(
            referencePlotContent(settings, reference, decoder.references()[size_t(reference)]));
        std::optional<std::array<TaskMark, LetterCode::nrOfTasks>> marks;
        if (decoder.latest())
            marks = marksOf(*decoder.latest(), reference, settings.UseCorr && settings.UseBeta);
        plot.setMarks(marks);
    }
}

void BOLDDecodingMW::refreshLetters() {
    const LetterDecoder& decoder = decoder_.decoder();
    const DecoderSettings& settings = decoder.settings();
    ui_->LetterDisplay->setBest(decoder.latest(), settings.findsFourLetters());
    ui_->LetterDisplay->setStage(stageAt(settings, decoder.currentVolume()));
    int rank = 0;
    for (QLineEdit* field : {ui_->DecodedText1Ed, ui_->DecodedText2Ed, ui_->DecodedText3Ed}) {
        const QString& text = decoder.decodedText(rank++);
        if (field->text() != text)
            field->setText(text); // the cursor goes to the end, which stays in view
    }
}

void BOLDDecodingMW::setHindrance(QAction& action, const QString& hindrance) {
    action.setEnabled(hindrance.isEmpty());
    action.setToolTip(hindrance.isEmpty() ? toolTips_.value(&action) : hindrance);
}

void BOLDDecodingMW::refreshActions() {
    const DecoderSettings& settings = decoder_.decoder().settings();
    const bool plays = timer_.isActive();
    const QString ofLetters =
        plays ? QStringLiteral("Not while the timer runs") : decoder_.letterHindrance();
    for (QAction* action :
         {ui_->NextLetterAction, ui_->PreviousLetterAction, ui_->ProcessLetterAction})
        setHindrance(*action, ofLetters);
    setHindrance(*ui_->RunWithTimerAction, plays ? QString() : decoder_.playHindrance());
    ui_->RunWithTimerAction->setChecked(plays);
    setHindrance(*ui_->ReloadROIDataAction, decoder_.reloadHindrance());
    ui_->ABCDModeAction->setChecked(settings.ABCDMode);
    setHindrance(*ui_->ABCDModeAction, settings.UseCorr && settings.UseBeta
                                           ? QString()
                                           : QStringLiteral("Four letters need both scores"));
    ui_->OnlyCorrAction->setChecked(settings.UseCorr && !settings.UseBeta);
    ui_->CorrAndBetaAction->setChecked(settings.UseCorr && settings.UseBeta);
}

QImage BOLDDecodingMW::letterDisplay() {
    return ui_->LetterDisplay->grab().toImage();
}

QImage BOLDDecodingMW::windowPicture() {
    return grab().toImage();
}

// Menus would clear the state; no action has a status tip that could take its place.
bool BOLDDecodingMW::event(QEvent* event) {
    return event->type() == QEvent::StatusTip || QMainWindow::event(event);
}

void BOLDDecodingMW::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (event->spontaneous())
        return;
    decoder_.open(*this);
    refresh();
}

void BOLDDecodingMW::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    if (event->spontaneous())
        return;
    timer_.stop();
    for (QDialog* dialog : findChildren<QDialog*>(Qt::FindDirectChildrenOnly))
        dialog->close();
    decoder_.close();
}

void openBOLDDecoder(RunSession& session, QWidget& window) {
    auto* decoder = window.findChild<BOLDDecodingMW*>({}, Qt::FindDirectChildrenOnly);
    if (!decoder) {
        decoder = new BOLDDecodingMW(session.decoder, &window);
        const QRect area = screenArea(&window);
        // Left alone it would open at two thirds of the screen, too small for its numbers.
        decoder->resize(
            decoder->sizeHint().expandedTo(comfortableSize).boundedTo(area.size() - windowFrame));
        const QSize frame = decoder->size() + windowFrame;
        decoder->move(
            placedWithin(area, {placeBeside(area, window.geometry(), frame, 0), frame}).topLeft());
    }
    decoder->show();
    keepOnScreen(*decoder);
    decoder->raise();
    decoder->activateWindow();
}
