// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_baseline.h"

#include <algorithm>
#include <optional>

namespace {

/// Without a mode all three.
ROIsOfMode roisInUse(const FeedbackChoices& choices) {
    const ROIsOfMode rois = roisOfMode(choices.roiMode);
    return rois.count > 0 ? rois : roisOfMode(useROI1And2And3);
}

/// `valueOf` gives the value of a region, 0 where there is none.
template<typename ValueOf>
SignalPair combined(const FeedbackSignals& signals, const FeedbackChoices& choices,
                    const ValueOf& valueOf) {
    const ROIsOfMode rois = roisInUse(choices);
    const auto count = size_t(rois.count);
    if (showsPair(choices))
        return {valueOf(size_t(rois.region[0])), valueOf(size_t(rois.region[1]))};
    if (size_t(rois.region[count - 1]) >= signals.curves.size())
        return {};
    double sum = 0.0;
    for (size_t i = 0; i < count; ++i)
        sum += valueOf(size_t(rois.region[i]));
    return {sum / double(count), 0.0};
}

struct Block {
    int first;
    int last;
};

/// The last block of the baseline condition that ended before `end`.
std::optional<Block> blockBefore(const FeedbackSignals& signals, const FeedbackChoices& choices,
                                 int end) {
    const auto isBaseline = [&](int volume) {
        return signals.tables.condition(volume) == choices.BaselineCondition;
    };
    std::optional<int> last;
    for (int i = end; i >= firstBaselineVolume; --i) {
        if (!isBaseline(i))
            continue;
        if (!isBaseline(i + 1))
            last = i;
        if (last && !isBaseline(i - 1))
            return Block{i, *last};
    }
    return {};
}

} // namespace

SignalPair signalAt(const FeedbackSignals& signals, const FeedbackChoices& choices, int volume) {
    return combined(signals, choices, [&](size_t region) {
        const bool known = region < signals.curves.size() && volume >= 0 &&
                           size_t(volume) < signals.curves[region].size();
        return known ? double(signals.curves[region][size_t(volume)]) : 0.0;
    });
}

SignalPair modelBaseline(const FeedbackSignals& signals, const FeedbackChoices& choices,
                         int volume) {
    if (volume < firstBaselineVolume || !signals.hasConfounds)
        return {};
    bool fitted = true;
    const SignalPair baseline = combined(signals, choices, [&](size_t region) {
        const double constant =
            region < signals.constants.size() ? double(signals.constants[region]) : 0.0;
        fitted = fitted && constant != 0.0;
        return constant;
    });
    return fitted || showsPair(choices) ? baseline : SignalPair{};
}

bool baselineBlockEnds(const FeedbackSignals& signals, const FeedbackChoices& choices, int volume) {
    const int end = volume - choices.BaselineEndShift;
    return signals.tables.condition(end) != choices.BaselineCondition &&
           signals.tables.condition(end - 1) == choices.BaselineCondition;
}

SignalPair blockBaseline(const FeedbackSignals& signals, const FeedbackChoices& choices,
                         int volume) {
    constexpr int fewestVolumes = 4;
    const std::optional<Block> block =
        blockBefore(signals, choices, volume - choices.BaselineEndShift);
    if (!block)
        return {};
    const int from = block->first + choices.BaselineStartShift;
    const int to = std::min(block->last + choices.BaselineEndShift, volume);
    const int count = to - from + 1;
    if (count < fewestVolumes)
        return {};
    SignalPair sum;
    for (int i = from; i <= to; ++i) {
        const SignalPair signal = signalAt(signals, choices, i);
        sum.first += signal.first;
        sum.second += signal.second;
    }
    return {sum.first / count, sum.second / count};
}
