// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoder_settings.h"

#include <algorithm>
#include <cmath>

QString decoderROIName(int roi) {
    return roi < nrOfTaskROIs ? QStringLiteral("VOI Task %1").arg(roi + 1)
                              : QStringLiteral("SMA %1").arg(roi - nrOfTaskROIs + 1);
}

int DecoderSettings::nrOfComparedPoints() const {
    const long long inWindow = (long long)(FullWindowSize)-SkipAtEndOfWindow - SkipAtBeginOfWindow;
    return int(std::clamp<long long>(inWindow, 0, std::max(IdealResponseWindowSize, 0)));
}

TaskWeights defaultTaskWeights() {
    TaskWeights weights{};
    for (size_t task = 0; task < weights.size(); ++task)
        weights[task][task] = weights[task][nrOfTaskROIs + task] = 1.0f;
    return weights;
}

TaskWeights scaledWeights(const TaskWeights& weights) {
    TaskWeights scaled = weights;
    for (auto& row : scaled) {
        double squares = 0.0;
        for (const float weight : row)
            squares += double(weight) * double(weight);
        if (squares == 0.0)
            continue;
        for (float& weight : row)
            weight = float(double(weight) / std::sqrt(squares));
    }
    return scaled;
}

DecoderSettings defaultDecoderSettings() {
    DecoderSettings settings;
    settings.TaskVOIWeights = defaultTaskWeights();
    return settings;
}

long long firstPointOfLetter(const DecoderSettings& settings, int letter) {
    return (long long)(settings.FullWindowSize) * letter + settings.SkipTimePointsAtBegin +
           settings.SkipAtBeginOfWindow;
}

bool windowIsWhole(const DecoderSettings& settings, int letter) {
    const long long first = firstPointOfLetter(settings, letter);
    return letter >= 0 && first >= 0 &&
           first + settings.IdealResponseWindowSize - 1 < settings.NrOfTimePoints;
}

bool windowEndsAt(const DecoderSettings& settings, int volume) {
    if (settings.FullWindowSize < 1 || volume >= settings.NrOfTimePoints)
        return false;
    const long long afterEnd = std::max(-(long long)(settings.SkipAtEndOfWindow), 0LL);
    const long long point = (long long)(volume)-settings.SkipTimePointsAtBegin - afterEnd;
    return point >= 0 && point % settings.FullWindowSize == settings.FullWindowSize - 1;
}

int stageAt(const DecoderSettings& settings, int volume) {
    const long long point = (long long)(volume)-settings.SkipTimePointsAtBegin;
    if (volume < 0 || point < 0 || settings.FullWindowSize < 1)
        return -1;
    const long long compared = point % settings.FullWindowSize - settings.SkipAtBeginOfWindow;
    if (compared < 0)
        return -1;
    const long long step = compared * LetterCode::nrOfTimeSteps / settings.FullWindowSize;
    return int(std::min<long long>(step, LetterCode::nrOfStages - 1));
}

QString decoderSettingsFault(const DecoderSettings& settings) {
    if (settings.FullWindowSize < 1 || settings.IdealResponseWindowSize < 1)
        return "The full window and the ideal response window need at least one point.";
    if (settings.SkipTimePointsAtBegin < 0 || settings.SkipAtBeginOfWindow < 0)
        return "The points that are skipped at the beginning must not be negative.";
    if (settings.nrOfComparedPoints() < 1)
        return "The skips leave no point of the window to compare: make them smaller or the full "
               "window larger.";
    if (settings.MeanForPercSignalFrom < 0 ||
        settings.MeanForPercSignalTo < settings.MeanForPercSignalFrom ||
        settings.MeanForPercSignalTo >= settings.nrOfComparedPoints())
        return QStringLiteral("The mean for percent signal change must lie within the points that "
                              "are compared: 0 to %1, the first one not after the last.")
            .arg(settings.nrOfComparedPoints() - 1);
    if (!(settings.CorrBetaTau >= 0.0f && settings.CorrBetaTau <= 1.0f))
        return "The weight of beta must be a number from 0 to 1.";
    return {};
}

QString missingHelpersNote(const DecoderSettings& settings) {
    const int first = std::max(settings.NrOfDataROIs - nrOfTaskROIs, 0) + 1;
    const bool usesHelpers =
        settings.UseCorr && settings.UseBeta && settings.HelperVOIsMode != HelperVOIs::OnlyTasks;
    if (!usesHelpers || first > LetterCode::nrOfTasks)
        return {};
    const QString missing =
        first == LetterCode::nrOfTasks
            ? QStringLiteral("Helper ROI %1 is missing: the shape of its task counts ").arg(first)
            : QStringLiteral("Helper ROIs %1 to %2 are missing: the shape of their tasks counts ")
                  .arg(first)
                  .arg(LetterCode::nrOfTasks);
    return missing + (settings.HelperVOIsMode == HelperVOIs::Both ? "half" : "as 0");
}
