// The log of a decoded letter, for the output file and the window.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QString>

/// What the plots show between their curves, where both scores are in use.
[[nodiscard]] QString multiplicationLabel();
[[nodiscard]] QString weightedSumLabel(const DecoderSettings& settings);

/// All numbers of the decoding, ROIs and tasks from 1, in lines of nine values in width 10; then
/// the letters with their scores, and an empty line. `settings` are those of the decoding.
[[nodiscard]] QString decodingLog(const DecoderSettings& settings, const LetterDecoding& decoding);
