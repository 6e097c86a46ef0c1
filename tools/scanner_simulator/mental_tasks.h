// What the simulated subject does when letters are coded by mental tasks.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulated_dynamics.h"

/// A letter is one of three tasks, begun at one of three onsets and held for one of three
/// durations.
struct SpelledLetter {
    QChar letter;      ///< "_" or "A" to "Z"
    int code;          ///< 0 for "_" to 26 for "Z": task * 9 + onset * 3 + duration
    int from;          ///< first volume of its window: analysed ones from 1
    int task;          ///< from 0
    StimulusTime time; ///< of the task
};

/// Volumes of 70 s, the window of a letter.
[[nodiscard]] int volumesOfLetter(const SimulationOptions& options);
/// The letters of the spelled text.
[[nodiscard]] std::vector<SpelledLetter> spelledLetters(const SimulationOptions& options);

/// Analysed volumes of the run: one window for each letter and a volume after the last, or all
/// trials of the training. Any options are accepted.
[[nodiscard]] int volumesOfTasks(const SimulationOptions& options);
/// What is wrong with the text or the training, as a sentence for the user; empty when nothing is.
[[nodiscard]] QString problemOfTasks(const SimulationOptions& options);

/// By task, when it is done. The onsets of a letter, 0, 10 and 20 s, count from the volume that
/// begins 5 s after the start of its window, since a decoder compares from there on.
[[nodiscard]] std::vector<std::vector<StimulusTime>> taskTimes(const SimulationOptions& options);

/// Spelling: Rest, and a block for each letter over the time in which its task may be done.
/// Training: Rest, and a condition for each task and duration, the duration fastest; trials in
/// random order, each condition once before any comes again, with 20 s of Rest around them.
[[nodiscard]] std::vector<SimulatedCondition> taskProtocol(const SimulationOptions& options);

/// One line for each letter: its code, its window and its task.
[[nodiscard]] QByteArray spellingText(const SimulationOptions& options);
