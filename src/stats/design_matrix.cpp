// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_matrix.h"

#include "base/file_writing.h"
#include "base/memory.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/program_end.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr RgbColor constantColor{255, 255, 255};
constexpr RgbColor driftColor{128, 128, 128};
constexpr RgbColor baselineColor{128, 128, 128};

/// Columns are assigned in order; one is reserved for the constant.
constexpr int maximumConditionPredictors = DesignMatrix::maximumPredictors - 1;

void addPredictor(DesignMatrix& design, const QString& name, RgbColor color) {
    design.PredictorNames << name;
    design.PredictorColors.push_back(color);
    design.PredictorNumberLabels << QString("Predictor: %1").arg(design.PredictorNames.size());
}

bool resetColumn(DesignMatrix& design, size_t index) {
    std::vector<float>& column = design.PredictorColumns[index];
    const size_t count = size_t(std::max(design.NrOfVolumes, 0));
    design.columnOrigins[index].reset();
    if (column.capacity() < count && !memoryIsAvailable(count, sizeof(float)))
        return false;
    column.assign(count, 0.0f);
    return true;
}

bool insufficientMemory() {
    showCritical("ERROR: Insufficient memory!");
    endProgram(1);
    return false;
}

// The box-car of a protocol in milliseconds is a list of intervals; an unchanged list needs no
// work.
bool createConditionPredictor(DesignMatrix& design, const DesignSource& source, int condition,
                              size_t index) {
    const bool useConditionWeights = isProtocolPathSet(source.protocol.realTimeProtocolPath);
    const bool milliseconds = source.protocol.resolutionOfTime == ResolutionOfTime::Milliseconds;
    std::vector<float>& column = design.PredictorColumns[index];
    ColumnOrigin origin{{}, source.TR, design.NrOfVolumes, design.hrf};
    if (milliseconds) {
        fillBoxCar(design, source, condition, column, useConditionWeights, origin.intervals);
        if (design.columnOrigins[index] == origin)
            return true;
    }
    if (!resetColumn(design, index))
        return false;
    if (!milliseconds)
        fillBoxCar(design, source, condition, column, useConditionWeights, origin.intervals);
    if (!convolveWithHRF(column, HRFModel::TwoGamma, design.NrOfVolumes, design.hrf, source,
                         origin.intervals))
        return false;
    if (milliseconds)
        design.columnOrigins[index] = std::move(origin);
    return true;
}

QByteArray designText(const DesignMatrix& design) {
    QByteArray text;
    const int columns = std::clamp(design.NrOfPredictors, 0, DesignMatrix::maximumPredictors);
    for (size_t volume = 0; volume < size_t(std::max(design.NrOfVolumes, 0)); ++volume) {
        for (size_t j = 0; j < size_t(columns); ++j) {
            const std::vector<float>& column = design.PredictorColumns[j];
            text += formatted("%8.6f  ", volume < column.size() ? double(column[volume]) : 0.0);
        }
        text += '\n';
    }
    return text;
}

} // namespace

void buildConditionPredictorNames(DesignMatrix& design, const DesignSource& source) {
    const int nrOfConditions = source.protocol.nrOfConditions();
    const bool hasBaseline = source.BaselinePosInProtocol != 0;
    const int wanted = std::max(nrOfConditions - (hasBaseline ? 1 : 0), 0);
    constexpr int limit = maximumConditionPredictors;
    if (wanted > limit && design.NrOfConditionPredictors != limit)
        showWarning(QString("WARNING: The protocol has more conditions than the design matrix has "
                            "columns; only the first %1 conditions are modelled.")
                        .arg(limit));
    design.NrOfConditionPredictors = std::min(wanted, limit);

    design.PredictorNames.clear();
    design.PredictorNumberLabels.clear();
    design.PredictorColors.clear();
    design.ContrastPredictorNames.clear();
    design.ContrastPredictorColors.clear();
    if (!hasBaseline) {
        design.ContrastPredictorNames << "Baseline+";
        design.ContrastPredictorColors.push_back(baselineColor);
    }
    for (int i = 0; i < nrOfConditions; ++i) {
        const ProtocolCondition& condition = source.protocol.conditions[size_t(i)];
        design.ContrastPredictorNames << condition.name;
        design.ContrastPredictorColors.push_back(condition.color);
        const bool isBaseline = hasBaseline && i + 1 == source.BaselinePosInProtocol;
        if (!isBaseline && design.PredictorNames.size() < limit)
            addPredictor(design, condition.name, condition.color);
    }
    design.NrOfContrastPredictors = int(design.ContrastPredictorNames.size());
}

