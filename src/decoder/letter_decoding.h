// The decoding of one letter: the curves of a window against the reference responses.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/decoder_settings.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

/// Nine curves of equal length, in percent or any other scale.
using ReferenceCurves = std::array<std::vector<float>, LetterCode::nrOfReferences>;
/// What the curve of a ROI that doesn't exist is filled with. It has no variance, so it says
/// nothing.
inline constexpr float missingROIValue = 0.5f;
/// The base of a curve in percent.
inline constexpr double fullPercent = 100.0;

/// Six curves; of ROIs that don't exist all missingROIValue.
using ROICurves = std::array<std::vector<float>, nrOfDecoderROIs>;

/// [reference][ROI]
using ReferenceByROI = std::array<std::array<float, nrOfDecoderROIs>, LetterCode::nrOfReferences>;
/// [reference][task]
using ReferenceByTask =
    std::array<std::array<float, LetterCode::nrOfTasks>, LetterCode::nrOfReferences>;

/// One of the best letters. Nothing found: noLetter, with the score that the search starts with.
struct RankedLetter {
    static constexpr float startScore = -1.0f;

    QChar letter = noLetter; ///< under its name in the four-letter mode
    float score = startScore;
    LetterCode code{-1, -1}; ///< -1 for none

    [[nodiscard]] bool found() const { return code.task >= 0; }
};

struct LetterDecoding {
    int letter = 0;                  ///< index, from 0
    ROICurves curves;                ///< of the window, in percent of the mean of its base points
    ReferenceByROI corr{};           ///< Pearson; of UseCorr
    ReferenceByROI beta{};           ///< slopes; of UseBeta
    ReferenceByROI normalizedBeta{}; ///< divided by the greatest norm over the ROIs
    ReferenceByTask shape{};         ///< of both scores
    ReferenceByTask pattern{};       ///< of normalized betas; of UseBeta
    ReferenceByTask product{};       ///< of both scores; 0 where both factors are negative
    /// What the ranking scans: the weighted sum, or with one score alone its weighted sum over
    /// ROIs. -1 for those that the four-letter mode can't find, and without any score.
    ReferenceByTask score{};
    std::array<int, LetterCode::nrOfTasks> bestReference{}; ///< by task: the first of the greatest
    std::array<RankedLetter, 3> best;                       ///< ranks 1 to 3
};

/// The beta of a reference in a curve: the slope by least squares over [1, reference], over the
/// points that both have. 0 where the reference doesn't vary.
[[nodiscard]] float fitGLMForLetter(std::span<const float> curve, std::span<const float> reference);

/// Pearson's correlation; 0 where one of them doesn't vary.
[[nodiscard]] float correlation(std::span<const float> curve, std::span<const float> reference);

/// The points of the window in percent of the mean of its base points, unless that is 0. Only
/// points that are compared are taken as base: those after them may not be measured yet in a run,
/// whose letters must be those of its file.
[[nodiscard]] std::vector<float> percentSignal(const DecoderSettings& settings,
                                               std::span<const float> window);

/// Whether there are points to compare and all references have them.
[[nodiscard]] bool referencesFit(const DecoderSettings& settings,
                                 const ReferenceCurves& references);

/// Decodes a letter from curves of the whole run so far. Nothing when its window is not whole, the
/// references don't fit, or a curve has fewer points in the window than are compared; after these,
/// the window may go on into what is not measured yet. Sums are double, results float.
[[nodiscard]] std::optional<LetterDecoding> decodeLetter(const DecoderSettings& settings,
                                                         const ReferenceCurves& references,
                                                         const ROICurves& curves, int letter);
