// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoder_settings.h"

#include <algorithm>
#include <cmath>

int DecoderSettings::nrOfComparedPoints() const {
    const long long inWindow = (long long)(FullWindowSize)-SkipAtEndOfWindow - SkipAtBeginOfWindow;
    return int(std::clamp<long long>(inWindow, 0, std::max(IdealResponseWindowSize, 0)));
}

TaskWeights defaultTaskWeights() {
    TaskWeights weights{};
    for (size_t task = 0; task < weights.size(); ++task)
        weights[task][task] = 1.0f;
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
    settings.TaskVOIWeights = scaledWeights(defaultTaskWeights());
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
    const long long behindEnd = std::max(-(long long)(settings.SkipAtEndOfWindow), 0LL);
    const long long point = (long long)(volume)-settings.SkipTimePointsAtBegin - behindEnd;
    return point >= 0 && point % settings.FullWindowSize == settings.FullWindowSize - 1;
}
