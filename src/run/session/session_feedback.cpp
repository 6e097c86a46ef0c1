// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_feedback.h"

#include "base/event_pump.h"
#include "base/file_writing.h"
#include "base/plain_file.h"
#include "feedback/frames/frame_painting.h"
#include "run/document/session_phase.h"
#include "run/loop/finished_run.h"
#include "run/session/feedback_records.h"
#include "stats/contrast_file.h"

#include <QPainter>
#include <cmath>
#include <limits>
#include <utility>

namespace {

QString tablePath(const FMRProject& project) {
    return resultPath(project, "_feedback.tsv", "noname_feedback.tsv");
}

/// A level was drawn, and the subject could see it.
bool showsLevel(const FeedbackFrame& frame) {
    return frame.levelsShown && (frame.kind == FeedbackFrame::Kind::Thermometer ||
                                 frame.kind == FeedbackFrame::Kind::Classifier);
}

} // namespace

SessionFeedback::SessionFeedback(const Parts& parts) : parts_(parts) {
    parts_.listeners.add(*this, ListenerPlace::Feedback);
}

void SessionFeedback::open(FeedbackScreen& screen) {
    screen_ = &screen;
    // The display of a run that goes on after a crash is opened again as it was.
    if (!(parts_.phase.runActive() && std::exchange(choicesAreRecorded_, false)))
        takeDefaults();
    testClassifier();
    noteChange();
    update();
    parts_.listeners.feedbackChanged();
}

void SessionFeedback::takeDefaults() {
    choices_.type = FeedbackType::Thermometer;
    choices_.ShowConditionNameAsInstruction = true;
    takeShifts();
    levels_.forgetBaselines();
    if (document_)
        choices_.MaxPSC = document_->DefaultMaxPSC;
}

void SessionFeedback::close() {
    screen_ = nullptr;
    parts_.requests.regions.feedbackMaxima.reset();
}

void SessionFeedback::change(const std::function<void(FeedbackChoices&)>& edit) {
    const FeedbackChoices before = choices_;
    edit(choices_);
    if (choices_ == before)
        return;
    noteChange();
    update();
    parts_.listeners.feedbackChanged();
}

void SessionFeedback::update() {
    if (!screen_)
        return;
    compute();
    draw();
    screen_->showPicture();
    screen_->refreshControls();
}

int SessionFeedback::nrOfRegions() const {
    return document_ ? document_->regions.count() : 0;
}

bool SessionFeedback::classifierPredicts() const {
    return classifier_ && classifier_->isPredicting();
}

void SessionFeedback::setClassifier(const ClassifierOutput* classifier) {
    classifier_ = classifier;
    testClassifier();
    if (screen_)
        screen_->refreshControls();
}

// The classifier may have stopped to predict at any volume.
bool SessionFeedback::testClassifier() {
    if (!choices_.UseSVMOutput || classifierPredicts())
        return false;
    giveUpClassifierOutput(choices_, nrOfRegions());
    noteChange();
    return true;
}

StimulationProtocol SessionFeedback::protocol() const {
    if (awaitsRun())
        return plannedProtocol(parts_.settings).value_or(StimulationProtocol());
    return document_->protocol;
}

QStringList SessionFeedback::modelledConditions() const {
    // A run that is being prepared has no design yet.
    if (!awaitsRun() && document_->design.NrOfConditionPredictors > 0)
        return document_->design.PredictorNames.mid(0, document_->design.NrOfConditionPredictors);
    const bool hasBaseline = !contrastFileHasNoBaseline(parts_.settings.ContrastFile);
    return conditionNames(protocol()).mid(hasBaseline ? 1 : 0);
}

float SessionFeedback::TR() const {
    return awaitsRun() ? parts_.settings.TR : document_->project.TR;
}

int SessionFeedback::nrOfVolumes() const {
    return awaitsRun() ? parts_.settings.nrOfAnalysedVolumes() : document_->project.NrOfVolumes;
}

void SessionFeedback::setDelayed(const DelayedFeedbackSettings& settings) {
    delayed_ = settings;
    noteChange();
}

QString SessionFeedback::fault() const {
    return files_.fault().isEmpty() ? tableFault_ : files_.fault();
}

void SessionFeedback::noteChange() {
    if (screen_ && parts_.phase.canBeStopped())
        parts_.listeners.record({feedbackRecord, encodedFeedback({choices_, delayed_})});
}

void SessionFeedback::takeShifts() {
    shiftsTR_ = TR();
    setShiftsForTR(choices_, shiftsTR_);
}

// Also without a screen while a run is recovered: what comes then rests on its histories.
void SessionFeedback::compute() {
    curve_ = {};
    if (!document_) {
        frame_ = {};
        return;
    }
    settleROIMode(choices_, nrOfRegions());
    const FeedbackSignals signals = feedbackSignals(*document_, parts_.report);
    if (choices_.UseSVMOutput) {
        levels_.update(classifier_, choices_,
                       std::min(signals.currentVolume, signals.nrOfVolumes - 1));
    } else {
        levels_.update(signals, choices_);
        if (choices_.type == FeedbackType::TimeCourse)
            curve_ = feedbackCurve(signals, choices_);
    }
    if (screen_)
        parts_.requests.regions.feedbackMaxima = choices_.MaxPSC;
    frame_ = feedbackFrame(levels_.values(), choices_, document_->volumeTables,
                           conditionNames(document_->protocol));
}

void SessionFeedback::draw() {
    const QSize size = screen_->frameSize();
    if (picture_.size() != size)
        picture_ = QImage(size, QImage::Format_RGB32);
    if (picture_.isNull())
        return;
    QPainter painter(&picture_);
    paintFeedbackFrame(painter, size, frame_);
    if (frame_.kind == FeedbackFrame::Kind::TimeCourse)
        screen_->paintCurve(painter, size, curve_);
}

