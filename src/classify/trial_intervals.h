// Trials of protocols: which conditions have them, and how far apart they begin.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/trial_design.h"
#include "run/protocol/stimulation_protocol.h"

#include <QString>
#include <QStringList>
#include <map>
#include <vector>

/// One trial: an interval of a condition, as the protocol states it.
struct Trial {
    QString condition;
    int number = 1; ///< from 1 within its condition
    int start = 0;
    int end = 0;

    [[nodiscard]] int duration() const { return trialDuration(start, end); }
};

/// The trials of the conditions, condition after condition in the protocol's order, each in the
/// order of its intervals.
[[nodiscard]] std::vector<Trial> trialsOf(const StimulationProtocol& protocol,
                                          const QStringList& conditions);
/// The protocol has all these conditions.
[[nodiscard]] bool hasConditions(const StimulationProtocol& protocol,
                                 const QStringList& conditions);

/// How often each distance between the onsets of consecutive trials occurs, in volumes. Trials of
/// all conditions count together; two that begin at the same volume count as one.
using IntervalHistogram = std::map<int, int>;
/// Adds the distances of one run.
void addIntervals(IntervalHistogram& histogram, const std::vector<Trial>& trials);

/// What the histogram suggests for the window.
struct WindowSuggestion {
    int postOnset = 0;  ///< 0 to mostWindowVolumes; unchanged where there are no two trials
    QStringList report; ///< lines for the log
};
/// The smallest distance - pre - 1.
[[nodiscard]] WindowSuggestion suggestedWindow(const IntervalHistogram& histogram,
                                               const TrialOptions& options);
