// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_decoder.h"

#include "base/paths.h"
#include "decoder/decoding_log.h"
#include "run/document/session_phase.h"
#include "run/session/sample_files.h"

SessionDecoder::SessionDecoder(const Parts& parts)
    : parts_(parts), run_(parts.settings, parts.report) {
    parts_.listeners.add(*this, ListenerPlace::Decoder);
}

void SessionDecoder::open(DecoderScreen& screen) {
    screen_ = &screen;
    takeMeasuredCurves();
    refresh();
}

void SessionDecoder::close() {
    screen_ = nullptr;
}

void SessionDecoder::refresh() {
    if (screen_)
        screen_->refresh();
}

void SessionDecoder::log(const QString& text) {
    if (screen_)
        screen_->log(text);
}

DecoderPlace SessionDecoder::place() const {
    if (!sources_.offline)
        return {run_.targetFolder(), parts_.settings.projectBaseName};
    return {paths::folderWithSlash(sources_.dataPath),
            paths::withoutExtension(paths::fileName(sources_.dataPath)),
            !isInsideProgram(sources_.dataPath)};
}

// Only for runs, whose curves come with the volumes.
void SessionDecoder::restart(int nrOfTimePoints) {
    decoder_.restart(nrOfTimePoints);
    curves_ = {};
}

void SessionDecoder::changeScores(bool useCorr, bool useBeta) {
    decoder_.changeScores(useCorr, useBeta);
    recordPreparation();
    refresh();
}

void SessionDecoder::useOnlyCorrForComparisonWithIdealResponses() {
    changeScores(true, false);
}

void SessionDecoder::useCorrForShapeAndBetaForTaskSelection() {
    changeScores(true, true);
}

void SessionDecoder::changeABCDMode(bool on) {
    decoder_.changeABCDMode(on);
    recordPreparation();
    refresh();
}

void SessionDecoder::takeCurves(int volume) {
    curves_ = run_.curves(decoder_.settings().NrOfDataROIs, volume);
}

void SessionDecoder::takeMeasuredCurves() {
    if (!sources_.offline && run_.hasDocument())
        takeCurves(run_.lastVolume());
}

bool SessionDecoder::offersSample() const {
    return !preparationTried_ && !run_.isInMemory() && !parts_.phase.canBeStopped();
}

bool SessionDecoder::beginPlaying() {
    return offersSample() ? prepare(offlinePreparation(samplePath())) : mayPlay();
}

void SessionDecoder::goToNextLetter() {
    if (!letterHindrance().isEmpty())
        return;
    decoder_.goToNextLetter();
    processCurrentLetterWindow();
}

void SessionDecoder::goToPreviousLetter() {
    if (!letterHindrance().isEmpty())
        return;
    decoder_.goToPreviousLetter();
    processCurrentLetterWindow();
}

void SessionDecoder::processCurrentLetterWindow() {
    if (!letterHindrance().isEmpty())
        return;
    takeMeasuredCurves();
    showLetter(decodeCurrentLetter(false));
}

bool SessionDecoder::nextTR() {
    if (!fileHindrance().isEmpty())
        return false;
    const bool isDue = decoder_.takeVolume(decoder_.currentVolume() + 1);
    showLetter(isDue ? decodeCurrentLetter(false) : std::nullopt);
    return true;
}

/// The letter if it was decoded. Of one that became due at a volume that is played nothing is
/// written.
std::optional<int> SessionDecoder::decodeCurrentLetter(bool played) {
    if (!decoder_.canDecode() || (!played && !output_.prepareLog(place())))
        return std::nullopt;
    const std::optional<LetterDecoding> decoding = decoder_.decode(curves_);
    if (!decoding)
        return std::nullopt;
    const QString text = decodingLog(decoder_.settings(), *decoding);
    if (!played)
        output_.appendLetter(place(), text);
    log(text);
    return decoding->letter;
}

/// All that is new, and for a letter the picture of it.
void SessionDecoder::showLetter(std::optional<int> letter) {
    refresh();
    if (letter && screen_)
        output_.writeWindow(place(), parts_.settings.FeedbackTargetFolder, screen_->windowPicture(),
                            *letter);
}

bool SessionDecoder::atStep(VolumeStep step, const VolumeAtHand& hand) {
    if (step != VolumeStep::LetterDecoder)
        return true;
    if (hand.played)
        lastPlayed_ = hand.volume;
    if (!screen_)
        return true;
    showLetter(takeVolumes(hand));
    if (!hand.played && !sources_.offline)
        output_.writeDisplay(screen_->letterDisplay(), hand.volume);
    return true;
}

/// One volume, as a rule. The letter that was decoded at the one at hand.
std::optional<int> SessionDecoder::takeVolumes(const VolumeAtHand& hand) {
    if (sources_.offline || !run_.hasROIs(decoder_.settings().NrOfDataROIs))
        return std::nullopt;
    takeCurves(hand.volume);
    std::optional<int> letter;
    for (int volume = decoder_.currentVolume() + 1; decoder_.isReady() && volume <= hand.volume;
         ++volume) {
        const bool played = volume <= lastPlayed_;
        letter.reset();
        if (decoder_.takeVolume(volume))
            letter = decodeCurrentLetter(played);
        if (played)
            letter.reset();
    }
    return letter;
}

// A recovery logs the last letter, since a run that was broken off had no end; but nobody waits for
// its picture.
void SessionDecoder::loopEnded(QtCortivoDoc&) {
    if (!screen_ || sources_.offline || !run_.hasROIs(decoder_.settings().NrOfDataROIs))
        return;
    const bool measured = lastPlayed_ < decoder_.currentVolume();
    const std::optional<int> letter = decoder_.endRun() ? decodeCurrentLetter(false) : std::nullopt;
    showLetter(measured ? letter : std::nullopt);
}

// The document stays for a while, but names and folders are those of another run.
void SessionDecoder::settingsFileChanged() {
    documentsLeaving();
}

void SessionDecoder::documentsLeaving() {
    run_.setDocument(nullptr);
    if (!sources_.offline)
        restart(decoder_.settings().NrOfTimePoints);
    refresh();
}

void SessionDecoder::documentsArrived(QtCortivoDoc& functional) {
    run_.setDocument(&functional);
    lastPlayed_ = -1;
    preparationPlayed_ = false;
}

void SessionDecoder::runPrepared(QtCortivoDoc&) {
    output_.beginDisplays(parts_.settings.FeedbackTargetFolder);
    if (!sources_.offline && isPrepared()) {
        const int points = run_.nrOfTimePoints();
        restart(points == preparedPoints_ ? decoder_.settings().NrOfTimePoints : points);
        preparedPoints_ = points;
        if (screen_ && parts_.phase.canBeStopped()) // a reload writes nothing
            output_.writeScaledWeights(place(), decoder_.settings().TaskVOIWeights);
        recordPreparation();
    }
    takeMeasuredCurves();
    refresh();
}

void SessionDecoder::regionsChanged(QtCortivoDoc&) {
    takeMeasuredCurves();
    refresh();
}
