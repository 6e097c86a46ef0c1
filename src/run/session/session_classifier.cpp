// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_classifier.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "classify/pattern_file.h"
#include "classify/svm_model_file.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "run/document/session_phase.h"
#include "run/session/classifier_records.h"
#include "run/session/target_folder.h"

#include <QDir>

SessionClassifier::SessionClassifier(const Parts& parts) : parts_(parts) {
    parts_.listeners.add(*this, ListenerPlace::Classification);
}

void SessionClassifier::open(ClassifierScreen& screen) {
    screen_ = &screen;
    if (!isPredicting())
        readTraining();
    recordChoices();
    screen.refreshControls();
}

void SessionClassifier::close() {
    if (isPredicting())
        switchOff();
    screen_ = nullptr;
}

void SessionClassifier::log(const QString& text) {
    if (screen_)
        screen_->log(text);
}

void SessionClassifier::recordChoices() {
    if ((screen_ || isPredicting()) && parts_.phase.canBeStopped())
        parts_.listeners.record(
            {classifierRecord,
             encodedClassifier({options_, modelPath_, voxelsPath_, isPredicting()})});
}

void SessionClassifier::announceChange() {
    recordChoices();
    parts_.listeners.classifierChanged();
    if (screen_)
        screen_->refreshControls();
}

void SessionClassifier::setOptions(const LiveOptions& options) {
    if (options == options_)
        return;
    options_ = options;
    recordChoices();
}

QString SessionClassifier::targetFolder() const {
    return targetFolderOf(document_, parts_.settings);
}

TrainingFiles SessionClassifier::findTrainingFiles() const {
    QStringList folders{targetFolder(), paths::folderWithSlash(modelPath_)};
    folders.removeAll(QString());
    return readTrainingFiles(folders);
}

void SessionClassifier::takeSettings(const TrainingFiles& files) {
    takeTrialSettings(files.settings.value_or(defaultLiveOptions().trial), options_);
    settingsText_ = files.settings ? files.settingsText : QString();
    if (files.settings)
        log(QStringLiteral("Loaded \"%1\" file:").arg(trialSettingsFileName));
    else
        log(QStringLiteral("Can not find \"%1\" file - assuming default settings:")
                .arg(trialSettingsFileName));
    for (const QString& line : trialSettingsReport(options_.trial))
        log(line);
    if (files.settings && files.settings->response != TrialResponse::StandardTwoGamma)
        log("WARNING: The training used another response than the standard one. A run uses the "
            "standard one.");
}

void SessionClassifier::takeVoxels(const TrainingFiles& files) {
    voxels_ = files.voxels.value_or(VoxelList());
    voxelsPath_ = files.voxels ? files.voxelsPath : QString();
    if (files.voxels)
        log(QStringLiteral("Loaded \"%1\" file containing %2 voxels")
                .arg(voxelsFileName)
                .arg(voxels_.size()));
    else
        log(QStringLiteral("Can not find \"%1\" file - testing not possible!").arg(voxelsFileName));
}

void SessionClassifier::readTraining() {
    const TrainingFiles files = findTrainingFiles();
    if (!files.folder.isEmpty())
        log(QStringLiteral("Training files in \"%1\":").arg(files.folder));
    takeSettings(files);
    takeVoxels(files);
}

// Files in the run's folder replace what was read before if they differ from it. Otherwise that
// stays, with what the operator has changed of it.
void SessionClassifier::takeNewTraining() {
    const TrainingFiles files = findTrainingFiles();
    const bool newSettings = files.settings && files.settingsText != settingsText_;
    const bool newVoxels = files.voxels && *files.voxels != voxels_;
    if (newSettings || newVoxels)
        log(QStringLiteral("Training files in \"%1\":").arg(files.folder));
    if (newSettings)
        takeSettings(files);
    if (newVoxels)
        takeVoxels(files);
}

void SessionClassifier::chooseModel(const QString& path) {
    if (isPredicting())
        return;
    modelPath_ = path;
    if (voxelsPath_.isEmpty()) // those beside the model may serve
        takeNewTraining();
    recordChoices();
    if (screen_)
        screen_->refreshControls();
}

void SessionClassifier::toggleIncrementalPrediction() {
    if (isPredicting())
        switchOff();
    else
        switchOn();
}

void SessionClassifier::switchOn() {
    const auto refuse = [this](const QString& text) {
        if (parts_.phase.canBeStopped())
            showModelessWarning(text);
        else
            showWarning(text);
    };
    const QString inFile = QStringLiteral("\n\n\"%1\"").arg(modelPath_);
    if (modelPath_.isEmpty())
        return refuse("No model file available!\n\nFirst train or load a SVM classifier.");
    if (!fileExists(modelPath_))
        return refuse("Can not find specified model file" + inFile);
    SVMModel model;
    const QString fault = readModelQuietly(modelPath_, model);
    if (!fault.isEmpty())
        return refuse("Can not use specified model file" + inFile + "\n\n" + fault);
    begin(std::move(model));
}

void SessionClassifier::begin(SVMModel model) {
    classifier_.start(std::move(model), voxels_);
    last_.reset();
    for (const char* line :
         {"Output printed if full trial data available", "", "Starting incremental prediction..."})
        log(line);
    warnOfUse();
    announceChange();
}

