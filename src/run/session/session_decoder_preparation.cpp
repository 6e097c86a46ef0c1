// What the operator prepares for the letters, and what keeps the operator from something.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/paths.h"
#include "run/document/session_phase.h"
#include "run/session/sample_files.h"
#include "run/session/session_decoder.h"

#include <QDir>

DecoderPreparation SessionDecoder::preparation() const {
    DecoderPreparation preparation{sources_, decoder_.settings()};
    preparation.settings.TaskVOIWeights = enteredWeights_;
    if (!sources_.offline)
        preparation.settings.NrOfTimePoints = run_.nrOfTimePoints();
    return preparation;
}

QString SessionDecoder::samplePath() const {
    return sampleMessagePath(sampleFolder_);
}

bool SessionDecoder::isSample() const {
    return sources_.offline && isSampleMessage(sources_.dataPath, sampleFolder_);
}

bool SessionDecoder::prepare(const DecoderPreparation& preparation) {
    preparationTried_ = true;
    sources_ = preparation;
    enteredWeights_ = preparation.settings.TaskVOIWeights;
    preparedPoints_ = run_.nrOfTimePoints();
    // A subject's own responses don't fit the sample.
    referencesFrom_ =
        foundReferences(sources_.referencesPath, isSample() ? QString() : run_.targetFolder());
    std::optional<PreparedData> data = loadPrepared(preparation, referencesFrom_);
    const bool loaded = data.has_value();
    if (!loaded)
        data.emplace();
    DecoderSettings settings = preparation.settings;
    settings.TaskVOIWeights = scaledWeights(enteredWeights_);
    decoder_.begin(std::move(settings), std::move(data->references),
                   sources_.offline ? LetterDecoder::Source::File : LetterDecoder::Source::Run);
    curves_ = std::move(data->curves);
    if (loaded) {
        logPrepared();
        output_.writeScaledWeights(place(), decoder_.settings().TaskVOIWeights);
        if (!place().isWritable)
            showInformation(QStringLiteral("The folder \"%1\" can't be written. The sample message "
                                           "is decoded without files of its results.")
                                .arg(sampleFolder_));
    }
    takeMeasuredCurves();
    recordPreparation();
    refresh();
    return loaded;
}

void SessionDecoder::logPrepared() {
    log(QStringLiteral("Loaded ideal responses \"%1\"").arg(referencesFrom_));
    if (sources_.offline)
        log((isSample() ? QStringLiteral("Loaded the sample message \"%1\"")
                        : QStringLiteral("Loaded VOI time courses \"%1\""))
                .arg(sources_.dataPath));
    if (const QString note = missingHelpersNote(decoder_.settings()); !note.isEmpty())
        log(note);
}

bool SessionDecoder::reloadROIDataForOfflineAnalysis() {
    return reloadHindrance().isEmpty() && prepare(preparation());
}

// A name alone may be another file's by now, and where the results of a recovery go.
RecordedDecoder SessionDecoder::recordedPreparation() const {
    DecoderSettings settings = decoder_.settings();
    settings.TaskVOIWeights = enteredWeights_;
    const bool ofProgram = referencesFrom_.startsWith(':');
    return {std::move(settings), ofProgram ? sources_.referencesPath : referencesFrom_};
}

void SessionDecoder::recordPreparation() {
    if (isPrepared() && !sources_.offline && parts_.phase.canBeStopped())
        parts_.listeners.record({decoderRecord, encodedDecoder(recordedPreparation())});
}

// Also without a window, which may open later. Other scores alone leave the letters that there are,
// and need no file: one that has gone is told of once.
void SessionDecoder::recordPlayed(const RunRecord& record) {
    if (record.name != decoderRecord)
        return;
    RecordedDecoder now = recordedPreparation();
    const std::optional<RecordedDecoder> recorded = decodedDecoder(record.content, now.settings);
    if (!recorded)
        return;
    const DecoderSettings& settings = recorded->settings;
    now.settings.UseCorr = settings.UseCorr;
    now.settings.UseBeta = settings.UseBeta;
    now.settings.ABCDMode = settings.ABCDMode;
    const bool isTaken = preparationPlayed_ || isPrepared();
    preparationPlayed_ = true;
    if (isTaken && !sources_.offline && encodedDecoder(now) == record.content) {
        changeScores(settings.UseCorr, settings.UseBeta);
        changeABCDMode(settings.ABCDMode);
    } else {
        prepare({{recorded->referencesPath, false, {}}, settings});
    }
}

QString SessionDecoder::letterHindrance() const {
    return parts_.phase.canBeStopped() ? QStringLiteral("Not while a run is measured")
                                       : dataHindrance();
}

QString SessionDecoder::dataHindrance() const {
    if (!decoder_.isReady())
        return QStringLiteral("The decoding is not prepared");
    if (sources_.offline)
        return {};
    if (!run_.isInMemory())
        return QStringLiteral("There is no run in memory");
    if (run_.hasROIs(decoder_.settings().NrOfDataROIs))
        return {};
    const int least = std::max(decoder_.settings().NrOfDataROIs, leastDecoderROIs);
    return (least == nrOfDecoderROIs ? QStringLiteral("The run needs %1 ROIs")
                                     : QStringLiteral("The run needs %1 to %2 ROIs").arg(least))
        .arg(nrOfDecoderROIs);
}

QString SessionDecoder::playHindrance() const {
    return offersSample() ? QString() : fileHindrance();
}

/// Why no further volume of a file can be taken.
QString SessionDecoder::fileHindrance() const {
    if (!sources_.offline)
        return QStringLiteral("Only time courses of a file are played");
    if (const QString hindrance = letterHindrance(); !hindrance.isEmpty())
        return hindrance;
    return decoder_.currentVolume() + 1 < decoder_.settings().NrOfTimePoints
               ? QString()
               : QStringLiteral("All volumes of the file have been taken");
}

QString SessionDecoder::reloadHindrance() const {
    return sources_.offline ? QString()
                            : QStringLiteral("Only time courses of a file are reloaded");
}

QString SessionDecoder::responsesHindrance() const {
    if (parts_.phase.canBeStopped())
        return QStringLiteral("Not while a run is measured");
    return run_.hasDocument() ? QString() : QStringLiteral("There is no run in memory");
}

QString SessionDecoder::proposedResponsesPath(const QString& dataPath) const {
    return freeResponsesPath(run_.targetFolder().isEmpty() ? paths::folderWithSlash(dataPath)
                                                           : run_.targetFolder());
}

bool SessionDecoder::createEmpiricalResponses(const EmpiricalOptions& options,
                                              const QString& path) {
    if (!responsesHindrance().isEmpty()) {
        showModelessInformation(responsesHindrance() + '.');
        return false;
    }
    return createResponses(options, run_.training(), path);
}

bool SessionDecoder::createEmpiricalResponses(const EmpiricalOptions& options,
                                              const QString& curvesPath,
                                              const QString& protocolPath, const QString& path) {
    const std::optional<TrainingRun> run = readTrainingRun(curvesPath, protocolPath);
    return run && createResponses(options, *run, path);
}

bool SessionDecoder::createResponses(const EmpiricalOptions& options, const TrainingRun& run,
                                     const QString& path) {
    const std::optional<ReferenceCurves> responses = trainedResponses(options, run);
    if (!responses)
        return false;
    if (!run_.targetFolder().isEmpty() && paths::folderWithSlash(path) == run_.targetFolder())
        QDir().mkpath(run_.targetFolder()); // made with the first run, as a rule
    if (!writeReferences(*responses, path))
        return false;
    log(QStringLiteral("Created the empirical responses \"%1\"").arg(path));
    return true;
}
