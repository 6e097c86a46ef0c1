// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/letter_decoding.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Sums over points, relative to the first point of both curves: a curve without variance has
/// exactly 0 squares, and n * squares - sum^2 is never below the squares, so it cancels nowhere.
struct Sums {
    double n = 0.0;
    double x = 0.0; ///< of the reference
    double xx = 0.0;
    double y = 0.0; ///< of the curve
    double yy = 0.0;
    double xy = 0.0;
};

Sums sumsOf(std::span<const float> curve, std::span<const float> reference) {
    Sums sums;
    const size_t n = std::min(curve.size(), reference.size());
    sums.n = double(n);
    for (size_t i = 0; i < n; ++i) {
        const double x = double(reference[i]) - double(reference[0]);
        const double y = double(curve[i]) - double(curve[0]);
        sums.x += x;
        sums.xx += x * x;
        sums.y += y;
        sums.yy += y * y;
        sums.xy += x * y;
    }
    return sums;
}

/// Cuts the window out of each curve, in percent. What lies after the points that are compared may
/// not have been measured yet, and is then missing.
bool cutWindows(const DecoderSettings& settings, const ROICurves& curves,
                LetterDecoding& decoding) {
    const auto first = size_t(firstPointOfLetter(settings, decoding.letter));
    const auto compared = size_t(settings.nrOfComparedPoints());
    for (size_t roi = 0; roi < curves.size(); ++roi) {
        const std::span<const float> curve = curves[roi];
        if (curve.size() < first + compared)
            return false;
        const size_t size =
            std::min(size_t(settings.IdealResponseWindowSize), curve.size() - first);
        decoding.curves[roi] = percentSignal(settings, curve.subspan(first, size));
    }
    return true;
}

void compareWithReferences(const DecoderSettings& settings, const ReferenceCurves& references,
                           LetterDecoding& decoding) {
    const auto compared = size_t(settings.nrOfComparedPoints());
    for (size_t roi = 0; roi < decoding.curves.size(); ++roi) {
        const auto curve = std::span<const float>(decoding.curves[roi]).first(compared);
        for (size_t r = 0; r < references.size(); ++r) {
            const auto reference = std::span<const float>(references[r]).first(compared);
            if (settings.UseCorr)
                decoding.corr[r][roi] = correlation(curve, reference);
            if (settings.UseBeta)
                decoding.beta[r][roi] = fitGLMForLetter(curve, reference);
        }
    }
}

/// All betas are divided by one norm, so that references stay comparable.
void normalizeBetas(LetterDecoding& decoding) {
    double greatest = 0.0;
    for (const auto& betas : decoding.beta) {
        double squares = 0.0;
        for (const float beta : betas)
            squares += double(beta) * double(beta);
        greatest = std::max(greatest, squares);
    }
    const double norm = greatest > 0.0 ? std::sqrt(greatest) : 1.0;
    for (size_t r = 0; r < decoding.beta.size(); ++r)
        for (size_t roi = 0; roi < decoding.beta[r].size(); ++roi)
            decoding.normalizedBeta[r][roi] = float(double(decoding.beta[r][roi]) / norm);
}

TaskWeights shapeWeights(HelperVOIs mode) {
    TaskWeights weights{};
    for (size_t task = 0; task < weights.size(); ++task) {
        const float each = mode == HelperVOIs::Both ? 0.5f : 1.0f;
        if (mode != HelperVOIs::OnlyHelpers)
            weights[task][task] = each;
        if (mode != HelperVOIs::OnlyTasks)
            weights[task][nrOfTaskROIs + task] = each;
    }
    return weights;
}

ReferenceByTask sumOverROIs(const ReferenceByROI& values, const TaskWeights& weights) {
    ReferenceByTask sums{};
    for (size_t r = 0; r < values.size(); ++r)
        for (size_t task = 0; task < weights.size(); ++task) {
            double sum = 0.0;
            for (size_t roi = 0; roi < values[r].size(); ++roi)
                sum += double(values[r][roi]) * double(weights[task][roi]);
            sums[r][task] = float(sum);
        }
    return sums;
}

void combineScores(const DecoderSettings& settings, LetterDecoding& decoding) {
    const double tau = double(settings.CorrBetaTau);
    for (size_t r = 0; r < decoding.score.size(); ++r)
        for (size_t task = 0; task < decoding.score[r].size(); ++task) {
            const double shape = double(decoding.shape[r][task]);
            const double pattern = double(decoding.pattern[r][task]);
            if (shape >= 0.0 || pattern >= 0.0)
                decoding.product[r][task] = float(shape * pattern);
            const bool masked = settings.ABCDMode && !isOfFourLetters({int(task), int(r)});
            decoding.score[r][task] =
                masked ? RankedLetter::startScore : float((1.0 - tau) * shape + tau * pattern);
        }
}

