// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/training_plots.h"

#include "classify/ui/class_names.h"
#include "display/plots/plot_colors.h"

#include <algorithm>

namespace {

const QColor trueLabelsColor(255, 150, 40);

void addRow(PlotMatrix& matrix, std::span<const double> values) {
    ++matrix.rows;
    for (const double value : values)
        matrix.values.push_back(float(value));
}

/// The exemplars with this label become rows of `all`, and their mean one of `means`.
void addClass(const PatternSet& patterns, const NamedClass& named, PlotMatrix& all,
              PlotMatrix& means) {
    const int first = all.rows + 1;
    std::vector<double> mean(size_t(patterns.nrOfFeatures), 0.0);
    for (int exemplar = 0; exemplar < patterns.count(); ++exemplar) {
        if (patterns.labels[size_t(exemplar)] != named.label)
            continue;
        const std::span<const double> features = patterns.features(exemplar);
        addRow(all, features);
        std::ranges::transform(mean, features, mean.begin(), std::plus());
    }
    for (double& value : mean)
        value /= double(all.rows - first + 1);
    addRow(means, mean);
    all.name += QStringLiteral(" %1: rows %2 to %3.").arg(named.name).arg(first).arg(all.rows);
    means.name += QStringLiteral(" Row %1: %2.").arg(means.rows).arg(named.name);
}

QString percentText(int nrOfRight, int nrOfTrials) {
    return QString::number(100.0 * nrOfRight / std::max(nrOfTrials, 1), 'f', 1) + '%';
}

} // namespace

std::vector<PlotMatrix> patternMatrices(const PatternSet& patterns) {
    if (patterns.count() == 0)
        return {};
    PlotMatrix all;
    PlotMatrix means;
    all.name = "Trials by voxels.";
    means.name = "Means of the classes.";
    all.columns = means.columns = patterns.nrOfFeatures;
    all.values.reserve(patterns.values.size());
    for (const NamedClass& named : classesOfLabels(patterns.labels))
        addClass(patterns, named, all, means);
    return {all, means};
}

PlotContent permutationContent(const PermutationTest& test, int nrOfTrials) {
    constexpr int mostBars = 40;
    int least = test.nrOfRight;
    int most = test.nrOfRight;
    for (const int right : test.shuffledRight) {
        least = std::min(least, right);
        most = std::max(most, right);
    }
    const int width = (most - least) / mostBars + 1;
    PlotContent content;
    content.xLabel = "Trials that are right";
    content.yLabel = "Shufflings";
    for (int from = least; from <= most; from += width) {
        const bool ofTrueLabels = from <= test.nrOfRight && test.nrOfRight < from + width;
        const auto count = std::ranges::count_if(
            test.shuffledRight, [&](int right) { return from <= right && right < from + width; });
        if (ofTrueLabels)
            content.lines.push_back({double(content.bars.size()), Qt::Vertical, trueLabelsColor,
                                     "true labels: " + percentText(test.nrOfRight, nrOfTrials)});
        content.bars.push_back({percentText(from, nrOfTrials),
                                ofTrueLabels ? trueLabelsColor : plotColors::accent, float(count)});
    }
    content.title = QStringLiteral("p = %1: %2 of %3 shufflings were at least as accurate")
                        .arg(QString::number(test.p(), 'g', 3))
                        .arg(test.atLeast())
                        .arg(test.shuffledRight.size());
    return content;
}
