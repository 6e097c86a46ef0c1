// Files of whole-run models: the model itself, and lists of runs. Files of classifiers: patterns,
// and support vector machines. SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_writer.h"
#include "classify/pattern_file.h"
#include "classify/svm_model_check.h"
#include "classify/svm_weights.h"
#include "fuzz/fuzz_target.h"
#include "stats/glm_file.h"
#include "stats/multi_study_design.h"

#include <QTemporaryDir>

namespace {

std::vector<uint8_t> bytesOf(const WholeRunModel& model) {
    const QByteArray header = glmHeader(model);
    ByteWriter writer;
    writer.raw({reinterpret_cast<const uint8_t*>(header.constData()), size_t(header.size())});
    for (const float value : model.GLMMaps.span())
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
    const std::vector<uint8_t> written = bytesOf(model);
    WholeRunModel again;
    require(parseGLM(written, size, again) == GLMParseResult::Ok, "a written model reads");
    require(bytesOf(again) == written, "a written model stays as it is");
    return true;
}

// Lists of runs.
bool mdm(std::span<const uint8_t> bytes) {
    MultiStudyList list;
    if (!parseMDM(QString::fromUtf8(QByteArrayView(bytes)), list))
        return false;
    const QByteArray written = mdmText(list);
    MultiStudyList again;
    require(parseMDM(QString::fromUtf8(written), again), "a written list reads");
    require(mdmText(again) == written, "a written list stays as it is");
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

std::vector<FuzzTarget> modelFileTargets() {
    return {{"glm", glm}, {"mdm", mdm}, {"mvp", mvp}, {"svm_model", svmModel}};
}
