// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/memory.h"
#include "stats/design_matrix.h"

#include <algorithm>
#include <cmath>

namespace {

/// Milliseconds between two volumes; at least 1, even if the header is wrong.
int roundedTR(const DesignSource& source) {
    constexpr float longest = 1e7f;
    return source.TR >= 1.0f ? int(std::lround(std::min(source.TR, longest))) : 1;
}

bool inMilliseconds(const DesignSource& source) {
    return source.protocol.resolutionOfTime == ResolutionOfTime::Milliseconds;
}

float boxCarValue(const DesignMatrix& design, int conditionIndex, bool useConditionWeights) {
    // One below the condition's number: right for a protocol with its baseline in first place.
    const size_t index = size_t(std::max(conditionIndex - 1, 0));
    if (!useConditionWeights || index >= design.ConditionWeights.size())
        return 1.0f;
    return design.ConditionWeights[index];
}

void listInterval(std::vector<MillisecondInterval>& intervals, const ProtocolCondition& condition,
                  int from, int to, float value) {
    const double thousandths = double(value) * 1000.0 + 0.5;
    const int weight = std::isfinite(thousandths) ? int(std::clamp(thousandths, -2e9, 2e9)) : 0;
    const auto listed =
        std::find_if(intervals.begin(), intervals.end(),
                     [&](const MillisecondInterval& interval) { return interval.to == to; });
    if (listed != intervals.end() && from != 0)
        listed->weight = weight;
    else
        intervals.push_back({from, to, condition.name, weight});
}

HRFKernel kernelOf(HRFModel model, int step, bool milliseconds, const TwoGammaHRFParams& params) {
    constexpr int oversamplingOfVolumes = 16;
    if (model == HRFModel::SingleGamma)
        return singleGammaKernel(step, milliseconds);
    return twoGammaKernel(step, params, milliseconds ? 1 : oversamplingOfVolumes);
}

void shiftByOne(std::span<float> column) {
    if (column.empty())
        return;
    std::copy_backward(column.begin(), column.end() - 1, column.end());
    column.front() = 0.0f;
}

/// The box-car of a protocol in milliseconds, one sample per millisecond.
void fillMilliseconds(std::span<float> box, std::span<const MillisecondInterval> intervals) {
    for (const MillisecondInterval& interval : intervals) {
        const qint64 end = std::min(qint64(interval.to), qint64(box.size()));
        for (qint64 t = std::max(interval.from, 0); t < end; ++t)
            box[size_t(t)] = float(interval.weight) / 1000.0f;
    }
}

/// Adds the response to each millisecond of the box-car to the volumes after it.
void convolveMilliseconds(std::span<const float> box, const HRFKernel& kernel, qint64 step,
                          std::span<float> column) {
    const qint64 length = kernel.length;
    for (qint64 t = 0; t < qint64(box.size()); ++t) {
        if (box[size_t(t)] == 0.0f)
            continue;
        qint64 volume = t / step + 1;
        qint64 q = step - t % step;
        for (qint64 walked = 0; walked < length - 2; walked += step) {
            if (q > length - 1 || volume >= qint64(column.size()) ||
                q >= qint64(kernel.values.size()))
                break;
            column[size_t(volume)] += kernel.values[size_t(q)] * box[size_t(t)];
            q += step;
            ++volume;
        }
    }
}

} // namespace

void fillBoxCar(const DesignMatrix& design, const DesignSource& source, int conditionIndex,
                std::span<float> column, bool useConditionWeights,
                std::vector<MillisecondInterval>& intervals) {
    if (conditionIndex < 0 || conditionIndex >= source.protocol.nrOfConditions())
        return;
    const ProtocolCondition& condition = source.protocol.conditions[size_t(conditionIndex)];
    const float value = boxCarValue(design, conditionIndex, useConditionWeights);
    const int count =
        std::clamp(condition.nrOfIntervals, 0, int(ProtocolCondition::maximumIntervals));
    for (size_t i = 0; i < size_t(count); ++i) {
        if (inMilliseconds(source)) {
            listInterval(intervals, condition, condition.from[i], condition.to[i], value);
            continue;
        }
        const int from = std::max(condition.from[i], 1);
        const int to = std::min(condition.to[i], int(column.size()));
        for (int volume = from; volume <= to; ++volume)
            column[size_t(volume - 1)] = value;
    }
}

bool convolveWithHRF(std::span<float> column, HRFModel model, int nrOfPoints,
                     const TwoGammaHRFParams& params, const DesignSource& source,
                     std::span<const MillisecondInterval> intervals) {
    const int wanted = nrOfPoints < 1 ? source.NrOfVolumes : nrOfPoints;
    const std::span<float> points =
        column.first(std::min(size_t(std::max(wanted, 0)), column.size()));
    const int volumeStep = roundedTR(source);
    const bool milliseconds = inMilliseconds(source);
    if (!milliseconds) {
        if (model == HRFModel::None) {
            shiftByOne(points);
            return true;
        }
        const std::vector<float> result =
            convolveColumn(points, kernelOf(model, volumeStep, false, params));
        std::copy(result.begin(), result.end(), points.begin());
        return true;
    }
    ZeroedBuffer<float> box;
    if (!points.empty() && !box.allocate(points.size() * size_t(volumeStep)))
        return false;
    fillMilliseconds(box.span(), intervals);
    std::fill(points.begin(), points.end(), 0.0f);
    if (model == HRFModel::None) {
        for (size_t k = 1; k < points.size(); ++k)
            points[k] = box[k * size_t(volumeStep) - 1];
        return true;
    }
    convolveMilliseconds(box.span(), kernelOf(model, 1, true, params), volumeStep, points);
    return true;
}
