// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/time_course_statistics.h"

#include <cmath>
#include <numeric>

double meanOf(std::span<const float> values) {
    return values.empty()
               ? 0.0
               : std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
}

double temporalSignalToNoise(std::span<const float> values) {
    if (values.size() < 2)
        return 0.0;
    const double mean = meanOf(values);
    double squareSum = 0.0;
    for (const float value : values)
        squareSum += (double(value) - mean) * (double(value) - mean);
    return squareSum > 0.0 ? mean / std::sqrt(squareSum / double(values.size() - 1)) : 0.0;
}

std::vector<float> detrended(std::span<const float> values) {
    const double middle = (double(values.size()) - 1.0) / 2.0;
    double products = 0.0;
    double squares = 0.0;
    for (size_t t = 0; t < values.size(); ++t) {
        products += (double(t) - middle) * double(values[t]);
        squares += (double(t) - middle) * (double(t) - middle);
    }
    const double slope = squares > 0.0 ? products / squares : 0.0;
    std::vector<float> result(values.begin(), values.end());
    for (size_t t = 0; t < result.size(); ++t)
        result[t] = float(double(result[t]) - slope * (double(t) - middle));
    return result;
}

std::vector<float> percentOfMean(std::span<const float> values) {
    const double mean = meanOf(values);
    std::vector<float> result(values.size(), 0.0f);
    if (mean != 0.0)
        for (size_t t = 0; t < result.size(); ++t)
            result[t] = float((double(values[t]) - mean) / mean * 100.0);
    return result;
}
