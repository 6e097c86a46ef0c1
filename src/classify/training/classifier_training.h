// The operator's work with finished runs: from single trials to a trained machine.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/cross_validation.h"
#include "classify/feature_scaling.h"
#include "classify/svm_prediction.h"
#include "classify/training/training_display.h"
#include "classify/training/weight_maps.h"
#include "classify/trial_maps.h"
#include "classify/trial_options.h"
#include "run/protocol/stimulation_protocol.h"

#include <map>
#include <memory>
#include <optional>

class RunSession;
struct MadePatterns;
struct PatternPlan;

/// What the operator chooses, beside the options of the estimation.
struct TrainingChoices {
    bool multiClass = false; ///< all conditions; otherwise two
    QString class1;          ///< of two classes: labels 1 and -1
    QString class2;
    int region = 0;               ///< of the run in memory, from 0
    bool trainingPatterns = true; ///< otherwise patterns to test with
    ScalingOptions scaling;
    SVMOptions svm;
    bool crossValidates = false;
    CrossValidationOptions folds;
    bool searchLinear = false; ///< for C, with the linear kernel
    bool searchRBF = false;    ///< likewise with RBF
    int nrOfPermutations = 1000;

    bool operator==(const TrainingChoices&) const = default;
};

/// Lists of runs, trial files and classes, the patterns and the model, and each operation on them.
/// Runs are loaded into a document of its own, so that the run in memory stays as it is; that run
/// gives the regions. Long work is done in the session's phase Analysing, with a progress box, and
/// can be stopped; a stopped operation has changed nothing and has written no file, but for the
/// estimation of several runs: those that are done keep their files. Operations that
/// need an idle session say so, in a modeless box, and do nothing while it isn't. Each returns
/// false after a message.
class ClassifierTraining {
public:
    ClassifierTraining(RunSession& session, TrainingDisplay& display);
    ~ClassifierTraining();

    TrialOptions options;    ///< of the estimation; edited by the dialog
    TrainingChoices choices; ///< likewise
    WeightMaps weightMaps;   ///< of the last training, over the run that was loaded last

    // Runs and the estimation of their trials.

    /// Project files (.fmr). One that is listed stays where it is; one whose header or protocol
    /// can't be read is left out after its message. Conditions are those of the first run's
    /// protocol.
    void addRuns(const QStringList& paths);
    void clearRuns();
    [[nodiscard]] const QStringList& runs() const { return runs_; }
    /// The conditions of a run's protocol, for its row; all are selected at first but the first
    /// one, which is the baseline.
    [[nodiscard]] const QStringList& conditions() const { return conditions_; }
    void selectConditions(const QStringList& names) { selectedConditions_ = names; }
    [[nodiscard]] const QStringList& selectedConditions() const { return selectedConditions_; }
    /// The conditions of the run in this row are shown.
    void showRun(int row);
    /// Sets the post-onset value from the distances of the trials, and logs them.
    bool suggestWindow();
    /// Estimates all trials of the selected conditions in all runs, and writes each run's `.fmp`
    /// and settings file beside it when its last trial is done. A mean response is taken over the
    /// voxels of the chosen region, if there is one and it is of a run of the same size; otherwise
    /// over all voxels at or above the intensity limit.
    bool estimateTrials();

    // Patterns of a region.

    bool addTrialFiles(const QStringList& paths);
    void clearTrialFiles();
    [[nodiscard]] const QStringList& trialFiles() const { return trialFiles_; }
    [[nodiscard]] const std::vector<TrialClass>& classes() const { return classes_; }
    /// The regions of the run in memory, by number from 1: "ROI 1", ...
    [[nodiscard]] QStringList regions() const;
    /// Cuts the region's voxels out of all trial files into a file of patterns, and writes the
    /// voxels that were used.
    bool createPatterns();

    // Training and testing.

    void choosePatterns(const QString& path); ///< (.mvp) for training and testing
    [[nodiscard]] const QString& patternPath() const { return patternPath_; }
    /// Reads the patterns into memory, as they are in the file.
    [[nodiscard]] bool readPatterns(PatternSet& patterns) const;
    bool train();
    bool chooseModel(const QString& path); ///< (.svm), with the scaling that lies beside it
    [[nodiscard]] const QString& modelPath() const { return modelPath_; }
    bool test();
    /// The cross-validated accuracy beside that of shuffled labels.
    bool testByPermutations();

    /// Of the last training or test; empty before one.
    [[nodiscard]] const PredictionReport& predictions() const { return predictions_; }
    [[nodiscard]] const PermutationTest& permutationTest() const { return permutations_; }
    /// Where files of training are written: the target folder of the run that was loaded last, else
    /// that of the first trial file; with "/" at the end.
    [[nodiscard]] QString folder() const;

private:
    /// False, after a modeless information, unless the session is idle.
    [[nodiscard]] bool isIdle();
    [[nodiscard]] const RegionOfInterest* chosenRegion() const;
    void listConditions(const StimulationProtocol& protocol);
    /// There is something to estimate. False after a message.
    [[nodiscard]] bool hasRunsAndConditions() const;
    /// The protocols of all runs, checked. False after a message.
    [[nodiscard]] bool readProtocols(std::vector<StimulationProtocol>& protocols) const;
    void addTrialFile(const QString& path, const std::vector<TrialClass>& classes);
    void gatherClasses();
    [[nodiscard]] bool planPatterns(PatternPlan& plan) const;
    [[nodiscard]] bool writePatterns(const PatternPlan& plan, const MadePatterns& made);

    /// Patterns for training, without a fault and scaled. False after a message.
    [[nodiscard]] bool readScaledPatterns(PatternSet& patterns, FeatureScaling& scaling,
                                          bool forFolds) const;
    [[nodiscard]] bool readModel(SVMModel& model) const;
    void showWeights(std::vector<SVMWeights> weights);
    /// The voxels of the features; none, after a line in the log, where they don't fit.
    [[nodiscard]] std::optional<VoxelList> voxelsOfFeatures(int nrOfFeatures) const;
    void loadDocument();

    RunSession& session_;
    TrainingDisplay& display_;
    QStringList runs_;
    QStringList conditions_;
    QStringList selectedConditions_;
    QStringList trialFiles_;
    std::map<QString, std::vector<TrialClass>> classesOfFiles_;
    std::vector<TrialClass> classes_;
    QString patternPath_;
    QString modelPath_;
    FeatureScaling scaling_;
    PredictionReport predictions_;
    PermutationTest permutations_;
};
