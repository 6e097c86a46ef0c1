// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/decoder_records.h"

#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "base/byte_writer.h"
#include "decoder/decoder_files.h"

#include <cmath>

namespace {

constexpr uint8_t version = 1;

bool hasFiniteWeights(const DecoderSettings& settings) {
    for (const auto& row : settings.TaskVOIWeights)
        for (const float weight : row)
            if (!std::isfinite(weight))
                return false;
    return true;
}

} // namespace

// The weights are not as in their file, whose decimals would change the last digits of the scores.
QByteArray encodedDecoder(const RecordedDecoder& recorded) {
    const DecoderSettings& settings = recorded.settings;
    ByteWriter writer;
    writer.u8(version);
    writer.text(recorded.referencesPath);
    writer.i32(settings.NrOfDataROIs);
    writer.i32(settings.NrOfTimePoints);
    for (const bool flag : {settings.UseCorr, settings.UseBeta, settings.ABCDMode})
        writer.u8(flag);
    for (const auto& row : settings.TaskVOIWeights)
        for (const float weight : row)
            writer.f32(weight);
    writer.text(decoderSettingsText(settings));
    return byteArray(writer.result());
}

std::optional<RecordedDecoder> decodedDecoder(const QByteArray& content,
                                              const DecoderSettings& start) {
    ByteReader reader(bytesOf(content));
    if (reader.u8() != version)
        return {};
    RecordedDecoder recorded{start, reader.text()};
    DecoderSettings& settings = recorded.settings;
    settings.NrOfDataROIs = reader.i32();
    settings.NrOfTimePoints = reader.i32();
    for (bool* flag : {&settings.UseCorr, &settings.UseBeta, &settings.ABCDMode})
        *flag = reader.u8() != 0;
    for (auto& row : settings.TaskVOIWeights)
        for (float& weight : row)
            weight = reader.f32();
    const std::optional<DecoderSettings> whole = parseDecoderSettings(reader.text(), settings);
    if (reader.failed() || !whole || !hasFiniteWeights(*whole) || whole->NrOfTimePoints < 0 ||
        whole->NrOfDataROIs < leastDecoderROIs || whole->NrOfDataROIs > nrOfDecoderROIs)
        return {};
    recorded.settings = *whole;
    return recorded;
}
