// The contrast file (.ctr).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/contrasts.h"
#include "stats/design_matrix.h"

#include <QByteArray>
#include <QString>

/// `fileName`, or, when it is empty, the project's name with ".ctr".
[[nodiscard]] QString contrastFilePath(const QString& fileName, const QString& projectPath);

/// Parses the text of a file of version 1, 2 or 3 and rebuilds the contrast weights. False, with
/// the reason in `message` and `contrasts` unchanged, when the text is not a contrast file, is
/// damaged, or does not fit `design.NrOfContrastPredictors` and `nrOfConditions`. A file whose
/// baseline position contradicts the model is rejected too: its weights would apply to the wrong
/// conditions. Either one of the conditions is the baseline and the file has a value for each
/// condition, or none is (position 0) and an extra value, for "Baseline+", comes first.
///
/// Versions 1 and 2 have no baseline entries: BaselineInContrasts becomes 1 and
/// BaselinePosInProtocol is unchanged. An invalid selection state counts as off; colour channels
/// are clamped to 0 to 255.
[[nodiscard]] bool parseContrasts(const QString& text, ContrastDefinitions& contrasts,
                                  const DesignMatrix& design, int nrOfConditions, QString& message);

/// The text of a version 3 file. `nrOfContrastPredictors` values are written for each contrast,
/// missing ones as 0. A double quote in a name becomes a single one, and names are truncated to
/// what can be read back.
[[nodiscard]] QByteArray contrastFileText(const ContrastDefinitions& contrasts,
                                          int nrOfContrastPredictors);

/// True for a file whose BaselinePosInProtocol is 0: the predictor lists that it is checked against
/// then need a separate entry for the baseline. False, without a message, for any other file.
[[nodiscard]] bool contrastFileHasNoBaseline(const QString& fileName);

/// What the file states, to plan memory with; 0, without a message, for a file that is none or that
/// can't hold as many.
[[nodiscard]] int nrOfContrastsInFile(const QString& fileName);

/// Reads a contrast file. On failure false, after a warning and with the contrasts unchanged.
[[nodiscard]] bool readContrastFile(const QString& fileName, ContrastDefinitions& contrasts,
                                    const DesignMatrix& design, int nrOfConditions);

/// Writes version 3 atomically. False after a critical message.
[[nodiscard]] bool writeContrastFile(const QString& fileName, const ContrastDefinitions& contrasts,
                                     int nrOfContrastPredictors);
