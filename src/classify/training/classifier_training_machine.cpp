// Training, testing, and the weights as maps.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "classify/pattern_file.h"
#include "classify/svm_model_file.h"
#include "classify/training/classifier_training.h"
#include "classify/training/finished_runs.h"
#include "classify/training/machine_training.h"
#include "classify/training/training_reports.h"
#include "classify/voxels_file.h"
#include "run/session/run_session.h"

namespace {

bool fail(const QString& text) {
    showWarning(text);
    return false;
}

/// Of work that is not done.
void tellEnd(SVMResult result, const QString& stopped, TrainingDisplay& display) {
    if (result == SVMResult::OutOfMemory)
        showCritical("Insufficient memory!\n\nUse patterns of a smaller region.");
    else if (result == SVMResult::Stopped)
        display.log(stopped);
}

/// Voxels beside the patterns; nothing where they are not, or not whole.
std::optional<VoxelList> voxelsBeside(const QString& patternPath) {
    return readVoxels(paths::folderWithSlash(patternPath) + voxelsFileName);
}

} // namespace

void ClassifierTraining::choosePatterns(const QString& path) {
    patternPath_ = path;
    display_.refreshControls();
}

bool ClassifierTraining::readPatterns(PatternSet& patterns) const {
    return readPatternFile(patternPath_, patterns);
}

bool ClassifierTraining::readScaledPatterns(PatternSet& patterns, FeatureScaling& scaling,
                                            bool forFolds) const {
    if (!readPatterns(patterns))
        return false;
    scaling = learnScaling(patterns, choices.scaling);
    applyScaling(scaling, patterns);
    QString fault = faultOfTraining(patterns, choices.svm);
    if (fault.isEmpty() && forFolds)
        fault = faultOfFolds(patterns, choices.folds);
    return fault.isEmpty() || fail(fault);
}

bool ClassifierTraining::train() {
    const QString source = patternPath_;
    PatternSet patterns;
    FeatureScaling scaling;
    if (source.isEmpty() || !fileExists(source) || !isIdle() ||
        !readScaledPatterns(patterns, scaling, choices.crossValidates))
        return false;
    const TrainingChoices chosen = choices;
    if (chosen.scaling.mode != ScalingMode::None)
        display_.log(scalingReport(chosen.scaling));
    TrainedMachine machine;
    if (!session_.analyse("Training the classifier...", [&](ProgressReporter& progress) {
            machine = trainMachine(
                patterns, chosen, [this](const QString& text) { display_.log(text); }, progress);
            return machine.result == SVMResult::Done;
        })) {
        tellEnd(machine.result, "The training was stopped.", display_);
        return false;
    }
    if (!isUsable(machine.model))
        return fail("The training has not led to a classifier: values of the kernel are too "
                    "large.\n\nScale the features, or use a smaller degree or gamma.");
    if (!saveMachine(modelPathOf(source), machine.model, scaling))
        return false;
    modelPath_ = modelPathOf(source);
    display_.log(QStringLiteral("Saved model: \"%1\"").arg(modelPath_));
    scaling_ = scaling;
    if (machine.options.C != chosen.svm.C) // of a search
        choices.svm.C = machine.options.C;
    predictions_ = std::move(machine.predictions);
    display_.log(constantsReport(svmConstants(machine.model)));
    display_.log(trainingPredictions(predictions_));
    showWeights(svmWeights(machine.model));
    display_.refreshControls();
    return true;
}

std::optional<VoxelList> ClassifierTraining::voxelsOfFeatures(int nrOfFeatures) const {
    auto voxels = voxelsBeside(patternPath_);
    QString fault;
    if (!voxels)
        fault = QStringLiteral("Can not find \"%1\" beside the patterns").arg(voxelsFileName);
    else if (voxels->size() != size_t(nrOfFeatures))
        fault = mismatchText(voxels->size(), nrOfFeatures);
    else if (!voxelsInside(*voxels, weightMaps.document()->project.size()))
        fault = "The voxels of the region lie outside the run";
    if (fault.isEmpty())
        return voxels;
    display_.log(fault + " - the weights are not shown as maps.");
    return {};
}