void SessionFeedback::settingsFileChanged() {
    settingsChanged_ = true;
    choices_ = {};
    delayed_.reset();
    delayedMessage_.clear();
    files_ = {};
    tableFault_.clear();
}

void SessionFeedback::documentsLeaving() {
    document_ = nullptr;
    update();
}

// A new run begins with nothing, also where it is as long as the one before.
void SessionFeedback::documentsArrived(QtCortivoDoc& functional) {
    document_ = &functional;
    settingsChanged_ = false;
    levels_.restart();
    regionsInTable_ = -1;
    goesOn_ = false;
    choicesAreRecorded_ = false;
    tableFault_.clear();
    delayedMessage_.clear();
}

void SessionFeedback::runPrepared(QtCortivoDoc&) {
    files_.begin(parts_.settings.FeedbackTargetFolder, parts_.settings.projectBaseName);
    // Those that the operator set stay, unless volumes turn out to last longer or shorter.
    if (TR() != shiftsTR_)
        takeShifts();
    noteChange();
    update();
}

void SessionFeedback::regionsChanged(QtCortivoDoc&) {
    update();
}

void SessionFeedback::classifierChanged() {
    if (testClassifier())
        update();
    else if (screen_)
        screen_->refreshControls();
}

void SessionFeedback::regionsLoaded(QtCortivoDoc& functional) {
    choices_.MaxPSC = functional.DefaultMaxPSC;
    noteChange();
    parts_.listeners.feedbackChanged();
}

// What the subject sees comes first; files follow once the picture is on the screen.
bool SessionFeedback::drawSubjectDisplay(const VolumeAtHand& hand) {
    if (hand.played) {
        goesOn_ = true;
        compute();
    }
    if (!screen_ || hand.played)
        return false;
    compute();
    draw();
    screen_->showPicture();
    const qint64 shownAt = parts_.pump.milliseconds();
    testClassifier();
    writeFiles(hand.volume);
    appendRow(hand, shownAt);
    screen_->refreshControls();
    return true;
}

void SessionFeedback::writeFiles(int volume) {
    const FeedbackValues& values = levels_.values();
    switch (choices_.type) {
    case FeedbackType::Thermometer:
    case FeedbackType::TimeCourse:
        return files_.writePicture(picture_, volume);
    case FeedbackType::PongSubject1:
        return files_.writeValues(1, values.RelativeLevel, values.TargetLevel, volume);
    case FeedbackType::PongSubject2:
        return files_.writeValues(2, values.RelativeLevel, values.TargetLevel, volume);
    case FeedbackType::Delayed:
        return updateDelayedFeedback(volume);
    }
}

void SessionFeedback::updateDelayedFeedback(int volume) {
    if (!delayed_)
        return;
    const int skipped = document_->project.NrOfSkippedVolumes;
    const std::optional<DueTrial> trial = dueTrial(*delayed_, document_->protocol, skipped, volume);
    if (!trial)
        return;
    const FeedbackSignals signals = feedbackSignals(*document_, parts_.report);
    const auto region = size_t(choices_.roiMode);
    const double change = choices_.roiMode >= 0 && region < signals.curves.size()
                              ? delayedPercentChange(*delayed_, signals.curves[region],
                                                     trial->onset, document_->design.hrf, TR())
                              : 0.0;
    const double scaled = change * delayed_->ScaleFactor;
    const bool finite = std::isfinite(scaled);
    (void)files_.appendTrial(delayed_->fileName, trial->index, finite ? scaled : 0.0);
    delayedMessage_ =
        QStringLiteral("SAVED:  %1   %2").arg(trial->index + 1).arg(finite ? scaled : 0.0);
    if (!finite)
        delayedMessage_ += "   (no estimate: the constant of the fit is 0)";
}

void SessionFeedback::appendRow(const VolumeAtHand& hand, qint64 shownAt) {
    const QtCortivoDoc& document = hand.document;
    const QString path = tablePath(document.project);
    const bool begins = regionsInTable_ < 0;
    if (begins)
        regionsInTable_ = std::max(nrOfRegions(), 3);
    FeedbackRow row;
    row.volume = hand.volume;
    row.condition = conditionName(document.protocol, document.volumeTables.condition(hand.volume));
    for (const std::span<const float> curve : feedbackSignals(document, parts_.report).curves)
        row.regionSignals.push_back(size_t(hand.volume) < curve.size()
                                        ? curve[size_t(hand.volume)]
                                        : std::numeric_limits<float>::quiet_NaN());
    row.values = levels_.values();
    row.levelShown = showsLevel(frame_);
    row.milliseconds = double(shownAt - parts_.report.times.noticedAt);
    QByteArray text = feedbackTableRow(row, regionsInTable_);
    const bool goesOn = begins && goesOn_ && fileExists(path);
    if (begins && !goesOn)
        text.prepend(feedbackTableHead(regionsInTable_));
    if (appendToLog(path, text, begins && !goesOn))
        return;
    tableFault_ = QStringLiteral("Not written: \"%1\"").arg(path);
    if (begins) // the next volume writes the head
        regionsInTable_ = -1;
}

void SessionFeedback::recordPlayed(const RunRecord& record) {
    if (record.name != feedbackRecord)
        return;
    if (const std::optional<RecordedFeedback> recorded = decodedFeedback(record.content)) {
        choices_ = recorded->choices;
        delayed_ = recorded->delayed;
        choicesAreRecorded_ = true;
    }
}
