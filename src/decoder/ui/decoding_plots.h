// What the plots of the letter decoder show.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoder.h"
#include "display/plots/plot_content.h"

#include <bitset>

/// By ROI: whether its curve is shown.
using ShownROIs = std::bitset<nrOfDecoderROIs>;

/// Of ranks 0 to 2; grey for any other.
[[nodiscard]] QColor rankColor(int rank);
/// The rank of a code among the best three, from 0; -1 for none.
[[nodiscard]] int rankOf(const std::array<RankedLetter, 3>& best, const LetterCode& code);

/// The window of the latest letter in percent; before the first one the curves so far. Those of
/// ROIs that aren't used are left out.
[[nodiscard]] PlotContent dataPlotContent(const LetterDecoder& decoder, const ROICurves& curves,
                                          ShownROIs shown);
/// A reference over the points that are compared.
[[nodiscard]] PlotContent referencePlotContent(const DecoderSettings& settings, int reference,
                                               const std::vector<float>& curve);
/// Where the decoder is; empty before it is ready.
[[nodiscard]] QString decoderStateText(const LetterDecoder& decoder);
