// The files of the decoder: weights (.wgt), settings (.bds), reference responses and curves (.rtc).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QByteArray>
#include <QString>
#include <optional>

/// "IdealResponses_rg.rtc": the reference file that comes with the program.
inline const QString idealResponsesFileName = QStringLiteral("IdealResponses_rg.rtc");

[[nodiscard]] QByteArray weightsText(const TaskWeights& weights);
/// Nothing for a text that is cut, of another size, or holds something else than numbers.
[[nodiscard]] std::optional<TaskWeights> parseWeights(const QString& text);

/// The scaled weights, six values a line in width 9, each followed by a blank
/// (ScaledTaskVOIWeights.txt).
[[nodiscard]] QByteArray scaledWeightsText(const TaskWeights& scaled);

/// The fields that the file has.
[[nodiscard]] QByteArray decoderSettingsText(const DecoderSettings& settings);
/// Fields that the file doesn't have keep the value of `start`. Nothing for a text that is cut,
/// has its keys in another order, or values out of range.
[[nodiscard]] std::optional<DecoderSettings> parseDecoderSettings(const QString& text,
                                                                  const DecoderSettings& start);

/// The nine curves of a design matrix file. Nothing after a message: "This file must contain 9 time
/// courses but has %1", or "INFO - Problem loading RTC file with ideal responses!".
[[nodiscard]] std::optional<ReferenceCurves> loadReferences(const QString& path);
/// Three to six curves of a version 1 file ("NrOfRTCs:", "NrOfValues:"); missing ROIs are filled
/// with 0.5. Nothing after "INFO - Problem loading RTC file with VOI time courses!".
struct OfflineCurves {
    int nrOfROIs = 0;
    int nrOfTimePoints = 0;
    ROICurves curves;
};
[[nodiscard]] std::optional<OfflineCurves> loadOfflineCurves(const QString& path);

/// The text of a reference file (version 2 of .rtc), named as the references are.
[[nodiscard]] QByteArray referencesText(const ReferenceCurves& references);
/// Responses of the two-gamma function to the nine courses, for windows of `nrOfPoints` with `TR` in
/// milliseconds, as percent signal change above 100: a task begins 0, 10 or 20 s behind the begin
/// of the compared window and is held for 10, 20 or 30 s.
[[nodiscard]] ReferenceCurves idealResponses(int nrOfPoints, double TR);
