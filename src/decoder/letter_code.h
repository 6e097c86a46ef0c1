// The code of letters: task, onset and duration.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QChar>
#include <QString>
#include <optional>

/// A letter is one of three mental tasks, started at one of three onsets and held for one of three
/// durations.
struct LetterCode {
    static constexpr int nrOfTasks = 3;
    static constexpr int nrOfOnsets = 3;
    static constexpr int nrOfDurations = 3;
    static constexpr int nrOfReferences = nrOfOnsets * nrOfDurations; ///< courses of a response
    static constexpr int nrOfLetters = nrOfTasks * nrOfReferences;
    /// Milliseconds between two onsets, and between two durations: onsets at 0, 10 and 20 s,
    /// durations of 10, 20 and 30 s.
    static constexpr double timeStep = 10000.0;
    /// The full window is seven time steps, 70 s: the cue, then five stages of one time step each,
    /// and what is left for rest.
    static constexpr int nrOfStages = 6;
    static constexpr int nrOfTimeSteps = 7;

    int task = 0;      ///< from 0
    int reference = 0; ///< onset * 3 + duration, from 0

    [[nodiscard]] int onset() const { return reference / nrOfDurations; }
    [[nodiscard]] int duration() const { return reference % nrOfDurations; }
    /// Whether the task is performed in this stage, which may be -1 for the cue.
    [[nodiscard]] bool isPerformedIn(int stage) const {
        return stage >= onset() && stage <= onset() + duration();
    }
    bool operator==(const LetterCode&) const = default;
};

/// Instead of a letter where there is none.
inline constexpr QChar noLetter = u'-';

/// "_" for the first code, then "A" to "Z"; by task, then onset, then duration.
[[nodiscard]] QChar letterOf(const LetterCode& code);
/// Nothing for a character that has no code; a blank is read as "_", small letters as capitals.
[[nodiscard]] std::optional<LetterCode> codeOf(QChar letter);
/// "10-10", "10-20" to "30-30", the onset first.
[[nodiscard]] QString referenceName(int reference);

/// In the four-letter mode only "A", "E", "U" and "Y" can be found, which are called A, C, B and D.
[[nodiscard]] bool isOfFourLetters(const LetterCode& code);
[[nodiscard]] QChar fourLetterName(QChar letter);
