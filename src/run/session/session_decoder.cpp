// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_decoder.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "decoder/decoding_log.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/run_report.h"
#include "run/document/session_phase.h"
#include "run/protocol/prt_file.h"
#include "run/session/sample_files.h"
#include "run/settings/run_settings.h"

#include <QDir>
#include <QFileInfo>

namespace {

/// Valid values of a region's curve, of the volumes 0 to `volume`.
std::vector<float> curveOf(const RegionOfInterest& region, int volume) {
    const int known =
        std::clamp(std::min(volume, region.CurrentTimePoint) + 1, 0, region.NrOfValues());
    return {region.TimeCourseValues.begin(), region.TimeCourseValues.begin() + known};
}

void warnNotWritten(const QString& path) {
    showModelessWarning(
        QStringLiteral("ERROR: Can not open output file \"%1\" for writing.").arg(path));
}

} // namespace

SessionDecoder::SessionDecoder(const Parts& parts) : parts_(parts) {
    decoder_.setGate([this] { return appendToOutput({}); });
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

QString SessionDecoder::targetFolder() const {
    const bool ofRun = document_ && !document_->project.targetFolder.isEmpty();
    return ofRun ? document_->project.targetFolder : parts_.settings.TargetFolder;
}

QString SessionDecoder::outputFolder() const {
    return preparation_.offline ? paths::folderWithSlash(preparation_.dataPath) : targetFolder();
}

// Beside a file inside the program nothing can be written.
bool SessionDecoder::writesOutput() const {
    return !preparation_.offline || !isInsideProgram(preparation_.dataPath);
}

QString SessionDecoder::dataName() const {
    return preparation_.offline ? paths::withoutExtension(paths::fileName(preparation_.dataPath))
                                : parts_.settings.projectBaseName;
}

QString SessionDecoder::outputPath() const {
    const QString name = dataName();
    return paths::join(outputFolder(), name.isEmpty()
                                           ? QStringLiteral("Auto-Decoded.txt")
                                           : QStringLiteral("_AUTODECODED_%1.txt").arg(name));
}

QString SessionDecoder::referencesPath() const {
    const QString& path = preparation_.referencesPath;
    if (path.contains(u'/'))
        return path;
    // A subject's own responses don't fit the sample.
    const QString inTarget = paths::join(targetFolder(), path);
    return !targetFolder().isEmpty() && !isSample() && fileExists(inTarget) ? inTarget
                                                                            : ":/decoder/" + path;
}

QString SessionDecoder::fault() const {
    return displays_.fault().isEmpty() ? pictures_.fault() : displays_.fault();
}

int SessionDecoder::pointsOfRun() const {
    const bool ofRun = document_ && document_->project.NrOfVolumes > 0;
    return std::max(ofRun ? document_->project.NrOfVolumes : parts_.settings.nrOfAnalysedVolumes(),
                    0);
}

DecoderPreparation SessionDecoder::preparation() const {
    DecoderPreparation preparation = preparation_;
    if (!preparation.offline)
        preparation.settings.NrOfTimePoints = pointsOfRun();
    return preparation;
}

CurvesSize SessionDecoder::sizeOfRun() const {
    const int count = document_ ? document_->regions.count() : 0;
    const bool isDecoded = count >= leastDecoderROIs && count <= nrOfDecoderROIs;
    return {isDecoded ? count : nrOfDecoderROIs, pointsOfRun()};
}

QString SessionDecoder::samplePath() const {
    return sampleMessagePath(sampleFolder_);
}

bool SessionDecoder::isSample() const {
    return preparation_.offline && isSampleMessage(preparation_.dataPath, sampleFolder_);
}

bool SessionDecoder::prepare(const DecoderPreparation& preparation) {
    preparationTried_ = true;
    preparation_ = preparation;
    preparedPoints_ = pointsOfRun();
    references_ = {};
    curves_ = {};
    const bool loaded = loadReferencesOfPreparation() && loadData();
    if (!loaded)
        references_ = {};
    restart();
    if (loaded && writesOutput())
        writeScaledWeights();
    else if (loaded)
        showInformation(QStringLiteral("The folder \"%1\" can't be written. The sample message is "
                                       "decoded without files of its results.")
                            .arg(sampleFolder_));
    takeMeasuredCurves();
    referencesFrom_ = referencesPath();
    recordPreparation();
    refresh();
    return loaded;
}

bool SessionDecoder::loadReferencesOfPreparation() {
    const QString path = referencesPath();
    std::optional<ReferenceCurves> references =
        loadReferences(path, preparation_.settings.IdealResponseWindowSize);
    if (!references)
        return false;
    references_ = *std::move(references);
    log(QStringLiteral("Loaded ideal responses \"%1\"").arg(path));
    return true;
}

bool SessionDecoder::loadData() {
    if (!preparation_.offline)
        return true;
    const DecoderSettings& settings = preparation_.settings;
    std::optional<OfflineCurves> data =
        loadOfflineCurves(preparation_.dataPath, {settings.NrOfDataROIs, settings.NrOfTimePoints});
    if (!data)
        return false;
    curves_ = std::move(data->curves);
    log((isSample() ? QStringLiteral("Loaded the sample message \"%1\"")
                    : QStringLiteral("Loaded VOI time courses \"%1\""))
            .arg(preparation_.dataPath));
    return true;
}

bool SessionDecoder::reloadROIDataForOfflineAnalysis() {
    return preparation_.offline && prepare(DecoderPreparation(preparation_));
}

// The folder of a run is known when the run is prepared, at the latest.
void SessionDecoder::writeScaledWeights() {
    if (outputFolder().isEmpty())
        return;
    QDir().mkpath(outputFolder());
    const QString path = paths::join(outputFolder(), QStringLiteral("ScaledTaskVOIWeights.txt"));
    if (!writeFileAtomically(path, scaledWeightsText(decoder_.settings().TaskVOIWeights)))
        warnNotWritten(path);
}

void SessionDecoder::restart() {
    DecoderSettings settings = preparation_.settings;
    settings.TaskVOIWeights = scaledWeights(settings.TaskVOIWeights);
    decoder_.begin(std::move(settings), references_,
                   preparation_.offline ? LetterDecoder::Source::File : LetterDecoder::Source::Run);
    if (!preparation_.offline)
        curves_ = {};
}

void SessionDecoder::changeScores(bool useCorr, bool useBeta) {
    preparation_.settings.UseCorr = useCorr;
    preparation_.settings.UseBeta = useBeta;
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
    preparation_.settings.ABCDMode = on;
    decoder_.changeABCDMode(on);
    recordPreparation();
    refresh();
}

bool SessionDecoder::runHasROIs() const {
    const int count = document_ ? document_->regions.count() : 0;
    return count >= leastDecoderROIs && count <= nrOfDecoderROIs &&
           preparation_.settings.NrOfDataROIs <= count;
}

void SessionDecoder::takeCurves(int volume) {
    const Regions& regions = document_->regions;
    const int used = std::min(preparation_.settings.NrOfDataROIs, regions.count());
    for (int i = 0; i < nrOfDecoderROIs; ++i)
        curves_[size_t(i)] = i < used ? curveOf(regions[i], volume)
                                      : std::vector<float>(size_t(std::max(volume + 1, 0)), 0.5f);
}

void SessionDecoder::takeMeasuredCurves() {
    if (!preparation_.offline && document_)
        takeCurves(recordedVolumes(parts_.report, document_->project) - 1);
}

QString SessionDecoder::letterHindrance() const {
    return parts_.phase.canBeStopped() ? QStringLiteral("Not while a run is measured")
                                       : dataHindrance();
}

QString SessionDecoder::dataHindrance() const {
    if (!decoder_.isReady())
        return QStringLiteral("The decoding is not prepared");
    if (preparation_.offline)
        return {};
    if (!runIsInMemory())
        return QStringLiteral("There is no run in memory");
    return runHasROIs() ? QString()
                        : QStringLiteral("The run needs %1 to %2 ROIs")
                              .arg(std::max(preparation_.settings.NrOfDataROIs, leastDecoderROIs))
                              .arg(nrOfDecoderROIs);
}

bool SessionDecoder::runIsInMemory() const {
    return document_ && recordedVolumes(parts_.report, document_->project) > 0;
}

bool SessionDecoder::offersSample() const {
    return !preparationTried_ && !runIsInMemory() && !parts_.phase.canBeStopped();
}

bool SessionDecoder::mayPlay() const {
    const bool hasVolumes = decoder_.currentVolume() + 1 < decoder_.settings().NrOfTimePoints;
    return offersSample() || (preparation_.offline && hasVolumes && letterHindrance().isEmpty());
}

bool SessionDecoder::beginPlaying() {
    if (!offersSample())
        return mayPlay();
    DecoderPreparation sample;
    sample.offline = true;
    sample.dataPath = samplePath();
    const std::optional<CurvesSize> size = sizeOfOfflineCurves(sample.dataPath);
    if (size) {
        sample.settings.NrOfDataROIs = size->nrOfROIs;
        sample.settings.NrOfTimePoints = size->nrOfTimePoints;
    }
    return prepare(sample);
}

void SessionDecoder::goToNextLetter() {
    goTo(&LetterDecoder::goToNextLetter);
}

void SessionDecoder::goToPreviousLetter() {
    goTo(&LetterDecoder::goToPreviousLetter);
}

void SessionDecoder::processCurrentLetterWindow() {
    goTo(&LetterDecoder::processCurrentLetterWindow);
}

void SessionDecoder::goTo(
    std::optional<LetterDecoding> (LetterDecoder::*step)(const ROICurves& curves)) {
    if (!letterHindrance().isEmpty())
        return;
    takeMeasuredCurves();
    played_ = false;
    take((decoder_.*step)(curves_), true);
}

bool SessionDecoder::nextTR() {
    if (!preparation_.offline || !mayPlay())
        return false;
    played_ = false;
    take(decoder_.takeVolume(decoder_.currentVolume() + 1, curves_), true);
    return true;
}

bool SessionDecoder::appendToOutput(const QByteArray& text) {
    if (played_ || !writesOutput())
        return true;
    const QString path = outputPath();
    if (!outputFolder().isEmpty())
        QDir().mkpath(outputFolder());
    if (appendToLog(path, text, false))
        return true;
    warnNotWritten(path);
    return false;
}

void SessionDecoder::take(const std::optional<LetterDecoding>& decoding, bool withPicture) {
    if (decoding) {
        const QString text = decodingLog(decoder_.settings(), *decoding);
        static_cast<void>(appendToOutput(text.toUtf8()));
        log(text);
    }
    refresh();
    if (decoding && withPicture)
        savePicture(decoding->letter);
}

void SessionDecoder::savePicture(int letter) {
    if (!screen_ || !writesOutput())
        return;
    const QString& feedbackFolder = parts_.settings.FeedbackTargetFolder;
    const QString name = dataName();
    pictures_.begin(feedbackFolder.isEmpty() ? outputFolder() : feedbackFolder,
                    name.isEmpty() ? QStringLiteral("BOLDDecoder")
                                   : QStringLiteral("BOLDDecoder-%1").arg(name));
    pictures_.writePicture(screen_->windowPicture(), letter);
}

bool SessionDecoder::atStep(VolumeStep step, const VolumeAtHand& hand) {
    if (step != VolumeStep::LetterDecoder)
        return true;
    if (hand.played)
        lastPlayed_ = hand.volume;
    if (!screen_)
        return true;
    takeVolumes(hand);
    refresh();
    if (!hand.played)
        displays_.writePicture(screen_->letterDisplay(), hand.volume);
    return true;
}

// One volume, as a rule.
void SessionDecoder::takeVolumes(const VolumeAtHand& hand) {
    if (preparation_.offline || !runHasROIs())
        return;
    takeCurves(hand.volume);
    if (!decoder_.isReady())
        return;
    for (int volume = decoder_.currentVolume() + 1; volume <= hand.volume; ++volume) {
        played_ = volume <= lastPlayed_;
        if (const auto decoding = decoder_.takeVolume(volume, curves_))
            take(decoding, volume == hand.volume && !played_);
    }
}

// A recovery logs the last letter, since a run that was broken off had no end; but nobody waits for
// its picture.
void SessionDecoder::loopEnded(QtCortivoDoc&) {
    if (!screen_ || preparation_.offline || !runHasROIs())
        return;
    played_ = false;
    take(decoder_.endRun(curves_), lastPlayed_ < decoder_.currentVolume());
}

// The document stays for a while, but names and folders are those of another run.
void SessionDecoder::settingsFileChanged() {
    documentsLeaving();
}

void SessionDecoder::documentsLeaving() {
    document_ = nullptr;
    if (!preparation_.offline)
        restart();
    refresh();
}

void SessionDecoder::documentsArrived(QtCortivoDoc& functional) {
    document_ = &functional;
    lastPlayed_ = -1;
    preparationPlayed_ = false;
}

void SessionDecoder::runPrepared(QtCortivoDoc&) {
    displays_.begin(parts_.settings.FeedbackTargetFolder, QStringLiteral("LetterDisplay"));
    if (!preparation_.offline && isPrepared()) {
        const int points = pointsOfRun();
        if (points != preparedPoints_)
            preparation_.settings.NrOfTimePoints = preparedPoints_ = points;
        restart();
        if (screen_ && parts_.phase.canBeStopped()) // a reload writes nothing
            writeScaledWeights();
        recordPreparation();
    }
    takeMeasuredCurves();
    refresh();
}

// A name alone may be another file's by now, and where the results of a recovery go.
RecordedDecoder SessionDecoder::recordedPreparation() const {
    const bool ofProgram = referencesFrom_.startsWith(':');
    return {preparation_.settings, ofProgram ? preparation_.referencesPath : referencesFrom_};
}

void SessionDecoder::recordPreparation() {
    if (isPrepared() && !preparation_.offline && parts_.phase.canBeStopped())
        parts_.listeners.record({decoderRecord, encodedDecoder(recordedPreparation())});
}

// Also without a window, which may open later. Other scores alone leave the letters that there are,
// and need no file: one that has gone is told of once.
void SessionDecoder::recordPlayed(const RunRecord& record) {
    if (record.name != decoderRecord)
        return;
    const std::optional<RecordedDecoder> recorded =
        decodedDecoder(record.content, preparation_.settings);
    if (!recorded)
        return;
    const DecoderSettings& settings = recorded->settings;
    RecordedDecoder now = recordedPreparation();
    now.settings.UseCorr = settings.UseCorr;
    now.settings.UseBeta = settings.UseBeta;
    now.settings.ABCDMode = settings.ABCDMode;
    const bool isTaken = preparationPlayed_ || isPrepared();
    preparationPlayed_ = true;
    if (isTaken && !preparation_.offline && encodedDecoder(now) == record.content) {
        changeScores(settings.UseCorr, settings.UseBeta);
        changeABCDMode(settings.ABCDMode);
    } else {
        prepare({settings, recorded->referencesPath, false, {}});
    }
}

void SessionDecoder::regionsChanged(QtCortivoDoc&) {
    takeMeasuredCurves();
    refresh();
}

QString SessionDecoder::proposedResponsesPath(const QString& dataPath) const {
    const QString folder =
        targetFolder().isEmpty() ? paths::folderWithSlash(dataPath) : targetFolder();
    if (folder.isEmpty())
        return {};
    const QString start = paths::join(folder, QStringLiteral("EmpiricalResponses"));
    QString path = start + ".rtc";
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = start + QStringLiteral("-%1.rtc").arg(number);
    return path;
}

QString SessionDecoder::responsesHindrance() const {
    if (parts_.phase.canBeStopped())
        return QStringLiteral("Not while a run is measured");
    return document_ ? QString() : QStringLiteral("There is no run in memory");
}

bool SessionDecoder::createEmpiricalResponses(const EmpiricalOptions& options,
                                              const QString& path) {
    if (!responsesHindrance().isEmpty()) {
        showModelessInformation(responsesHindrance() + '.');
        return false;
    }
    const int last = recordedVolumes(parts_.report, document_->project) - 1;
    std::vector<std::vector<float>> curves;
    for (int i = 0; i < document_->regions.count(); ++i)
        curves.push_back(curveOf(document_->regions[i], last));
    return writeResponses(options, curves, document_->protocol, double(document_->project.TR),
                          path);
}

bool SessionDecoder::createEmpiricalResponses(const EmpiricalOptions& options,
                                              const QString& curvesPath,
                                              const QString& protocolPath, const QString& path) {
    const std::optional<OfflineCurves> data = loadOfflineCurves(curvesPath);
    StimulationProtocol protocol;
    protocol.protocolPath = protocolPath;
    if (!data || !readPRTFile(protocol, ResponseTable::Skip))
        return false;
    if (protocol.resolutionOfTime == ResolutionOfTime::Milliseconds) {
        showWarning("WARNING - Can not create reference file: the protocol needs to be in volumes, "
                    "since the data do not state how long a volume takes.");
        return false;
    }
    constexpr double unknownTR = 0.0;
    return writeResponses(options, std::span(data->curves).first(size_t(data->size.nrOfROIs)),
                          protocol, unknownTR, path);
}

bool SessionDecoder::writeResponses(const EmpiricalOptions& options,
                                    std::span<const std::vector<float>> curves,
                                    const StimulationProtocol& protocol, double TR,
                                    const QString& path) {
    const QString fault = empiricalFault(options, int(curves.size()), protocol);
    if (!fault.isEmpty()) {
        showWarning(fault);
        return false;
    }
    const std::optional<ReferenceCurves> responses =
        empiricalResponses(options, curves, protocol, TR);
    if (!responses) {
        showWarning("WARNING - Can not create reference file: for each duration the data need a "
                    "trial.");
        return false;
    }
    if (!targetFolder().isEmpty() && paths::folderWithSlash(path) == targetFolder())
        QDir().mkpath(targetFolder()); // made with the first run, as a rule
    if (!writeReferences(*responses, path))
        return false;
    log(QStringLiteral("Created the empirical responses \"%1\"").arg(path));
    return true;
}
