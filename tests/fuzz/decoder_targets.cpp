// Files of the letter decoder: weights and settings.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/decoder_files.h"
#include "fuzz/fuzz_target.h"

namespace {

// Weights of the tasks.
bool wgt(std::span<const uint8_t> bytes) {
    const auto weights = parseWeights(QString::fromUtf8(QByteArrayView(bytes)));
    if (!weights)
        return false;
    const QByteArray written = weightsText(*weights);
    const auto again = parseWeights(QString::fromUtf8(written));
    require(again && weightsText(*again) == written, "written weights stay as they are");
    static_cast<void>(scaledWeightsText(*weights));
    return true;
}

// Settings of the decoding.
bool bds(std::span<const uint8_t> bytes) {
    const DecoderSettings start;
    const auto settings = parseDecoderSettings(QString::fromUtf8(QByteArrayView(bytes)), start);
    if (!settings)
        return false;
    require(settings->nrOfComparedPoints() > 0, "there are points to compare");
    require(settings->MeanForPercSignalFrom <= settings->MeanForPercSignalTo &&
                settings->MeanForPercSignalTo < settings->IdealResponseWindowSize,
            "the base is in the window");
    require(parseDecoderSettings(QString::fromUtf8(decoderSettingsText(*settings)), start) ==
                settings,
            "written settings stay as they are");
    return true;
}

} // namespace

std::vector<FuzzTarget> decoderTargets() {
    return {{"bds", bds}, {"wgt", wgt}};
}