void computeScores(const DecoderSettings& settings, LetterDecoding& decoding) {
    if (settings.UseBeta) {
        normalizeBetas(decoding);
        decoding.pattern = sumOverROIs(decoding.normalizedBeta, settings.TaskVOIWeights);
    }
    if (settings.UseCorr && settings.UseBeta) {
        decoding.shape = sumOverROIs(decoding.corr, shapeWeights(settings.HelperVOIsMode));
        combineScores(settings, decoding);
    } else if (settings.UseCorr) {
        decoding.score = sumOverROIs(decoding.corr, settings.TaskVOIWeights);
    } else if (settings.UseBeta) {
        decoding.score = decoding.pattern;
    } else {
        for (auto& row : decoding.score)
            row.fill(RankedLetter::startScore);
    }
}

/// The better letters move down by one where a greater score is found, so that the first found of
/// equal ones stays ahead.
void takeScore(const LetterCode& code, float score, LetterDecoding& decoding) {
    auto& best = decoding.best;
    const auto place = std::ranges::find_if(
        best, [score](const RankedLetter& ranked) { return score > ranked.score; });
    if (place == best.end())
        return;
    std::move_backward(place, best.end() - 1, best.end());
    *place = {letterOf(code), score, code};
}

void rankLetters(const DecoderSettings& settings, LetterDecoding& decoding) {
    for (int task = 0; task < LetterCode::nrOfTasks; ++task) {
        float greatest = -std::numeric_limits<float>::infinity();
        for (int r = 0; r < LetterCode::nrOfReferences; ++r) {
            const float score = decoding.score[size_t(r)][size_t(task)];
            takeScore({task, r}, score, decoding);
            if (score > greatest) {
                greatest = score;
                decoding.bestReference[size_t(task)] = r;
            }
        }
    }
    if (settings.findsFourLetters())
        for (RankedLetter& ranked : decoding.best)
            ranked.letter = fourLetterName(ranked.letter);
}

} // namespace

float fitGLMForLetter(std::span<const float> curve, std::span<const float> reference) {
    const Sums s = sumsOf(curve, reference);
    if (s.xx == 0.0)
        return 0.0f;
    // X'X = [n x; x xx], X'y = [y; xy]
    return float((s.n * s.xy - s.x * s.y) / (s.n * s.xx - s.x * s.x));
}

float correlation(std::span<const float> curve, std::span<const float> reference) {
    const Sums s = sumsOf(curve, reference);
    if (s.xx == 0.0 || s.yy == 0.0)
        return 0.0f;
    const double ofReference = std::sqrt(s.n * s.xx - s.x * s.x);
    const double ofCurve = std::sqrt(s.n * s.yy - s.y * s.y);
    return float((s.n * s.xy - s.x * s.y) / (ofReference * ofCurve));
}

std::vector<float> percentSignal(const DecoderSettings& settings, std::span<const float> window) {
    std::vector<float> percent(window.begin(), window.end());
    const int points = int(std::min(window.size(), size_t(settings.nrOfComparedPoints())));
    const int last = std::min(settings.MeanForPercSignalTo, points - 1);
    const int first = std::max(settings.MeanForPercSignalFrom, 0);
    if (first > last)
        return percent;
    double sum = 0.0;
    for (int point = first; point <= last; ++point)
        sum += double(window[size_t(point)]);
    if (sum == 0.0)
        return percent;
    const double base = sum / double(last - first + 1);
    for (float& value : percent)
        value = float(double(value) / base * fullPercent);
    return percent;
}

bool referencesFit(const DecoderSettings& settings, const ReferenceCurves& references) {
    const int compared = settings.nrOfComparedPoints();
    return compared > 0 &&
           std::ranges::all_of(references, [compared](const std::vector<float>& reference) {
               return reference.size() >= size_t(compared);
           });
}

std::optional<LetterDecoding> decodeLetter(const DecoderSettings& settings,
                                           const ReferenceCurves& references,
                                           const ROICurves& curves, int letter) {
    if (!windowIsWhole(settings, letter) || !referencesFit(settings, references))
        return std::nullopt;
    LetterDecoding decoding;
    decoding.letter = letter;
    if (!cutWindows(settings, curves, decoding))
        return std::nullopt;
    compareWithReferences(settings, references, decoding);
    computeScores(settings, decoding);
    rankLetters(settings, decoding);
    return decoding;
}
