// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/memory.h"
#include "base/messages.h"
#include "base/program_end.h"
#include "stats/multi_study_design.h"

#include <algorithm>

namespace {

bool insufficientMemory() {
    showCritical("FATAL ERROR: Insufficient memory!");
    endProgram(1);
    return false;
}

/// The response to all conditions of the run that have this name.
bool fillColumn(const RunOfStudy& run, const DesignSource& source, const QString& name,
                std::vector<float>& column) {
    const DesignMatrix unweighted;
    std::vector<MillisecondInterval> intervals;
    for (int i = 0; i < run.protocol.nrOfConditions(); ++i)
        if (run.protocol.conditions[size_t(i)].name == name)
            fillBoxCar(unweighted, source, i, column, false, intervals);
    return convolveWithHRF(column, HRFModel::SingleGamma, 0, {}, source, intervals);
}

} // namespace

std::vector<StudyCondition> unionOfConditions(const std::vector<RunOfStudy>& runs) {
    std::vector<StudyCondition> conditions;
    for (const RunOfStudy& run : runs)
        for (const ProtocolCondition& condition : run.protocol.conditions)
            if (std::ranges::find(conditions, condition.name, &StudyCondition::name) ==
                conditions.end())
                conditions.push_back({condition.name, condition.color});
    return conditions;
}

bool makeRunDesign(RTCFile& design, const RunOfStudy& run,
                   const std::vector<StudyCondition>& conditions) {
    design = RTCFile{};
    design.nrOfDataPoints = std::max(run.NrOfVolumes, 0);
    const size_t nrOfColumns = std::max(conditions.size(), size_t(1)) - 1;
    const size_t points = size_t(design.nrOfDataPoints);
    if (points > 0 && !memoryIsAvailable(nrOfColumns, points * sizeof(float)))
        return insufficientMemory();
    const DesignSource source{run.protocol, run.TR, design.nrOfDataPoints};
    for (size_t j = 1; j < conditions.size(); ++j) {
        design.names << conditions[j].name;
        std::vector<float>& column = design.columns.emplace_back(points, 0.0f);
        if (!fillColumn(run, source, conditions[j].name, column))
            return insufficientMemory();
    }
    return true;
}

bool createRunDesignMatrices(const std::vector<RunOfStudy>& runs, const QString& stem,
                             MultiStudyList& list) {
    const std::vector<StudyCondition> conditions = unionOfConditions(runs);
    MultiStudyList result = list;
    result.studies.clear();
    for (size_t i = 0; i < runs.size(); ++i) {
        const QString designFile = stem + QString("_run-%1.rtc").arg(i + 1);
        RTCFile design;
        if (!makeRunDesign(design, runs[i], conditions) ||
            !writeDesignMatrixRTC(design, designFile) ||
            !addStudyAndDesignMatrix(result, runs[i].studyFile, designFile))
            return false;
        result.studies.back().subject = runs[i].subject;
        result.studies.back().dataPoints = design.nrOfDataPoints;
    }
    if (!writeMDMFile(stem + ".mdm", result))
        return false;
    list = std::move(result);
    return true;
}
