// The contrast file (.ctr).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/contrasts.h"
#include "stats/design_matrix.h"

#include <QByteArray>
#include <QString>

/// `fileName`, or, when it is empty, the project's name with ".ctr".
[[nodiscard]] QString contrastFilePath(const QString& fileName, const QString& projectPath);

/// Takes the contrasts from the text of a file of version 1, 2 or 3, and rebuilds their weights.
/// False, with the reason in `message` and `contrasts` as they were, when the text is no contrast
/// file, is damaged, or does not fit `design.NrOfContrastPredictors` and `nrOfConditions`. A file
/// whose baseline position contradicts the model is refused too: its weights would fall on the
/// columns of other conditions. Either one of the conditions is the baseline and the file has a
/// value for each of them, or none is (position 0) and one more value, for "Baseline+", comes
/// first.
///
/// Versions 1 and 2 have no baseline entries: BaselineInContrasts is 1 for them and
/// BaselinePosInProtocol stays. A selection state that is none is taken as off; colour channels are
/// held within 0 and 255.
[[nodiscard]] bool parseContrasts(const QString& text, ContrastDefinitions& contrasts,
                                  const DesignMatrix& design, int nrOfConditions, QString& message);

/// The text of a version 3 file. `nrOfContrastPredictors` values are written for each contrast;
/// missing ones as 0. A double quote in a name becomes a single one, and names are cut to what can
/// be read back.
[[nodiscard]] QByteArray contrastFileText(const ContrastDefinitions& contrasts,
                                          int nrOfContrastPredictors);

/// True for a file whose BaselinePosInProtocol is 0. The lists of predictors that it is read
/// against then need an entry of their own for the baseline. False, without a message, for any
/// other file.
[[nodiscard]] bool contrastFileHasNoBaseline(const QString& fileName);

/// Reads a contrast file. False, after a warning and with the contrasts as they were, on a failure.
[[nodiscard]] bool readContrastFile(const QString& fileName, ContrastDefinitions& contrasts,
                                    const DesignMatrix& design, int nrOfConditions);

/// Writes version 3, whole or not at all. False after a critical message.
[[nodiscard]] bool writeContrastFile(const QString& fileName, const ContrastDefinitions& contrasts,
                                     int nrOfContrastPredictors);
