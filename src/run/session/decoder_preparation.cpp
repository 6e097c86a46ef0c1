// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/decoder_preparation.h"

#include "base/paths.h"
#include "base/plain_file.h"

DecoderPreparation offlinePreparation(const QString& dataPath) {
    DecoderPreparation preparation;
    preparation.offline = true;
    preparation.dataPath = dataPath;
    if (const std::optional<CurvesSize> size = sizeOfOfflineCurves(dataPath)) {
        preparation.settings.NrOfDataROIs = size->nrOfROIs;
        preparation.settings.NrOfTimePoints = size->nrOfTimePoints;
    }
    return preparation;
}

QString foundReferences(const QString& referencesPath, const QString& targetFolder) {
    if (referencesPath.contains(u'/'))
        return referencesPath;
    const QString inTarget = paths::join(targetFolder, referencesPath);
    return !targetFolder.isEmpty() && fileExists(inTarget) ? inTarget
                                                           : ":/decoder/" + referencesPath;
}

std::optional<PreparedData> loadPrepared(const DecoderPreparation& preparation,
                                         const QString& referencesPath) {
    const DecoderSettings& settings = preparation.settings;
    std::optional<ReferenceCurves> references =
        loadReferences(referencesPath, settings.IdealResponseWindowSize);
    if (!references)
        return std::nullopt;
    PreparedData prepared{*std::move(references), {}};
    if (!preparation.offline)
        return prepared;
    std::optional<OfflineCurves> data =
        loadOfflineCurves(preparation.dataPath, {settings.NrOfDataROIs, settings.NrOfTimePoints});
    if (!data)
        return std::nullopt;
    prepared.curves = std::move(data->curves);
    return prepared;
}
