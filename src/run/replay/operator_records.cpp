// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/operator_records.h"

#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "base/byte_writer.h"
#include "run/document/qt_cortivo_doc.h"

namespace {

constexpr char mapsRecord[] = "maps";

QByteArray encoded(const OverlayThresholds& thresholds, const ContrastDefinitions& contrasts) {
    ByteWriter writer;
    writer.f32(thresholds.Threshold);
    writer.f32(thresholds.ColorMaxThreshold);
    writer.i32(thresholds.ClusterSizePixels);
    writer.u8(contrasts.ContrastsChanged);
    writer.u8(contrasts.ConjunctionAnalysis);
    writer.u32(uint32_t(contrasts.NrOfContrasts));
    for (size_t i = 0; i < size_t(contrasts.NrOfContrasts); ++i) {
        const RgbColor& color = contrasts.ContrastColors[i];
        writer.i32(contrasts.ContrastSelectionStates[i]);
        for (const int channel : {color.red, color.green, color.blue})
            writer.i32(channel);
    }
    return byteArray(writer.result());
}

} // namespace

void OperatorRecords::changed() {
    if (document_)
        listeners_.record({mapsRecord, encoded(requests_.thresholds, document_->contrasts)});
}

void OperatorRecords::recordPlayed(const RunRecord& record) {
    if (!document_ || record.name != mapsRecord)
        return;
    ByteReader reader(bytesOf(record.content));
    OverlayThresholds thresholds;
    thresholds.Threshold = reader.f32();
    thresholds.ColorMaxThreshold = reader.f32();
    thresholds.ClusterSizePixels = reader.i32();
    ContrastDefinitions& contrasts = document_->contrasts;
    const bool contrastsChanged = reader.u8() != 0;
    const bool conjunction = reader.u8() != 0;
    // Otherwise it is of another list of contrasts.
    if (reader.u32() != uint32_t(contrasts.NrOfContrasts))
        return;
    std::vector<int> states;
    std::vector<RgbColor> colors;
    for (int i = 0; i < contrasts.NrOfContrasts; ++i) {
        states.push_back(reader.i32());
        const int red = reader.i32();
        const int green = reader.i32();
        colors.push_back({red, green, reader.i32()});
    }
    if (reader.failed())
        return;
    requests_.thresholds = thresholds;
    contrasts.ContrastsChanged = contrastsChanged;
    contrasts.ConjunctionAnalysis = conjunction;
    contrasts.ContrastSelectionStates = std::move(states);
    contrasts.ContrastColors = std::move(colors);
}
