// The files of the decoder: weights (.wgt), settings (.bds), reference responses and curves (.rtc).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QByteArray>
#include <QString>
#include <optional>

/// "IdealResponses_rg.rtc": the reference file that comes with the program.
inline const QString idealResponsesFileName = QStringLiteral("IdealResponses_rg.rtc");

/// Of the files of curves, for file choosers.
inline const QString rtcFilesFilter = QStringLiteral("RTC files (*.rtc)");

/// What the operator is told when an output file can't be written.
[[nodiscard]] QString outputFileFault(const QString& path);

/// Six decimals.
[[nodiscard]] QByteArray weightsText(const TaskWeights& weights);
/// Nothing for a text that is cut, of another size, or holds something else than numbers between
/// -1e6 and 1e6.
[[nodiscard]] std::optional<TaskWeights> parseWeights(const QString& text);

/// Weights as they are typed, by task and ROI.
using WeightCells = std::array<std::array<QString, nrOfDecoderROIs>, LetterCode::nrOfTasks>;
struct TypedWeights {
    TaskWeights weights{};
    QString fault; ///< names the first cell without a number of the range above; else empty
};
/// Each cell by itself: an empty one is a fault, as two numbers in one are.
[[nodiscard]] TypedWeights typedWeights(const WeightCells& cells);

/// The scaled weights, six values a line in width 9, each followed by a blank
/// (ScaledTaskVOIWeights.txt).
[[nodiscard]] QByteArray scaledWeightsText(const TaskWeights& scaled);

/// The fields that the file has.
[[nodiscard]] QByteArray decoderSettingsText(const DecoderSettings& settings);
/// Fields that the file doesn't have keep the value of `start`. Nothing for a text that is cut,
/// has its keys in another order or more than it announces, or whose values are out of range: see
/// DecoderSettings, and at least one point must be left to compare.
[[nodiscard]] std::optional<DecoderSettings> parseDecoderSettings(const QString& text,
                                                                  const DecoderSettings& start);

/// The nine curves of a design matrix file (version 2 of .rtc), by position; all of one length, at
/// least one point. Nothing after a message: "This file must contain 9 time courses but has %1", or
/// "INFO - Problem loading RTC file with ideal responses!", with the reason on a line of its own.
[[nodiscard]] std::optional<ReferenceCurves> loadReferences(const QString& path);
/// The same; refused unless they have this number of points.
[[nodiscard]] std::optional<ReferenceCurves> loadReferences(const QString& path, int nrOfPoints);

struct CurvesSize {
    int nrOfROIs = 0; ///< 3 to 6
    int nrOfTimePoints = 0;
    bool operator==(const CurvesSize&) const = default;
};
/// Curves of a run that lie in a file.
struct OfflineCurves {
    CurvesSize size;
    ROICurves curves; ///< of ROIs that aren't there all missingROIValue
};
/// Three to six curves of a version 1 file ("NrOfRTCs:", "NrOfValues:"), with at least one point.
/// Nothing after "INFO - Problem loading RTC file with VOI time courses!", with the reason on a
/// line of its own.
[[nodiscard]] std::optional<OfflineCurves> loadOfflineCurves(const QString& path);
/// The first ROIs and time points of such a file; refused where it has fewer of either.
[[nodiscard]] std::optional<OfflineCurves> loadOfflineCurves(const QString& path, CurvesSize part);
/// What such a file has; nothing, without a message, where it can't be loaded.
[[nodiscard]] std::optional<CurvesSize> sizeOfOfflineCurves(const QString& path);

/// The text of a reference file (version 2 of .rtc), named as the references are, numbers
/// right-aligned in width 12.
[[nodiscard]] QByteArray referencesText(const ReferenceCurves& references);
/// Writes it, atomically. False after "ERROR: Unable to open file \"%1\"!".
[[nodiscard]] bool writeReferences(const ReferenceCurves& references, const QString& path);
