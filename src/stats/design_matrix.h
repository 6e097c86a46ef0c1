// The design matrix of a run: condition predictors in protocol order, a constant, drift terms.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"
#include "stats/hrf.h"

#include <QString>
#include <QStringList>
#include <array>
#include <vector>

struct DesignMatrix {
    static constexpr int maximumPredictors = 50;
    static constexpr int noOnset = 1000000;

    /// Column j, one float per volume; empty until first used.
    std::array<std::vector<float>, maximumPredictors> PredictorColumns;
    int NrOfVolumes = 0; ///< length of a column
    int NrOfConditionPredictors = 0;
    int NrOfConfoundPredictors = 0;
    int NrOfPredictors = 0; ///< the sum of both

    QStringList PredictorNumberLabels; ///< "Predictor: 1", ...
    QStringList PredictorNames;
    std::vector<RgbColor> PredictorColors;

    /// The list shown in the contrast editors: entry 0 is the baseline.
    QStringList ContrastPredictorNames;
    std::vector<RgbColor> ContrastPredictorColors;
    int NrOfContrastPredictors = 0;

    std::vector<int> PredictorOnsets; ///< per condition column; noOnset until found
    std::vector<int> PredictorOrder;  ///< columns in order of onset; -1 for free places
    std::vector<int> GLMStepVolumes;  ///< volumes at which the model grows; -1 where none

    TwoGammaHRFParams hrf;
    std::vector<float> ConditionWeights; ///< last non-zero value per condition, real-time protocol
};

/// What the columns are built from.
struct DesignSource {
    const StimulationProtocol& protocol;
    float TR = 2000.0f; ///< milliseconds
    int NrOfVolumes = 0;
    int BaselinePosInProtocol = 1;
    int DriftConfoundPredictors = 1;
};

void buildConditionPredictorNames(DesignMatrix& design, const DesignSource& source);
void buildConfoundPredictorNames(DesignMatrix& design, const DesignSource& source);
/// False after a message when memory runs out.
[[nodiscard]] bool createConditionPredictors(DesignMatrix& design, const DesignSource& source);
/// Fills the confound columns and writes `Realtime_DesignMatrix.txt` into `workingFolder`.
[[nodiscard]] bool createConfoundPredictors(DesignMatrix& design, const DesignSource& source,
                                            const QString& workingFolder);
void releasePredictorColumns(DesignMatrix& design);
void findPredictorOnsets(DesignMatrix& design, int nrOfVolumes);
/// Entry k: the larger of the previous entry plus 1 (10 for the first) and the k-th onset.
void fillGLMStepVolumes(DesignMatrix& design);
