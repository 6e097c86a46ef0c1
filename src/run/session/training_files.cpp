// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/training_files.h"

#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "classify/feature_scaling.h"
#include "classify/live_classifier.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"

namespace {

bool isScaled(const QString& modelPath) {
    const std::optional<FeatureScaling> scaling = readScaling(modelPath);
    return scaling && scaling->options.mode != ScalingMode::None;
}

} // namespace

TrainingFiles readTrainingFiles(const QStringList& folders) {
    const auto found = std::ranges::find_if(folders, [](const QString& folder) {
        return fileExists(paths::join(folder, voxelsFileName));
    });
    TrainingFiles files;
    if (found != folders.end())
        files.folder = *found;
    else
        files.folder = folders.value(0);
    if (files.folder.isEmpty())
        return files;
    if (readTextFile(paths::join(files.folder, trialSettingsFileName), files.settingsText))
        files.settings = parseTrialSettings(files.settingsText);
    files.voxelsPath = paths::join(files.folder, voxelsFileName);
    files.voxels = readVoxels(files.voxelsPath);
    return files;
}

QStringList classifierWarnings(const ClassifierUse& use) {
    QStringList sentences;
    const QString name = paths::fileName(use.modelPath);
    if (isScaled(use.modelPath))
        sentences << QStringLiteral("The model \"%1\" was trained on scaled features. Those of a "
                                    "run are not scaled, so its predictions will be wrong: train "
                                    "one without scaling.")
                         .arg(name);
    if (use.intensityLimit > 0)
        sentences << QStringLiteral("The training left out voxels darker than %1 (their features "
                                    "are 0). A run estimates them all.")
                         .arg(use.intensityLimit);
    if (use.voxels.size() == 0)
        sentences << QStringLiteral("There is no list of the voxels that the model was trained "
                                    "with, so nothing will be predicted.");
    else if (int(use.voxels.size()) != use.model.nrOfFeatures())
        sentences << misfitLine(use.voxels.size(), use.model.nrOfFeatures());
    if (use.size && !voxelsInside(use.voxels, *use.size))
        sentences << QStringLiteral("Some voxels of the training lie outside this run, so nothing "
                                    "will be predicted.");
    if (!use.protocolInVolumes)
        sentences << QStringLiteral("The protocol of this run is in milliseconds. Only those in "
                                    "volumes have trials to predict.");
    return sentences;
}