// The run that is listed last, for its slices.
void ClassifierTraining::loadDocument() {
    if (weightMaps.document() || runs_.isEmpty())
        return;
    std::unique_ptr<QtCortivoDoc> document;
    const QString run = runs_.last();
    static_cast<void>(session_.analyse("Loading the run...", [&](ProgressReporter&) {
        document = loadFinishedRun(run);
        return document != nullptr;
    }));
    if (!document)
        return;
    document->project.volumes.clear();
    weightMaps.setDocument(std::move(document));
}

void ClassifierTraining::showWeights(std::vector<SVMWeights> weights) {
    loadDocument();
    std::optional<VoxelList> voxels;
    if (weightMaps.document())
        voxels = voxelsOfFeatures(int(weights.front().values.size()));
    else
        display_.log("No run is loaded - the weights are not shown as maps.");
    if (voxels)
        weightMaps.show(std::move(weights), std::move(*voxels));
    else
        weightMaps.clear();
}

bool ClassifierTraining::chooseModel(const QString& path) {
    SVMModel model;
    FeatureScaling scaling;
    if (!fileExists(path))
        return fail("Can not find specified model file");
    if (!readModelFile(path, model) || !readScalingOfModel(path, scaling))
        return false;
    modelPath_ = path;
    scaling_ = std::move(scaling);
    display_.refreshControls();
    return true;
}

bool ClassifierTraining::readModel(SVMModel& model) const {
    if (modelPath_.isEmpty())
        return fail("No model file available!\n\nFirst train or load a SVM classifier.");
    if (!fileExists(modelPath_))
        return fail("Can not find specified model file");
    return readModelFile(modelPath_, model);
}

bool ClassifierTraining::test() {
    PatternSet patterns;
    SVMModel model;
    if (!isIdle() || !readModel(model) || !readPatterns(patterns))
        return false;
    const auto voxels = voxelsBeside(patternPath_);
    if (voxels && voxels->size() != size_t(model.nrOfFeatures()))
        display_.log(mismatchText(voxels->size(), model.nrOfFeatures()));
    if (patterns.nrOfFeatures != model.nrOfFeatures() ||
        !scalingFits(scaling_, patterns.nrOfFeatures))
        return fail("Classifier does not fit to test data!");
    if (scaling_.options.mode != ScalingMode::None)
        display_.log(scalingReport(scaling_.options));
    applyScaling(scaling_, patterns);
    if (!patterns.isFinite())
        return fail("Classifier does not fit to test data!\n\nIts scaling gives values that are "
                    "not finite.");
    predictions_ = predictAll(model, patterns);
    display_.log(testPredictions(predictions_));
    display_.refreshControls();
    return true;
}

bool ClassifierTraining::testByPermutations() {
    if (patternPath_.isEmpty())
        return fail("No patterns available!\n\nCreate or choose a file of patterns first.");
    PatternSet patterns;
    FeatureScaling scaling;
    if (!isIdle() || !readScaledPatterns(patterns, scaling, true))
        return false;
    const TrainingChoices chosen = choices;
    PermutationTest result;
    if (!session_.analyse("Testing by permutations...", [&](ProgressReporter& progress) {
            result = testByPermutation(patterns, chosen.svm, chosen.folds, chosen.nrOfPermutations,
                                       progress);
            return result.result == SVMResult::Done;
        })) {
        tellEnd(result.result, "The test by permutations was stopped.", display_);
        return false;
    }
    permutations_ = std::move(result);
    display_.log(foldsReport(patterns, chosen.folds));
    display_.log(permutationReport(permutations_, patterns.count()));
    display_.refreshControls();
    return true;
}
