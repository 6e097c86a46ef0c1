// The design matrix of a run: condition predictors in protocol order, a constant, drift terms.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"
#include "stats/hrf.h"

#include <QString>
#include <QStringList>
#include <array>
#include <optional>
#include <span>
#include <vector>

/// Interval of a condition, in milliseconds.
struct MillisecondInterval {
    int from = 0;
    int to = 0;
    QString condition;
    int weight = 1000; ///< thousandths

    bool operator==(const MillisecondInterval&) const = default;
};

/// Everything a condition column of a protocol in milliseconds depends on.
struct ColumnOrigin {
    std::vector<MillisecondInterval> intervals;
    float TR = 0.0f; ///< milliseconds
    int NrOfVolumes = 0;
    TwoGammaHRFParams hrf;

    bool operator==(const ColumnOrigin&) const = default;
};

struct DesignMatrix {
    static constexpr int maximumPredictors = 50;
    static constexpr int noOnset = 1000000;

    /// Column j, one float per volume; empty until first used.
    std::array<std::vector<float>, maximumPredictors> PredictorColumns;
    /// Inputs of a column in milliseconds; empty for any other column.
    std::array<std::optional<ColumnOrigin>, maximumPredictors> columnOrigins;
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
    std::vector<int> PredictorOrder;  ///< columns in order of onset; -1 for unused entries
    std::vector<int> GLMStepVolumes;  ///< volumes at which the model grows; -1 for none

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

/// Which response a box-car is convolved with; None shifts it by one sample.
enum class HRFModel { None, TwoGamma, SingleGamma };

/// Fills the condition entries of the name lists, the contrast list, NrOfContrastPredictors and
/// NrOfConditionPredictors. With a baseline the names skip the condition at its position while the
/// columns skip the first one: they agree for position 1. Conditions beyond the 49 that fit beside
/// the constant get no column; a warning is shown when this starts to happen.
void buildConditionPredictorNames(DesignMatrix& design, const DesignSource& source);
/// Appends the confound entries; sets NrOfConfoundPredictors and NrOfPredictors. A negative
/// DriftConfoundPredictors counts as 0. Drift terms that don't fit are left out; a warning is shown
/// when this starts to happen.
void buildConfoundPredictorNames(DesignMatrix& design, const DesignSource& source);

/// Fills every condition column from the protocol. A column in milliseconds is slow to compute, so
/// it is recomputed only when its inputs have changed: an event changes one or two columns. When
/// memory runs out the program ends with status 1 after a message; false then.
[[nodiscard]] bool createConditionPredictors(DesignMatrix& design, const DesignSource& source);
/// Value and name of a confound at a volume: 0 is the constant; of two the other is a linear trend
/// from -1 on; of more the others are cosines.
[[nodiscard]] float confoundValue(int confound, int nrOfConfoundPredictors, int volume,
                                  int nrOfVolumes);
[[nodiscard]] QString confoundName(int confound, int nrOfConfoundPredictors);
/// Fills the confound columns: the constant, then the drift terms. False when memory runs out,
/// which ends the program with status 1 after a message.
[[nodiscard]] bool fillConfoundColumns(DesignMatrix& design, const DesignSource& source);
/// Fills the confound columns and writes `Realtime_DesignMatrix.txt` into `targetFolder`. When
/// memory runs out the program ends with status 1 after a message; false then. Failure to write the
/// text file only gives a warning, since nothing in the run reads it.
[[nodiscard]] bool createConfoundPredictors(DesignMatrix& design, const DesignSource& source,
                                            const QString& targetFolder);

/// Writes the box-car of a condition into a zeroed column of volumes: 1, or with
/// `useConditionWeights` the weight at index max(conditionIndex - 1, 0) of ConditionWeights. For a
/// protocol in milliseconds the column is left alone and the intervals are appended to `intervals`;
/// one that ends where a listed one ends and doesn't start at 0 only replaces that one's weight.
void fillBoxCar(const DesignMatrix& design, const DesignSource& source, int conditionIndex,
                std::span<float> column, bool useConditionWeights,
                std::vector<MillisecondInterval>& intervals);

/// Convolves a column with a response in place. For a protocol in milliseconds the box-car is built
/// from the intervals at 1 ms per sample, and the result sampled at multiples of TR. `nrOfPoints`
/// below 1 means the source's number of volumes. False, without a message, when memory runs out.
[[nodiscard]] bool convolveWithHRF(std::span<float> column, HRFModel model, int nrOfPoints,
                                   const TwoGammaHRFParams& params, const DesignSource& source,
                                   std::span<const MillisecondInterval> intervals);

void releasePredictorColumns(DesignMatrix& design);
/// Finds the onset of each condition column, the first volume where its magnitude exceeds 0.1, and
/// sorts the columns by onset, lower numbers first within one volume.
void findPredictorOnsets(DesignMatrix& design, int nrOfVolumes);
/// Names of the conditions that will never enter the model, in column order: their response does
/// not exceed 0.1 within the run, or does so too late for a solution of the schedule to follow.
/// Call findPredictorOnsets() and fillGLMStepVolumes() first; the protocol must be complete.
[[nodiscard]] QStringList conditionsWithoutModel(const DesignMatrix& design);
/// No solution comes before this many volumes; a run that is shorter gets no model.
inline constexpr int fewestModelVolumes = 12;
/// Entry k: the larger of the previous entry plus 1 (11, the 12th volume, for the first) and the
/// k-th onset; -1 where no further column has an onset.
void fillGLMStepVolumes(DesignMatrix& design);
