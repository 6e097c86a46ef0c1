// The files of the decoder: weights (.wgt), settings (.bds), reference responses and curves (.rtc).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QByteArray>
#include <QString>
#include <optional>

/// "IdealResponses_rg.rtc": the reference file that comes with the program.
inline const QString idealResponsesFileName = QStringLiteral("IdealResponses_rg.rtc");

/// Six decimals.
[[nodiscard]] QByteArray weightsText(const TaskWeights& weights);
/// Nothing for a text that is cut, of another size, or holds something else than numbers between
/// -1e6 and 1e6.
[[nodiscard]] std::optional<TaskWeights> parseWeights(const QString& text);

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
    ROICurves curves; ///< of ROIs that aren't there all 0.5
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

/// Responses of the two-gamma function to the nine courses, for windows of `nrOfPoints` with `TR`
/// in milliseconds, as percent signal change above 100: a task begins 0, 10 or 20 s behind the
/// begin of the compared window and is held for 10, 20 or 30 s. A point is the response in the
/// middle of its volume. Each curve has a standard deviation of 0.5 % over its points, unless it
/// has none. All 100 without a TR.
[[nodiscard]] ReferenceCurves idealResponses(int nrOfPoints, double TR);
