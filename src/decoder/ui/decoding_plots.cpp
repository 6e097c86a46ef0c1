// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/ui/decoding_plots.h"

#include "display/plots/plot_colors.h"

#include <algorithm>

namespace {

const std::array<QColor, nrOfDecoderROIs> roiColors{{{240, 110, 100},
                                                     {120, 200, 110},
                                                     {100, 170, 250},
                                                     {250, 190, 90},
                                                     {200, 140, 240},
                                                     {90, 215, 215}}};

PlotContent emptyContent(const DecoderSettings& settings) {
    PlotContent content;
    content.gridShown = true;
    for (const float at : settings.extraLines)
        content.lines.push_back({double(at), Qt::Vertical, plotColors::frame, {}});
    return content;
}

// Curves of missing ROIs would only squeeze the others together.
void addCurves(PlotContent& content, const DecoderSettings& settings, const ROICurves& curves,
               ShownROIs shown) {
    for (int roi = 0; roi < std::min(settings.NrOfDataROIs, nrOfDecoderROIs); ++roi)
        if (shown[size_t(roi)])
            content.curves.push_back({.legend = decoderROIName(roi),
                                      .color = roiColors[size_t(roi)],
                                      .values = curves[size_t(roi)],
                                      .errors = {}});
}

bool isEmpty(const ROICurves& curves) {
    return std::ranges::all_of(curves, &std::vector<float>::empty);
}

} // namespace

QColor rankColor(int rank) {
    switch (rank) {
    case 0:
        return {255, 20, 50};
    case 1:
        return {50, 200, 50};
    case 2:
        return {0, 200, 255};
    default:
        return {200, 200, 200};
    }
}

int rankOf(const std::array<RankedLetter, 3>& best, const LetterCode& code) {
    const auto found = std::ranges::find(best, code, &RankedLetter::code);
    return found == best.end() ? -1 : int(found - best.begin());
}

PlotContent dataPlotContent(const LetterDecoder& decoder, const ROICurves& curves,
                            ShownROIs shown) {
    if (const std::optional<LetterDecoding>& latest = decoder.latest()) {
        PlotContent content = emptyContent(decoder.settings());
        content.title = QStringLiteral("Window of letter %1").arg(latest->letter + 1);
        content.xLabel = "Point";
        content.yLabel = "% signal";
        addCurves(content, decoder.settings(), latest->curves, shown);
        return content;
    }
    PlotContent content;
    if (isEmpty(curves))
        content.note = decoder.isReady() ? "No volume has been measured yet"
                                         : "Choose the responses and the data: Preparation, "
                                           "Settings...";
    content.title = "Curves so far";
    content.xLabel = "Volume";
    content.yLabel = "Signal";
    content.xStart = 1.0;
    addCurves(content, decoder.settings(), curves, shown);
    return content;
}

PlotContent referencePlotContent(const DecoderSettings& settings, int reference,
                                 const std::vector<float>& curve) {
    PlotContent content = emptyContent(settings);
    content.title = referenceName(reference);
    const auto compared =
        std::min(ptrdiff_t(curve.size()), ptrdiff_t(settings.nrOfComparedPoints()));
    content.curves.push_back({.legend = {},
                              .color = plotColors::quietText,
                              .values = {curve.begin(), curve.begin() + compared},
                              .errors = {}});
    return content;
}

QString decoderStateText(const LetterDecoder& decoder) {
    if (!decoder.isReady())
        return {};
    const QString letter = decoder.currentLetter() < 0
                               ? QStringLiteral("No letter yet")
                               : QStringLiteral("Letter %1").arg(decoder.currentLetter() + 1);
    if (decoder.currentVolume() < 0)
        return letter;
    return letter + QStringLiteral("  ·  volume %1 of %2")
                        .arg(decoder.currentVolume() + 1)
                        .arg(decoder.settings().NrOfTimePoints);
}
