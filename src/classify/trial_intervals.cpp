// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_intervals.h"

#include <algorithm>
#include <optional>
#include <set>

namespace {

constexpr int longestInterval = 1000000;

int postOnsetFor(int interval, int preOnset) {
    return std::clamp(interval - preOnset - 1, 0, mostWindowVolumes);
}

} // namespace

std::vector<Trial> trialsOf(const StimulationProtocol& protocol, const QStringList& conditions) {
    std::vector<Trial> trials;
    for (const ProtocolCondition& condition : protocol.conditions) {
        if (!conditions.contains(condition.name))
            continue;
        for (int i = 0; i < condition.nrOfIntervals; ++i)
            trials.push_back(
                {condition.name, i + 1, condition.from[size_t(i)], condition.to[size_t(i)]});
    }
    return trials;
}

bool hasConditions(const StimulationProtocol& protocol, const QStringList& conditions) {
    const QStringList names = conditionNames(protocol);
    return std::ranges::all_of(conditions,
                               [&](const QString& name) { return names.contains(name); });
}

void addIntervals(IntervalHistogram& histogram, const std::vector<Trial>& trials) {
    std::set<int> onsets;
    for (const Trial& trial : trials)
        onsets.insert(trial.start);
    std::optional<int> previous;
    for (const int onset : onsets) {
        if (previous)
            ++histogram[trialDuration(*previous, onset)];
        previous = onset;
    }
}

WindowSuggestion suggestedWindow(const IntervalHistogram& histogram, const TrialOptions& options) {
    WindowSuggestion suggestion{options.postOnset, {}};
    if (histogram.empty()) {
        suggestion.report << "There are no two trials: the \"Post-onset\" value stays as it is.";
        return suggestion;
    }
    suggestion.report << "Histogram of distances (intervals) between consecutive trial onsets:";
    int mostFrequent = 0;
    int highestFrequency = 0;
    for (const auto& [interval, frequency] : histogram) {
        suggestion.report
            << QStringLiteral("Interval: %1  Frequency: %2").arg(interval).arg(frequency);
        if (frequency > highestFrequency) {
            mostFrequent = interval;
            highestFrequency = frequency;
        }
    }
    const int smallest = std::min(longestInterval, histogram.begin()->first);
    suggestion.postOnset = postOnsetFor(smallest, options.preOnset);
    suggestion.report << QStringLiteral("The \"Post-onset\" value has been set to \"%1\" using the "
                                        "smallest interval between successive trial onsets "
                                        "(\"%2\").")
                             .arg(suggestion.postOnset)
                             .arg(smallest);
    if (mostFrequent != smallest)
        suggestion.report << QStringLiteral(
                                 "The interval with the highest frequency was \"%1\". If you would "
                                 "like to use this interval, change the \"Post-onset\" value to "
                                 "%2. Note, however, that this may result in overlapping trial "
                                 "windows, which should be avoided.")
                                 .arg(mostFrequent)
                                 .arg(postOnsetFor(mostFrequent, options.preOnset));
    return suggestion;
}
