// Files of models: of whole runs, of single trials and their classification, of the letter decoder.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_views.h"
#include "base/byte_writer.h"
#include "classify/pattern_file.h"
#include "classify/svm_model_file.h"
#include "classify/svm_weights.h"
#include "classify/trial_maps.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "decoder/decoder_files.h"
#include "fuzz/fuzz_target.h"
#include "stats/glm_file.h"
#include "stats/multi_study_design.h"

#include <QTemporaryDir>
#include <cmath>

namespace {

std::vector<uint8_t> withValues(const QByteArray& header, std::span<const float> values) {
    ByteWriter writer;
    writer.raw(bytesOf(header));
    for (const float value : values)
        writer.f32(value);
    return writer.result();
}

// Models.
bool glm(std::span<const uint8_t> bytes) {
    const VolumeSize size{2, 2, 1};
    WholeRunModel model;
    if (parseGLM(bytes, size, model) != GLMParseResult::Ok) {
        require(model.GLMMaps.empty() && model.predictors.empty(), "a bad model is released");
        return false;
    }
    require(model.isValid(), "a model is whole");
    static_cast<void>(conditionsOfColumns(model));
    requireWrittenReads(
        model,
        [](const WholeRunModel& whole) {
            return withValues(glmHeader(whole), whole.GLMMaps.span());
        },
        [&](const auto& written, WholeRunModel& again) {
            return parseGLM(written, size, again) == GLMParseResult::Ok;
        });
    return true;
}

// Lists of runs.
bool mdm(std::span<const uint8_t> bytes) {
    MultiStudyList list;
    if (!parseMDM(textOf(bytes), list))
        return false;
    requireWrittenReads(list, mdmText, [](const QByteArray& written, MultiStudyList& again) {
        return parseMDM(textOf(written), again);
    });
    return true;
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
    requireWrittenReads(
        maps,
        [](const TrialMaps& all) { return withValues(trialMapsHeader(all), all.values.span()); },
        [](const auto& written, TrialMaps& again) {
            return parseTrialMaps(written, again) == TrialMapsResult::Ok;
        });
    return true;
}

// Settings of the estimation.
bool trialSettings(std::span<const uint8_t> bytes) {
    const auto options = parseTrialSettings(textOf(bytes));
    require(!options || parseTrialSettings(trialSettingsText(*options)) == options,
            "written settings stay as they are");
    return options.has_value();
}

// Voxels of a classifier.
bool trainedVoxels(std::span<const uint8_t> bytes) {
    const auto voxels = parseVoxels(textOf(bytes));
    if (!voxels)
        return false;
    static_cast<void>(voxelsInside(*voxels, {64, 64, 25}));
    return true;
}

// Patterns, in either form.
bool mvp(std::span<const uint8_t> bytes) {
    PatternSet patterns;
    QString fault;
    const QByteArray content = byteArray(bytes);
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
    const QByteArray content = byteArray(bytes);
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

// Weights of the mental tasks.
bool wgt(std::span<const uint8_t> bytes) {
    const auto weights = parseWeights(textOf(bytes));
    if (!weights)
        return false;
    const QByteArray written = weightsText(*weights);
    const auto again = parseWeights(textOf(written));
    require(again && weightsText(*again) == written, "written weights stay as they are");
    static_cast<void>(scaledWeightsText(*weights));
    return true;
}

// Settings of the decoding.
bool bds(std::span<const uint8_t> bytes) {
    const DecoderSettings start;
    const auto settings = parseDecoderSettings(textOf(bytes), start);
    if (!settings)
        return false;
    require(settings->nrOfComparedPoints() > 0, "there are points to compare");
    require(settings->MeanForPercSignalFrom <= settings->MeanForPercSignalTo &&
                settings->MeanForPercSignalTo < settings->IdealResponseWindowSize,
            "the base is in the window");
    require(parseDecoderSettings(textOf(decoderSettingsText(*settings)), start) == settings,
            "written settings stay as they are");
    return true;
}

} // namespace

std::vector<FuzzTarget> modelFileTargets() {
    return {{"glm", glm},
            {"mdm", mdm},
            {"fmp", fmp},
            {"mvp", mvp},
            {"svm_model", svmModel},
            {"trained_voxels", trainedVoxels},
            {"trial_settings", trialSettings},
            {"wgt", wgt},
            {"bds", bds}};
}