void SessionClassifier::switchOff() {
    classifier_.stop();
    log("Incremental prediction completed.");
    log("");
    savePatterns();
    announceChange();
}

void SessionClassifier::savePatterns() {
    if (!document_ || document_->project.targetFolder.isEmpty()) // there has been no run
        return;
    // An empty file must not replace the patterns of an earlier run.
    if (classifier_.patterns().count() == 0)
        return log("No patterns were estimated, so none are saved.");
    const QString& folder = document_->project.targetFolder;
    QDir().mkpath(folder);
    const QString path = paths::join(folder, onlinePatternsFileName);
    if (writeFileAtomically(path,
                            patternFileContent(classifier_.patterns(), PatternFileForm::Text)))
        return log(QStringLiteral("Saved estimated patterns to disk as \"%1\"")
                       .arg(onlinePatternsFileName));
    log(QStringLiteral("Not saved: \"%1\"").arg(path));
    showModelessWarning(
        QStringLiteral("WARNING: The estimated patterns of the run could not be saved as \"%1\".")
            .arg(path));
}

void SessionClassifier::warnOfUse() {
    ClassifierUse use{modelPath_, classifier_.model(), voxels_, options_.trial.intensityLimit};
    // Before a run is prepared its document is empty.
    if (document_ && !document_->project.volumes.empty()) {
        use.size = document_->project.size();
        use.protocolInVolumes = document_->protocol.resolutionOfTime == ResolutionOfTime::Volumes;
    }
    const QStringList sentences = classifierWarnings(use);
    for (const QString& sentence : sentences)
        log("WARNING: " + sentence);
    if (!sentences.isEmpty())
        showModelessWarning("WARNING: " + sentences.join("\n\n"));
}

int SessionClassifier::nrOfClasses() const {
    return classifier_.nrOfClasses();
}

bool SessionClassifier::currentOutput(std::span<float> values) const {
    const std::span<const float> output = classifier_.pairValues();
    std::copy_n(output.begin(), std::min(output.size(), values.size()), values.begin());
    return classifier_.outputValid();
}

int SessionClassifier::predictedClass() const {
    return classifier_.predictedClass();
}

// The model stays: the next run is often that for which it was trained.
void SessionClassifier::settingsFileChanged() {
    if (isPredicting())
        switchOff();
    options_ = defaultLiveOptions();
    settingsText_.clear();
}

void SessionClassifier::documentsLeaving() {
    document_ = nullptr;
}

void SessionClassifier::documentsArrived(QtCortivoDoc& functional) {
    document_ = &functional;
}

void SessionClassifier::runPrepared(QtCortivoDoc&) {
    if (screen_ || isPredicting())
        takeNewTraining();
    if (isPredicting())
        restart();
    recordChoices();
    if (screen_)
        screen_->refreshControls();
}

// The model may have been trained again since prediction was switched on.
void SessionClassifier::restart() {
    SVMModel model;
    const QString fault = readModelQuietly(modelPath_, model);
    if (fault.isEmpty()) {
        log(QStringLiteral("Loaded model \"%1\"").arg(modelPath_));
        classifier_.start(std::move(model), voxels_);
    } else {
        const QString text =
            QStringLiteral("WARNING: The model file \"%1\" can no longer be used. %2 This run is "
                           "predicted with what was read from it before.")
                .arg(modelPath_, fault);
        log(text);
        showModelessWarning(text);
        classifier_.restart(voxels_);
    }
    last_.reset();
    warnOfUse();
}

bool SessionClassifier::atStep(VolumeStep step, const VolumeAtHand& hand) {
    if (step != VolumeStep::Classification || !isPredicting())
        return true;
    const QtCortivoDoc& document = hand.document;
    const FMRProject& project = document.project;
    QString fault;
    const std::optional<LivePrediction> prediction =
        classifier_.step({project.volumes, project.size(), document.protocol, hand.volume,
                          int(project.volumes.size()), project.TR},
                         options_, fault);
    if (!fault.isEmpty())
        log(fault);
    if (prediction) {
        last_ = prediction;
        log(predictionLine(*prediction));
    }
    if (screen_)
        screen_->refreshControls();
    return true;
}

void SessionClassifier::loopEnded(QtCortivoDoc&) {
    if (isPredicting())
        toggleIncrementalPrediction();
}

// Also without a screen: the patterns of the run are completed.
void SessionClassifier::recordPlayed(const RunRecord& record) {
    if (record.name != classifierRecord)
        return;
    const std::optional<RecordedClassifier> recorded = decodedClassifier(record.content);
    if (!recorded)
        return;
    options_ = recorded->options;
    if (!recorded->isPredicting && isPredicting())
        switchOff();
    const bool differs = modelPath_ != recorded->modelPath || voxelsPath_ != recorded->voxelsPath;
    if (differs) {
        modelPath_ = recorded->modelPath;
        voxelsPath_ = recorded->voxelsPath;
        voxels_ = readVoxels(voxelsPath_).value_or(VoxelList());
    }
    if (recorded->isPredicting && (differs || !isPredicting()))
        switchOn();
    if (screen_)
        screen_->refreshControls();
}