void buildConfoundPredictorNames(DesignMatrix& design, const DesignSource& source) {
    const int room = DesignMatrix::maximumPredictors - design.NrOfConditionPredictors - 1;
    const int wanted = std::max(source.DriftConfoundPredictors, 0);
    const int drift = std::min(wanted, room);
    if (wanted > drift && design.NrOfConfoundPredictors != 1 + drift)
        showWarning(QString("WARNING: The design matrix has no columns for %1 drift predictors; "
                            "only %2 are modelled.")
                        .arg(wanted)
                        .arg(drift));
    design.NrOfConfoundPredictors = 1 + drift;
    design.NrOfPredictors = design.NrOfConditionPredictors + design.NrOfConfoundPredictors;
    addPredictor(design, confoundName(0, design.NrOfConfoundPredictors), constantColor);
    for (int c = 1; c < design.NrOfConfoundPredictors; ++c)
        addPredictor(design, confoundName(c, design.NrOfConfoundPredictors), driftColor);
}

bool createConditionPredictors(DesignMatrix& design, const DesignSource& source) {
    const int firstCondition = source.BaselinePosInProtocol != 0 ? 1 : 0;
    design.NrOfVolumes = std::max(source.NrOfVolumes, 0);
    for (int j = 0; j < std::min(design.NrOfConditionPredictors, maximumConditionPredictors); ++j)
        if (!createConditionPredictor(design, source, j + firstCondition, size_t(j)))
            return insufficientMemory();
    return true;
}

float confoundValue(int confound, int nrOfConfoundPredictors, int volume, int nrOfVolumes) {
    if (confound == 0)
        return 1.0f;
    const float time = float(volume) / float(nrOfVolumes);
    if (nrOfConfoundPredictors == 2)
        return time * 2.0f - 1.0f;
    return std::cos(time * 3.1425f * float(confound));
}

QString confoundName(int confound, int nrOfConfoundPredictors) {
    if (confound == 0)
        return "Constant";
    return nrOfConfoundPredictors == 2 ? QString("Linear Trend") : QString("DCT-%1").arg(confound);
}

bool fillConfoundColumns(DesignMatrix& design, const DesignSource& source) {
    design.NrOfVolumes = std::max(source.NrOfVolumes, 0);
    const int confounds = design.NrOfConfoundPredictors;
    for (int c = 0; c < confounds; ++c) {
        const int j = design.NrOfConditionPredictors + c;
        if (j >= DesignMatrix::maximumPredictors)
            break;
        if (!resetColumn(design, size_t(j)))
            return insufficientMemory();
        std::vector<float>& column = design.PredictorColumns[size_t(j)];
        for (int t = 0; t < design.NrOfVolumes; ++t)
            column[size_t(t)] = confoundValue(c, confounds, t, design.NrOfVolumes);
    }
    return true;
}

bool createConfoundPredictors(DesignMatrix& design, const DesignSource& source,
                              const QString& targetFolder) {
    if (!fillConfoundColumns(design, source))
        return false;
    const int confounds = design.NrOfConfoundPredictors;
    if (design.NrOfPredictors - confounds != design.NrOfConditionPredictors)
        showCritical("INTERNAL ERROR - NrOfPredictors wrong");
    const QString path = paths::join(targetFolder, "Realtime_DesignMatrix.txt");
    if (!writeFileAtomically(path, designText(design)))
        showWarning(QString("WARNING: Can not write the text file \"%1\".").arg(path));
    return true;
}

void releasePredictorColumns(DesignMatrix& design) {
    for (std::vector<float>& column : design.PredictorColumns)
        column = {};
    design.columnOrigins = {};
}
