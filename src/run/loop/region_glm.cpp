// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/region_glm.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "run/document/qt_cortivo_doc.h"

#include <QDir>

namespace {

/// Those up to the last valid one: of a run that was stopped, as many as its model has.
std::span<const float> validValues(const RegionOfInterest& region) {
    const int count = std::clamp(region.CurrentTimePoint + 1, 0, region.NrOfValues());
    return std::span(region.TimeCourseValues).first(size_t(count));
}

QStringList predictorNames(const WholeRunDesign& design) {
    QStringList names;
    for (const GLMPredictor& predictor : design.predictors)
        names << (predictor.name.isEmpty() ? predictor.label : predictor.name);
    return names;
}

bool writePage(const RegionGLM& model, const QStringList& names) {
    const ROIGLM* whitened = model.whitened ? &*model.whitened : nullptr;
    if (QDir().mkpath(paths::folderWithSlash(model.page)) &&
        writeFileAtomically(model.page, roiGLMTable(model.fit, whitened, names)))
        return true;
    showWarning("ERROR: Can not save HTML table file - Write protection ?");
    return false;
}

} // namespace

QString regionGLMHindrance(const QtCortivoDoc& document) {
    const WholeRunModel& model = document.wholeRunModel;
    if (document.regions.empty())
        return QStringLiteral("Select a region first: the model is fitted to its time course");
    if (!model.isValid())
        return QStringLiteral("There is no model of a complete run");
    const int values = int(validValues(document.regions[0]).size());
    if (values < fewestROIGLMPoints)
        return QStringLiteral("A region is modelled from %1 volumes on").arg(fewestROIGLMPoints);
    if (values != model.GLMDataPoints() && model.nrOfStudies() > 1)
        return QStringLiteral("The model is of several runs, the regions are of one");
    if (values != model.GLMDataPoints())
        return QStringLiteral("The model has %1 volumes, the regions have %2")
            .arg(model.GLMDataPoints())
            .arg(values);
    if (!canFitROIGLM(model, values))
        return QStringLiteral("The design of the model is damaged");
    return {};
}

bool computeRegionGLM(const QtCortivoDoc& document, int roiIndex, bool correctSerialCorrelations,
                      const QString& dataFolder, RegionGLM& result) {
    const WholeRunModel& design = document.wholeRunModel;
    if (roiIndex < 0 || roiIndex >= document.regions.count() || !design.isValid())
        return false;
    const std::span<const float> curve = validValues(document.regions[roiIndex]);
    result = {};
    if (!fitROIGLM(design, curve, result.fit))
        return false;
    if (correctSerialCorrelations &&
        !fitWhitenedROIGLM(design, curve, result.fit, result.whitened.emplace()))
        return false;
    if (result.fit.explainsNothing())
        showModelessWarning("WARNING: overdetermined matrix or no variance in time series !");
    result.page = paths::join(dataFolder, "HTMLOutput/ROI_GLM_Info.html");
    return writePage(result, predictorNames(design));
}
