// Contrasts over the predictors.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/rgb_color.h"

#include <QStringList>
#include <vector>

struct DesignMatrix;

/// Bits of a selection state.
enum ContrastState {
    ContrastOff = 0,
    ContrastPositive = 1,
    ContrastNegative = 2,
    ContrastBoth = 3
};

/// What the maps of a complete run show; while a run is measured they are t maps.
enum class ShownStatistic { T, FOfContrast, FOfSelected };

/// One index across all lists. Weights are rows by contrast.
struct ContrastDefinitions {
    static constexpr int maximumShownMaps = 4;

    int NrOfContrasts = 0;
    QStringList ContrastNames;
    std::vector<std::vector<int>> ContrastValues;  ///< over the contrast list; entry 0 the baseline
    std::vector<std::vector<int>> ContrastWeights; ///< over design columns
    std::vector<int> ContrastSelectionStates;
    std::vector<int> ActiveContrastStates; ///< 0 where the model can't estimate it yet
    std::vector<RgbColor> ContrastColors;
    bool ConjunctionAnalysis = false;
    ShownStatistic shownStatistic = ShownStatistic::T;
    /// A voxel is shown only where each beta of a contrast has the sign of its weight; maps of a
    /// complete run.
    bool oneSidedTesting = false;
    /// The operator changed them during the run: from then on they are applied at each volume.
    bool ContrastsChanged = false;
    int BaselineInContrasts = 1;
    int BaselinePosInProtocol = 1;

    /// Removes all contrasts, switches the conjunction off and goes back to plain t maps. The two
    /// baseline fields are unchanged.
    void clear();
};

/// Replaces the contrasts by automatic ones: from level 1 on each condition against the baseline,
/// selected; at exactly level 2 also all pairs of conditions, not selected. BaselinePosInProtocol
/// becomes 1. Conditions without a column, because the design is full, are left out.
void generateContrasts(ContrastDefinitions& contrasts, const DesignMatrix& design, int level);
/// ContrastWeights from ContrastValues; the baseline entry is dropped, confounds get 0. A contrast
/// with a weight on a condition without a column, because the design is full, gets 0 everywhere.
void rebuildContrastWeights(ContrastDefinitions& contrasts, const DesignMatrix& design);
/// Toggles the positive or the negative bit. False, without a change, when it would switch on a
/// fifth contrast, or when there is no such contrast or bit. The caller sets ContrastsChanged: it
/// knows whether a run is active.
bool toggleContrast(ContrastDefinitions& contrasts, int index, ContrastState bit);
/// Selects the positive values of this contrast and switches all others off. False, without a
/// change, when there is no such contrast.
bool selectContrastAlone(ContrastDefinitions& contrasts, int index);
/// Switches all contrasts off; their definitions stay.
void switchContrastsOff(ContrastDefinitions& contrasts);
/// Number of selection states above 0.
[[nodiscard]] int nrOfSelectedContrasts(const ContrastDefinitions& contrasts);
/// Switches the conjunction on or off. False, with the conjunction off, when `on` but fewer than
/// two contrasts are selected, or while F is shown.
[[nodiscard]] bool setConjunction(ContrastDefinitions& contrasts, bool on);
/// Chooses what the maps show. F of one contrast selects `contrast` alone; F switches the
/// conjunction off, since it has no sign. False, without a change, when there is no such contrast.
[[nodiscard]] bool showStatistic(ContrastDefinitions& contrasts, ShownStatistic statistic,
                                 int contrast);
