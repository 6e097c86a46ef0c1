// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_settings_file.h"

#include "base/file_writing.h"
#include "base/text_reading.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr int fileVersion = 1;

/// Values in the order of their lines.
enum Line {
    StandardTwoGamma,
    ConditionDuration,
    LinearPredictor,
    PreOnset,
    PostOnset,
    TValues,
    BValues,
    PercentValues,
    ZNormalized,
    IntensityLimit,
    nrOfLines
};

TrialEstimate estimateOf(std::span<const int, nrOfLines> values) {
    if (values[TValues] != 0)
        return TrialEstimate::TValue;
    if (values[BValues] != 0)
        return TrialEstimate::Beta;
    return values[PercentValues] != 0 ? TrialEstimate::PercentBeta : TrialEstimate::TValue;
}

/// The last word of the next line that isn't blank, as a number.
std::optional<int> lastNumber(TokenStream& stream) {
    QString line;
    while (line.isEmpty() && !stream.exhausted())
        line = stream.restOfLine().simplified();
    bool isNumber = false;
    const int number = line.mid(line.lastIndexOf(' ') + 1).toInt(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

QByteArray trialSettingsText(const TrialOptions& options) {
    const auto estimates = [&](TrialEstimate estimate) {
        return options.estimate == estimate ? 1 : 0;
    };
    return formatted("FileVersion:   %i\n\n"
                     "UsedGLMSettings:\n"
                     "StandardTwoGamma:                %i\n"
                     "ConditionDurationForTrialWindow: %i\n"
                     "AddedLinearPredictor:            %i\n"
                     "TrialWindowPreOnsetValue:        %i\n"
                     "TrialWindowPostOnsetValue:       %i\n"
                     "TrialsEstimatedAsTValues:        %i\n"
                     "TrialsEstimatedAsBValues:        %i\n"
                     "TrialsEstimatedAsPercentValues:  %i\n"
                     "TrialsTimeCourseZNormalized:     %i\n"
                     "IntensityExclusionCriterion:     %i\n",
                     fileVersion, options.response == TrialResponse::StandardTwoGamma ? 1 : 0,
                     options.useTrialDuration ? 1 : 0, options.linearTrend ? 1 : 0,
                     options.preOnset, options.postOnset, estimates(TrialEstimate::TValue),
                     estimates(TrialEstimate::Beta), estimates(TrialEstimate::PercentBeta),
                     options.zNormalization ? 1 : 0, options.intensityLimit);
}

std::optional<TrialOptions> parseTrialSettings(const QString& text) {
    TokenStream stream(text);
    if (lastNumber(stream) != fileVersion || stream.word().isEmpty())
        return std::nullopt;
    static_cast<void>(stream.restOfLine());
    std::array<int, nrOfLines> values{};
    for (int& value : values) {
        const std::optional<int> number = lastNumber(stream);
        if (!number)
            return std::nullopt;
        value = *number;
    }
    TrialOptions options;
    options.preOnset = std::clamp(values[PreOnset], 0, mostWindowVolumes);
    options.postOnset = std::clamp(values[PostOnset], 0, mostWindowVolumes);
    options.useTrialDuration = values[ConditionDuration] != 0;
    options.response = values[StandardTwoGamma] != 0 ? TrialResponse::StandardTwoGamma
                                                     : TrialResponse::MeanResponse;
    options.linearTrend = values[LinearPredictor] != 0;
    options.estimate = estimateOf(values);
    options.zNormalization = values[ZNormalized] != 0;
    options.intensityLimit =
        std::clamp(values[IntensityLimit], 0, int(std::numeric_limits<int16_t>::max()));
    return options;
}
