// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/contrasts.h"

#include "stats/design_matrix.h"

#include <algorithm>

namespace {

/// A contrast of entry `positive` against entry `negative` of the contrast list.
void appendComparison(ContrastDefinitions& contrasts, const DesignMatrix& design, int positive,
                      int negative, RgbColor color, int state) {
    std::vector<int> values(size_t(design.NrOfContrastPredictors), 0);
    values[size_t(negative)] = -1;
    values[size_t(positive)] = 1;
    contrasts.ContrastNames.append(design.ContrastPredictorNames.value(positive) + " vs. " +
                                   design.ContrastPredictorNames.value(negative));
    contrasts.ContrastValues.push_back(std::move(values));
    contrasts.ContrastColors.push_back(color);
    contrasts.ContrastSelectionStates.push_back(state);
    ++contrasts.NrOfContrasts;
}

RgbColor entryColor(const DesignMatrix& design, int entry) {
    const std::vector<RgbColor>& colors = design.ContrastPredictorColors;
    return size_t(entry) < colors.size() ? colors[size_t(entry)] : RgbColor();
}

RgbColor sumOfColors(RgbColor a, RgbColor b) {
    return {std::min(a.red + b.red, 255), std::min(a.green + b.green, 255),
            std::min(a.blue + b.blue, 255)};
}

} // namespace

void ContrastDefinitions::clear() {
    NrOfContrasts = 0;
    ContrastNames.clear();
    ContrastValues.clear();
    ContrastWeights.clear();
    ContrastSelectionStates.clear();
    ActiveContrastStates.clear();
    ContrastColors.clear();
    ConjunctionAnalysis = false;
    shownStatistic = ShownStatistic::T;
    oneSidedTesting = false;
}

void generateContrasts(ContrastDefinitions& contrasts, const DesignMatrix& design, int level) {
    contrasts.clear();
    contrasts.BaselinePosInProtocol = 1;
    const int n = std::min(design.NrOfContrastPredictors, design.NrOfConditionPredictors + 1);
    if (level >= 1)
        for (int i = 1; i < n; ++i)
            appendComparison(contrasts, design, i, 0, entryColor(design, i), ContrastPositive);
    if (level == 2)
        for (int j = 2; j < n; ++j)
            for (int i = 1; i < j; ++i)
                appendComparison(contrasts, design, j, i,
                                 sumOfColors(entryColor(design, j), entryColor(design, i)),
                                 ContrastOff);
    contrasts.ActiveContrastStates.assign(size_t(contrasts.NrOfContrasts), ContrastOff);
    rebuildContrastWeights(contrasts, design);
}

void rebuildContrastWeights(ContrastDefinitions& contrasts, const DesignMatrix& design) {
    const size_t columns = size_t(std::max(design.NrOfPredictors, 0));
    const auto conditions = ptrdiff_t(std::clamp(design.NrOfConditionPredictors, 0, int(columns)));
    contrasts.ContrastWeights.assign(contrasts.ContrastValues.size(), std::vector<int>(columns, 0));
    for (size_t i = 0; i < contrasts.ContrastValues.size(); ++i) {
        const std::vector<int>& values = contrasts.ContrastValues[i];
        if (values.empty())
            continue;
        // Entry 0 is dropped: the baseline is part of the model's constant.
        const auto first = values.begin() + 1;
        const auto last = first + std::min(values.end() - first, conditions);
        // Without one of its conditions it would be a different contrast: its map stays 0.
        if (std::all_of(last, values.end(), [](int weight) { return weight == 0; }))
            std::copy(first, last, contrasts.ContrastWeights[i].begin());
    }
}

int nrOfSelectedContrasts(const ContrastDefinitions& contrasts) {
    return int(std::count_if(contrasts.ContrastSelectionStates.begin(),
                             contrasts.ContrastSelectionStates.end(),
                             [](int state) { return state > ContrastOff; }));
}

bool toggleContrast(ContrastDefinitions& contrasts, int index, ContrastState bit) {
    std::vector<int>& states = contrasts.ContrastSelectionStates;
    if (index < 0 || size_t(index) >= states.size() ||
        (bit != ContrastPositive && bit != ContrastNegative))
        return false;
    int& state = states[size_t(index)];
    if (state == ContrastOff &&
        nrOfSelectedContrasts(contrasts) >= ContrastDefinitions::maximumShownMaps)
        return false;
    state ^= bit;
    return true;
}

bool selectContrastAlone(ContrastDefinitions& contrasts, int index) {
    std::vector<int>& states = contrasts.ContrastSelectionStates;
    if (index < 0 || size_t(index) >= states.size())
        return false;
    switchContrastsOff(contrasts);
    states[size_t(index)] = ContrastPositive;
    return true;
}

void switchContrastsOff(ContrastDefinitions& contrasts) {
    std::ranges::fill(contrasts.ContrastSelectionStates, int(ContrastOff));
}

bool setConjunction(ContrastDefinitions& contrasts, bool on) {
    contrasts.ConjunctionAnalysis = on && nrOfSelectedContrasts(contrasts) >= 2 &&
                                    contrasts.shownStatistic == ShownStatistic::T;
    return contrasts.ConjunctionAnalysis == on;
}

bool showStatistic(ContrastDefinitions& contrasts, ShownStatistic statistic, int contrast) {
    if (statistic == ShownStatistic::FOfContrast && !selectContrastAlone(contrasts, contrast))
        return false;
    contrasts.shownStatistic = statistic;
    contrasts.ConjunctionAnalysis &= statistic == ShownStatistic::T;
    return true;
}
