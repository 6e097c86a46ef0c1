// Files of the classification of trials: estimates, settings, patterns, machines.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/pattern_file.h"
#include "classify/svm_model_file.h"
#include "classify/svm_weights.h"
#include "classify/trial_maps.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "fuzz/fuzz_target.h"

#include <QTemporaryDir>
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

QByteArray contentOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())};
}

// Patterns, in either form.
bool mvp(std::span<const uint8_t> bytes) {
    PatternSet patterns;
    QString fault;
    const QByteArray content = contentOf(bytes);
    if (!parsePatternFile(content, patternFileForm(content), patterns, fault)) {
        require(!fault.isEmpty() && patterns.count() == 0, "bad patterns change nothing");
        return false;
    }
    require(patterns.isFinite() && patterns.count() > 0, "patterns are finite");
    for (const PatternFileForm form : {PatternFileForm::Binary, PatternFileForm::Text}) {
        const QByteArray written = patternFileContent(patterns, form);
        PatternSet again;
        require(patternFileForm(written) == form, "the form is known again");
        require(parsePatternFile(written, form, again, fault), "written patterns read");
        require(again.values == patterns.values && again.labels == patterns.labels,
                "written patterns stay as they are");
    }
    return true;
}

// Machines: libsvm itself reads what passes the check.
bool svmModel(std::span<const uint8_t> bytes) {
    const QByteArray content = contentOf(bytes);
    if (!faultOfModelFile(content).isEmpty())
        return false;
    static const QTemporaryDir folder;
    QFile file(folder.filePath("model.svm"));
    SVMModel model;
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size() &&
                file.flush() && model.load(file.fileName()),
            "libsvm reads what was checked");
    const std::vector<double> features(size_t(model.nrOfFeatures()), 0.5);
    static_cast<void>(model.decisionValues(features));
    if (model.nrOfClasses() < 10)
        static_cast<void>(svmWeights(model));
    return true;
}

} // namespace

std::vector<FuzzTarget> classificationTargets() {
    return {{"fmp", fmp},
            {"mvp", mvp},
            {"svm_model", svmModel},
            {"trained_voxels", trainedVoxels},
            {"trial_settings", trialSettings}};
}
