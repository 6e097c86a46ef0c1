// The linear model of complete data: of one run, or of several runs (studies) together.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "base/rgb_color.h"
#include "volume/volume_geometry.h"

#include <QString>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// One run of a model.
struct GLMStudy {
    int dataPoints = 0;
    QString studyFile;  ///< its project (.fmr)
    QString designFile; ///< its design (.rtc)
    int subject = 1;    ///< from 1; matters where predictors are separate for each subject

    bool operator==(const GLMStudy&) const = default;
};

/// One column of a model.
struct GLMPredictor {
    QString label; ///< "Predictor: 1", ...
    QString name;
    RgbColor color;

    bool operator==(const GLMPredictor&) const = default;
};

/// How the samples of a voxel are scaled before the fit.
enum class ZTransformation : int8_t {
    None = 0,
    Study = 1,      ///< (y - mean) / deviation of each study
    StudyModel = 2, ///< the same, from the points at which a condition column of the study is not 0
};

/// Which studies share the columns of the conditions. Each study has a constant of its own.
enum class SeparatePredictors : int8_t { None = 0, Studies = 1, Subjects = 2 };

/// The model without its maps: what the fit starts from, and most of what the file (.glm) states.
struct WholeRunDesign {
    std::vector<GLMStudy> studies;
    std::vector<GLMPredictor> predictors; ///< p
    /// For each column the condition predictor of the runs that it belongs to, from 0; -1 for
    /// constants and drift terms. Not in the file.
    std::vector<int> conditionOfColumn;
    std::vector<float> GLMDesign; ///< X, n x p, row by data point
    ZTransformation transformation = ZTransformation::None;
    SeparatePredictors separation = SeparatePredictors::None;
    bool CorrectSerialCorrelations = false;

    [[nodiscard]] int nrOfStudies() const { return int(studies.size()); }
    /// n, summed over the studies.
    [[nodiscard]] int GLMDataPoints() const {
        int points = 0;
        for (const GLMStudy& study : studies)
            points += study.dataPoints;
        return points;
    }
    [[nodiscard]] int GLMPredictors() const { return int(predictors.size()); } ///< p
};

inline constexpr float noMeanAR1 = -2.0f; ///< a mean that was not computed

/// Voxels are sorted by their lag-one values; those of a bin share one whitened design.
inline constexpr int nrOfSerialCorrelationBins = 20;

/// Numbers of the rows of the maps of a model with p predictors.
struct GLMMapRows {
    int p = 0;

    static constexpr int correlation = 0; ///< R
    static constexpr int total = 1;       ///< sum of squares
    static constexpr int firstBeta = 2;
    [[nodiscard]] int firstSum() const { return firstBeta + p; } ///< of X'y
    [[nodiscard]] int mean() const { return firstSum() + p; }    ///< without the correction
    [[nodiscard]] int AR1Before() const { return firstSum() + p; }
    [[nodiscard]] int AR1After() const { return firstSum() + p + 1; }
};

struct WholeRunModel : WholeRunDesign {
    int GLMType = 1;               ///< 1 none, 2 fitted, 3 as saved
    VolumeSize size;               ///< of each row of the maps
    std::vector<float> GLMInverse; ///< p x p, of X'X
    /// With serial correlation correction, for each bin the inverse of the whitened X'X, p x p.
    /// Not in the file.
    std::vector<std::vector<float>> binInverses;
    /// Directions of the design; less than p where columns are zeros or depend on others. Not in
    /// the file.
    int rank = 0;
    float MeanAR1Before = noMeanAR1;
    float MeanAR1After = noMeanAR1;
    /// Rows of one float per voxel: R, the total sum of squares, p betas, p sums X'y, then the mean
    /// of the samples, or, with serial correlation correction, the lag-one value of the residuals
    /// before and after it. With the correction all rows but that of the value before are those of
    /// the whitened fit. A voxel outside the model has 0 in all rows.
    ZeroedBuffer<float> GLMMaps;

    [[nodiscard]] size_t nrOfVoxels() const { return size.samples(); }
    [[nodiscard]] int nrOfMapRows() const {
        return 2 * GLMPredictors() + (CorrectSerialCorrelations ? 4 : 3);
    }
    [[nodiscard]] GLMMapRows rows() const { return {GLMPredictors()}; }

    [[nodiscard]] std::span<float> row(int index) {
        return GLMMaps.span().subspan(size_t(index) * nrOfVoxels(), nrOfVoxels());
    }
    [[nodiscard]] std::span<const float> row(int index) const {
        return GLMMaps.span().subspan(size_t(index) * nrOfVoxels(), nrOfVoxels());
    }
    /// Data points in the residuals: whitening takes the first one of each study.
    [[nodiscard]] int nrOfFittedPoints() const {
        return GLMDataPoints() - (CorrectSerialCorrelations ? nrOfStudies() : 0);
    }
    /// n - p, where columns that depend on others don't count; at least 0.
    [[nodiscard]] int degreesOfFreedom() const;
    /// True when all parts exist and agree in size.
    [[nodiscard]] bool isValid() const;
    void release();
};

/// The value that the data of a bin are whitened with: (bin + 1) / 20.
[[nodiscard]] double valueOfSerialCorrelationBin(int bin);
/// trunc(a * 20 + 0.5) - 1 within 0 to 19, for the lag-one value of a voxel before the correction.
[[nodiscard]] int serialCorrelationBin(float lagOneValue);

/// Computes what the file does not hold: rank and, with the correction, binInverses.
/// False after a message when memory runs out, or when an inversion fails, which ends the program.
[[nodiscard]] bool deriveFromDesign(WholeRunModel& model);
