// Files of whole-run models: the model itself, and lists of runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_writer.h"
#include "fuzz/fuzz_target.h"
#include "stats/glm_file.h"
#include "stats/multi_study_design.h"

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

} // namespace

std::vector<FuzzTarget> modelFileTargets() {
    return {{"glm", glm}, {"mdm", mdm}};
}
