// The operator's work with a classifier during a run, and what a run does for it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/live_classifier.h"
#include "feedback/classifier_output.h"
#include "run/loop/run_listeners.h"
#include "run/session/training_files.h"

class SessionPhase;
struct RunSettings;

inline const QString onlinePatternsFileName = QStringLiteral("OnlineClassifiedPatterns.mvp");

/// What shows the classifier: the operator's dialog.
class ClassifierScreen {
public:
    virtual ~ClassifierScreen() = default;
    virtual void log(const QString& text) = 0;
    /// Choices, model or state may have changed: the controls show them.
    virtual void refreshControls() = 0;
};

/// A member of the session. While it predicts it takes the step of each volume, and writes the
/// estimated patterns (`OnlineClassifiedPatterns.mvp`) when prediction is switched off, which the
/// end of a run does.
class SessionClassifier : public RunListener, public ClassifierOutput {
public:
    struct Parts {
        const RunSettings& settings;
        const SessionPhase& phase;
        RunListeners& listeners;
    };

    explicit SessionClassifier(const Parts& parts);

    /// The display opens: unless it predicts, the estimation settings and the voxels of the
    /// training are read, and the log says which were found. They lie in the target folder of the
    /// run in memory, or of the settings; else beside the model. The screen, which is not owned,
    /// must call close(), which switches prediction off.
    void open(ClassifierScreen& screen);
    void close();
    [[nodiscard]] bool isOpen() const { return screen_ != nullptr; }

    [[nodiscard]] const LiveOptions& options() const { return options_; }
    void setOptions(const LiveOptions& options);
    [[nodiscard]] const QString& modelPath() const { return modelPath_; }
    /// Does nothing while it predicts.
    void chooseModel(const QString& path);
    /// The folder to look for models in.
    [[nodiscard]] QString targetFolder() const;
    /// Switches prediction on or off. It stays off, after a message, without a model that can be
    /// used.
    void toggleIncrementalPrediction();
    [[nodiscard]] bool IncrementalPredictionOn() const { return isPredicting(); }

    [[nodiscard]] bool isPredicting() const override { return classifier_.isPredicting(); }
    [[nodiscard]] int nrOfClasses() const override;
    bool currentOutput(std::span<float> values) const override;
    [[nodiscard]] int predictedClass() const; ///< from 1; 0 when there is no prediction

    /// Since prediction was switched on or a run began.
    [[nodiscard]] int NrOfOnlinePatterns() const { return classifier_.patterns().count(); }
    [[nodiscard]] const std::optional<LivePrediction>& lastPrediction() const { return last_; }
    [[nodiscard]] int NrOfVoxelsUsed() const { return int(voxels_.size()); }

    void settingsFileChanged() override;
    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;
    bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;
    void recordPlayed(const RunRecord& record) override;

private:
    [[nodiscard]] TrainingFiles findTrainingFiles() const;
    void readTraining();
    void takeNewTraining();
    void takeVoxels(const TrainingFiles& files);
    void takeSettings(const TrainingFiles& files);
    void switchOn();
    void switchOff();
    void begin(SVMModel model);
    void restart();
    void savePatterns();
    void warnOfUse();
    void log(const QString& text);
    void recordChoices();
    void announceChange();

    Parts parts_;
    ClassifierScreen* screen_ = nullptr;
    QtCortivoDoc* document_ = nullptr;
    LiveClassifier classifier_;          ///< it has a model while it predicts, and else none
    std::optional<LivePrediction> last_; ///< stays when prediction ends, for the screen
    LiveOptions options_ = defaultLiveOptions();
    QString settingsText_; ///< of the file that the options were taken from
    VoxelList voxels_;     ///< for the next start; the classifier has a copy
    QString voxelsPath_;
    QString modelPath_;
};
