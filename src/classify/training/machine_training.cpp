// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/machine_training.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "classify/training/restored_files.h"
#include "classify/training/training_reports.h"

#include <QRegularExpression>
#include <cmath>
#include <numeric>

namespace {

bool isWholeLabel(double label) {
    return std::fabs(label) <= 1e6 && label == std::trunc(label);
}

/// libsvm keeps products of exemplars in single precision: those of larger ones overflow.
bool productsFit(const PatternSet& patterns) {
    constexpr double largestProduct = 1e37;
    for (int i = 0; i < patterns.count(); ++i) {
        const std::span<const double> features = patterns.features(i);
        const double square =
            std::inner_product(features.begin(), features.end(), features.begin(), 0.0);
        if (!(square <= largestProduct))
            return false;
    }
    return true;
}

bool searchesC(const TrainingChoices& choices) {
    return (choices.svm.kernel == SVMKernel::Linear && choices.searchLinear) ||
           (choices.svm.kernel == SVMKernel::RBF && choices.searchRBF);
}

/// What libsvm has printed, if anything.
void logPrinted(const std::string& printed, const std::function<void(const QString&)>& log) {
    // The solver's marks of its progress, of which there may be thousands, tell nothing afterwards.
    static const QRegularExpression marks(QStringLiteral("^[.*]+\\n?"),
                                          QRegularExpression::MultilineOption);
    const QString text = QString::fromStdString(printed).remove(marks).trimmed();
    if (!text.isEmpty())
        log(text);
}

SVMResult validate(const PatternSet& patterns, const TrainingChoices& choices, SVMOptions& options,
                   const std::function<void(const QString&)>& log, ProgressReporter& progress) {
    log(foldsReport(patterns, choices.folds));
    if (searchesC(choices)) {
        const CSearch search = searchC(patterns, options, choices.folds, progress);
        if (search.result == SVMResult::Done) {
            options.C = search.C;
            log(searchReport(search, patterns, choices.folds));
        }
        return search.result;
    }
    CrossValidation validation;
    const SVMResult result = doSVMTasks(
        1,
        [&](int, const std::stop_token& stop) {
            validation = crossValidate(patterns, options, choices.folds, stop);
            return validation.result;
        },
        progress);
    if (result != SVMResult::Done)
        return result;
    logPrinted(validation.printed, log);
    log(crossValidationReport(validation, patterns, choices.folds));
    return result;
}

} // namespace

QString faultOfTraining(const PatternSet& patterns, const SVMOptions& options) {
    if (patterns.count() == 0 || patterns.nrOfFeatures == 0)
        return "The file of patterns has no exemplars, or these have no features.";
    if (!patterns.isFinite() || !productsFit(patterns))
        return "The patterns hold values that are not finite, or too large.\n\nCreate them again, "
               "or change their scaling.";
    if (!std::all_of(patterns.labels.begin(), patterns.labels.end(), isWholeLabel))
        return "The patterns have labels that are not whole numbers.";
    if (labelCounts(patterns).size() < 2)
        return "All exemplars are of one class: a classifier needs patterns of at least two.";
    if (!(options.C > 0.0) || !std::isfinite(options.C))
        return "C must be above 0.";
    if (!(options.gamma >= 0.0) || !std::isfinite(options.gamma) || options.degree < 0)
        return "Gamma and degree of the kernel must not be below 0.";
    return {};
}

TrainedMachine trainMachine(const PatternSet& patterns, const TrainingChoices& choices,
                            const std::function<void(const QString&)>& log,
                            ProgressReporter& progress) {
    TrainedMachine machine;
    machine.options = choices.svm;
    if (choices.crossValidates)
        machine.result = validate(patterns, choices, machine.options, log, progress);
    if (machine.result != SVMResult::Done)
        return machine;
    log(trainingHeading(machine.options));
    std::string printed;
    machine.result = doSVMTasks(
        1,
        [&](int, const std::stop_token& stop) {
            SVMTrainer trainer(stop);
            const SVMResult result = trainer.train(patterns, machine.options, machine.model);
            printed = trainer.printed();
            if (result == SVMResult::Done)
                machine.predictions = predictAll(machine.model, patterns);
            return result;
        },
        progress);
    if (machine.result == SVMResult::Done)
        logPrinted(printed, log);
    return machine;
}

bool isUsable(const SVMModel& model) {
    const std::vector<double> rho = model.rho();
    const std::vector<int> vectors = model.supportVectorsOfClasses();
    return std::all_of(rho.begin(), rho.end(), [](double value) { return std::isfinite(value); }) &&
           std::any_of(vectors.begin(), vectors.end(), [](int count) { return count > 0; });
}

QString modelPathOf(const QString& patternPath) {
    QString name = paths::fileName(patternPath);
    if (name.startsWith("Train") || name.startsWith("Learn"))
        name.remove(0, name.indexOf('_') + 1); // nothing without one
    return paths::join(paths::folderWithSlash(patternPath),
                       "Model_" + paths::withoutExtension(name) + ".svm");
}

bool saveMachine(const QString& path, const SVMModel& model, const FeatureScaling& scaling) {
    const QString ofScaling = scalingPath(path);
    RestoredFiles old({ofScaling});
    if (!writeFileAtomically(ofScaling, scalingText(scaling)) || !model.save(path)) {
        showCritical(QStringLiteral("Unable to write the model: %1\n\nCheck that its folder can "
                                    "be written, and that the disk is not full.")
                         .arg(path));
        return false;
    }
    old.keep();
    return true;
}

bool readScalingOfModel(const QString& modelPath, FeatureScaling& scaling) {
    const QString path = scalingPath(modelPath);
    if (!fileExists(path)) {
        scaling = {};
        return true;
    }
    const std::optional<FeatureScaling> parsed = readScaling(modelPath);
    if (!parsed) {
        showCritical(QStringLiteral("The scaling of the model is damaged: %1\n\nTrain the model "
                                    "again.")
                         .arg(path));
        return false;
    }
    scaling = *parsed;
    return true;
}

bool scalingFits(const FeatureScaling& scaling, int nrOfFeatures) {
    const size_t count = size_t(nrOfFeatures);
    switch (scaling.options.mode) {
    case ScalingMode::None:
        return true;
    case ScalingMode::Standardize:
        return scaling.mean.size() == count && scaling.deviation.size() == count;
    case ScalingMode::Range:
        return scaling.minimum.size() == count && scaling.maximum.size() == count;
    }
    return false;
}
