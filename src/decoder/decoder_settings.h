// What the operator sets for the decoding of letters. The words of the decoder:
//
// - volume: one image of the run; time points and points are volumes too. A time point counts from
//   the start of the run, a point from that of a window.
// - letter's window: the volumes of one letter, FullWindowSize of them. Its first points, in which
//   the subject sees the cue, are skipped; after them the compared window starts, of
//   nrOfComparedPoints() points.
// - task ROI: a region that responds to one of the tasks; VOI in the operator's texts.
// - helper ROI: a region, for each task, that shows well when it is performed; SMA in those texts,
//   after the region that is mostly taken.
// - reference: the response that is expected to one of the nine courses of a task. Ideal responses
//   are computed and come with the program, empirical ones are averaged from a subject's training.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_code.h"

#include <array>
#include <vector>

/// Three ROIs that tell the tasks apart, then three helper ROIs, one for each task, that follow the
/// onset and the duration well.
inline constexpr int nrOfDecoderROIs = 6;
inline constexpr int nrOfTaskROIs = 3;
inline constexpr int leastDecoderROIs = 3;

/// "VOI Task 1" to "SMA 3".
[[nodiscard]] QString decoderROIName(int roi);

/// The greatest window, skip or position in a plot that a file may state, in points.
inline constexpr int mostDecoderPoints = 100000;
inline constexpr int mostExtraLines = 1000;

/// By task: the weight of each ROI.
using TaskWeights = std::array<std::array<float, nrOfDecoderROIs>, LetterCode::nrOfTasks>;

/// Which ROIs show the shape of a task's response. The numbers stand in files.
enum class HelperVOIs {
    OnlyHelpers = 1, ///< the task's helper ROI
    OnlyTasks = 2,   ///< the task's own ROI
    Both = 3         ///< half of each
};

/// Ranges: window sizes at least 1, skips of the run and at the start of a window at least 0, tau 0
/// to 1, the mean's points within the compared window.
struct DecoderSettings {
    int NrOfDataROIs = nrOfDecoderROIs;
    int NrOfTimePoints = 0; ///< expected volumes of the run, without those that are skipped
    int FullWindowSize = 42;
    int IdealResponseWindowSize = 40;
    int SkipAtBeginOfWindow = 3; ///< until the response starts
    int SkipAtEndOfWindow = -1;  ///< negative: the response runs on into the next window
    int SkipTimePointsAtBegin = 0;
    /// The points of the compared window, from 0, both included, whose mean (the base) is 100 %.
    int MeanForPercSignalFrom = 0;
    int MeanForPercSignalTo = 2;
    int NrOfLetters = 1000;
    int TimerInterval = 200; ///< milliseconds
    HelperVOIs HelperVOIsMode = HelperVOIs::Both;
    bool UseCorr = true;
    bool UseBeta = true;
    bool ABCDMode = false;
    float CorrBetaTau = 0.5f;      ///< weight of beta in the sum
    TaskWeights TaskVOIWeights{};  ///< each task's row scaled to unit length, see scaledWeights()
    std::vector<float> extraLines; ///< points at which the plots have a vertical line

    /// Points that are correlated: those of the reference within the window.
    [[nodiscard]] int nrOfComparedPoints() const;
    /// The four letters need both scores.
    [[nodiscard]] bool findsFourLetters() const { return ABCDMode && UseCorr && UseBeta; }
    bool operator==(const DecoderSettings&) const = default;
};

/// 1 at the task's own ROI and at its helper.
[[nodiscard]] TaskWeights defaultTaskWeights();
/// Each task's row divided by its length; a row of zeros stays.
[[nodiscard]] TaskWeights scaledWeights(const TaskWeights& weights);
/// With these weights, not scaled yet.
[[nodiscard]] DecoderSettings defaultDecoderSettings();

/// First point of a letter's window, from 0 in the run: what the decoding compares starts here.
[[nodiscard]] long long firstPointOfLetter(const DecoderSettings& settings, int letter);
/// Whether the data have all points of the letter's window.
[[nodiscard]] bool windowIsWhole(const DecoderSettings& settings, int letter);
/// Whether a letter's window ends with this volume, from 0; none does before the first window is
/// whole.
[[nodiscard]] bool windowEndsAt(const DecoderSettings& settings, int volume);
/// The stage of its letter in which a volume is measured: 0 to 5 from the start of the compared
/// window on. -1 while the subject sees the cue: before the first window, and in each window during
/// the points that are skipped at its start.
[[nodiscard]] int stageAt(const DecoderSettings& settings, int volume);

/// What is out of range or doesn't fit together, for the operator; empty when nothing is.
[[nodiscard]] QString decoderSettingsFault(const DecoderSettings& settings);
/// Helper ROIs that the chosen role needs and that aren't there, and what that means for the shape
/// of their tasks; empty where all are there or the helpers have no role. No fault: three ROIs are
/// enough for a role that does without helpers.
[[nodiscard]] QString missingHelpersNote(const DecoderSettings& settings);
