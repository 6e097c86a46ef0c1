// Files of the classification of trials.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_maps.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "fuzz/fuzz_target.h"

#include <cmath>

namespace {

std::vector<uint8_t> bytesOf(const TrialMaps& maps) {
    const QByteArray header = trialMapsHeader(maps);
    std::vector<uint8_t> bytes(header.begin(), header.end());
    const auto* values = reinterpret_cast<const uint8_t*>(maps.values.data());
    bytes.insert(bytes.end(), values, values + maps.values.span().size_bytes());
    return bytes;
}

// Maps of trials.
bool fmp(std::span<const uint8_t> bytes) {
    TrialMaps maps;
    if (parseTrialMaps(bytes, maps) != TrialMapsResult::Ok) {
        require(maps.names.isEmpty() && maps.values.empty(), "bad maps change nothing");
        return false;
    }
    require(maps.values.size() == size_t(maps.count()) * maps.size.samples(), "maps are whole");
    for (const float value : maps.values.span())
        require(std::isfinite(value), "values are finite");
    static_cast<void>(classesOfMaps(maps.names));
    const std::vector<uint8_t> written = bytesOf(maps);
    TrialMaps again;
    require(parseTrialMaps(written, again) == TrialMapsResult::Ok, "written maps read");
    require(bytesOf(again) == written, "written maps stay as they are");
    return true;
}

// Settings of the estimation.
bool trialSettings(std::span<const uint8_t> bytes) {
    const auto options = parseTrialSettings(QString::fromUtf8(QByteArrayView(bytes)));
    if (!options)
        return false;
    require(parseTrialSettings(trialSettingsText(*options)) == options,
            "written settings stay as they are");
    return true;
}

// Voxels of a classifier.
bool trainedVoxels(std::span<const uint8_t> bytes) {
    const auto voxels = parseVoxels(QString::fromUtf8(QByteArrayView(bytes)));
    if (!voxels)
        return false;
    static_cast<void>(voxelsInside(*voxels, {64, 64, 25}));
    return true;
}

} // namespace

std::vector<FuzzTarget> classificationTargets() {
    return {{"fmp", fmp}, {"trained_voxels", trainedVoxels}, {"trial_settings", trialSettings}};
}
