// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/training_reports.h"

#include <algorithm>

namespace {

double percentOf(int count, int total) {
    return total > 0 ? 100.0 * count / total : 0.0;
}

QString kernelText(SVMKernel kernel) {
    switch (kernel) {
    case SVMKernel::Linear:
        return "linear";
    case SVMKernel::Polynomial:
        return "polynomial";
    case SVMKernel::RBF:
        break;
    }
    return "RBF (radial basis function)";
}

QString predictionLines(const PredictionReport& report) {
    QString text;
    for (size_t i = 0; i < report.predictions.size(); ++i)
        text += QStringLiteral("\n%1 %2")
                    .arg(report.predictions[i].output, 12)
                    .arg(report.targets[i], 4);
    return text;
}

} // namespace

QString trialCountsReport(const QStringList& classes, const std::vector<int>& counts) {
    QStringList parts;
    for (qsizetype i = 0; i < classes.size(); ++i)
        parts << QStringLiteral(" %1 - %2").arg(classes[i], QString::number(counts[size_t(i)]));
    return "No. of all training data trials per class:" + parts.join(',');
}

int nrOfFolds(const PatternSet& patterns, const CrossValidationOptions& folds) {
    return folds.folds == FoldKind::ByRun ? patterns.nrOfRuns()
                                          : std::min(folds.nrOfFolds, patterns.count());
}

QString foldsReport(const PatternSet& patterns, const CrossValidationOptions& folds) {
    const int count = nrOfFolds(patterns, folds);
    return folds.folds == FoldKind::ByRun
               ? QStringLiteral("Folds for cross validation: each of %1 runs is left out once")
                     .arg(count)
               : QStringLiteral("Folds for cross validation: %1 at random, seed %2")
                     .arg(count)
                     .arg(folds.seed);
}

QString searchReport(const CSearch& search, const PatternSet& patterns,
                     const CrossValidationOptions& folds) {
    QString text;
    for (const CTrial& trial : search.trials)
        text += QStringLiteral("Testing parameter C=%1 with %2-fold cross validation - Accuracy: "
                               "%3%\n")
                    .arg(std::exp(trial.exponent))
                    .arg(nrOfFolds(patterns, folds))
                    .arg(percentOf(trial.nrOfRight, patterns.count()));
    return text + QStringLiteral("Setting C to value resulting in best generalization "
                                 "performance: C=%1")
                      .arg(search.C);
}

QString crossValidationReport(const CrossValidation& validation, const PatternSet& patterns,
                              const CrossValidationOptions& folds) {
    return QStringLiteral("%1-fold cross validation accuracy: %2%")
        .arg(nrOfFolds(patterns, folds))
        .arg(percentOf(validation.nrOfRight, patterns.count()));
}

QString trainingHeading(const SVMOptions& options) {
    return QStringLiteral("\nRunning SVM with C=%1 and %2 kernel")
        .arg(QString::number(options.C), kernelText(options.kernel));
}

QString constantsReport(const std::vector<double>& constants) {
    QStringList values;
    for (const double value : constants)
        values << QString::number(value);
    return (values.size() == 1 ? QStringLiteral("SVM training result - value of b: %1")
                               : QStringLiteral("SVM training result - values of b's: %1"))
        .arg(values.join(' '));
}

QString trainingPredictions(const PredictionReport& report) {
    return "SVM predictions plus targets for training exemplars:" + predictionLines(report) +
           QStringLiteral("\nAccuracy (full training set): %1%").arg(report.percentRight());
}

QString testPredictions(const PredictionReport& report) {
    return "SVM output - predictions (plus targets) for test exemplars:" + predictionLines(report) +
           QStringLiteral("\nTest data - prediction accuracy (assuming labels are known): %1%")
               .arg(report.percentRight());
}

QString permutationReport(const PermutationTest& test, int nrOfExemplars) {
    return QStringLiteral("Cross-validated accuracy: %1%\np = %2: %3 of %4 shufflings were at "
                          "least as accurate")
        .arg(percentOf(test.nrOfRight, nrOfExemplars))
        .arg(test.p(), 0, 'g', 3)
        .arg(test.atLeast())
        .arg(test.shuffledRight.size());
}
