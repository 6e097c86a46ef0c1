// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/feature_scaling.h"

#include "base/file_writing.h"
#include "base/paths.h"
#include "base/text_reading.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int fileVersion = 1;
constexpr double smallestDeviation = 0.0001;
constexpr double searchStart = 10000000.0;

void learnDeviations(const PatternSet& patterns, FeatureScaling& scaling) {
    const size_t features = size_t(patterns.nrOfFeatures);
    const double count = patterns.count();
    scaling.mean.assign(features, 0.0);
    scaling.deviation.assign(features, 0.0);
    for (int i = 0; i < patterns.count(); ++i)
        for (size_t f = 0; f < features; ++f)
            scaling.mean[f] += patterns.features(i)[f];
    for (double& mean : scaling.mean)
        mean /= count;
    for (int i = 0; i < patterns.count(); ++i)
        for (size_t f = 0; f < features; ++f) {
            const double difference = patterns.features(i)[f] - scaling.mean[f];
            scaling.deviation[f] += difference * difference;
        }
    for (double& deviation : scaling.deviation) {
        deviation = std::sqrt(deviation / count);
        // NaN, of no exemplars, as well.
        if (!(deviation >= smallestDeviation))
            deviation = 1.0;
    }
}

void learnLimits(const PatternSet& patterns, FeatureScaling& scaling) {
    const size_t features = size_t(patterns.nrOfFeatures);
    scaling.minimum.assign(features, searchStart);
    scaling.maximum.assign(features, -searchStart);
    for (int i = 0; i < patterns.count(); ++i)
        for (size_t f = 0; f < features; ++f) {
            const double value = patterns.features(i)[f];
            scaling.minimum[f] = std::min(scaling.minimum[f], value);
            scaling.maximum[f] = std::max(scaling.maximum[f], value);
        }
}

double scaled(double value, const FeatureScaling& scaling, size_t feature) {
    if (scaling.options.mode == ScalingMode::Standardize)
        return (value - scaling.mean[feature]) / scaling.deviation[feature];
    const double minimum = scaling.minimum[feature];
    const double maximum = scaling.maximum[feature];
    if (!(minimum < maximum))
        return value;
    const ScalingOptions& options = scaling.options;
    return (value - minimum) / (maximum - minimum) * (options.high - options.low) + options.low;
}

/// The two lists that the mode has, in the order of their columns in the file.
template<typename Scaling> auto columns(Scaling& scaling) {
    return scaling.options.mode == ScalingMode::Standardize
               ? std::array{&scaling.mean, &scaling.deviation}
               : std::array{&scaling.minimum, &scaling.maximum};
}

/// One number for each feature in both lists, and nothing behind them.
bool readColumns(TokenStream& stream, int features, FeatureScaling& scaling) {
    for (int f = 0; f < features; ++f)
        for (std::vector<double>* column : columns(scaling)) {
            column->push_back(stream.real());
            if (stream.failed())
                return false;
        }
    return stream.atEnd() && std::ranges::all_of(scaling.deviation, [](double deviation) {
               return deviation >= smallestDeviation;
           });
}

} // namespace

FeatureScaling learnScaling(const PatternSet& patterns, const ScalingOptions& options) {
    FeatureScaling scaling;
    scaling.options = options;
    if (options.mode == ScalingMode::Standardize)
        learnDeviations(patterns, scaling);
    else if (options.mode == ScalingMode::Range)
        learnLimits(patterns, scaling);
    return scaling;
}

void applyScaling(const FeatureScaling& scaling, PatternSet& patterns) {
    if (scaling.options.mode == ScalingMode::None)
        return;
    for (int i = 0; i < patterns.count(); ++i) {
        const std::span<double> features = patterns.features(i);
        for (size_t f = 0; f < features.size(); ++f)
            features[f] = scaled(features[f], scaling, f);
    }
}

QString scalingReport(const ScalingOptions& options) {
    if (options.mode == ScalingMode::Standardize)
        return QStringLiteral("Features have been standardized (mean = 0, s = 1");
    if (options.mode == ScalingMode::Range)
        return QStringLiteral("Features have been scaled to range: %1 - %2")
            .arg(options.low)
            .arg(options.high);
    return {};
}

QString scalingPath(const QString& modelPath) {
    return paths::withoutExtension(modelPath) + "_scaling.txt";
}

QByteArray scalingText(const FeatureScaling& scaling) {
    const bool hasColumns = scaling.options.mode != ScalingMode::None;
    const size_t features = hasColumns ? columns(scaling)[0]->size() : 0;
    QByteArray text = formatted("FileVersion:  %d\n\nScalingMode:  %d\nRangeLow:     %.17g\n"
                                "RangeHigh:    %.17g\nNrOfFeatures: %d\n\n",
                                fileVersion, int(scaling.options.mode), scaling.options.low,
                                scaling.options.high, int(features));
    for (size_t f = 0; f < features; ++f)
        text += formatted("%.17g %.17g\n", (*columns(scaling)[0])[f], (*columns(scaling)[1])[f]);
    return text;
}

std::optional<FeatureScaling> readScaling(const QString& modelPath) {
    QString text;
    return readTextFile(scalingPath(modelPath), text) ? parseScaling(text) : std::nullopt;
}

std::optional<FeatureScaling> parseScaling(const QString& text) {
    TokenStream stream(text);
    const auto isKey = [&stream](const char* key) { return tokensAgree(stream.word(), key); };
    FeatureScaling scaling;
    if (!isKey("FileVersion:") || stream.integer() != fileVersion || !isKey("ScalingMode:"))
        return {};
    const int mode = stream.integer();
    if (mode < int(ScalingMode::None) || mode > int(ScalingMode::Range) || !isKey("RangeLow:"))
        return {};
    scaling.options.mode = ScalingMode(mode);
    scaling.options.low = stream.real();
    if (!isKey("RangeHigh:"))
        return {};
    scaling.options.high = stream.real();
    if (!isKey("NrOfFeatures:"))
        return {};
    const int features = stream.integer();
    const bool countFits = scaling.options.mode == ScalingMode::None ? features == 0 : features > 0;
    if (stream.failed() || !countFits || !readColumns(stream, features, scaling))
        return {};
    return scaling;
}
