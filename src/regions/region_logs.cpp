// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/region_logs.h"

#include "base/file_writing.h"
#include "base/number_text.h"

#include <QTextStream>
#include <algorithm>
#include <cmath>

namespace {

/// The region's mean at a volume; 0 before its first.
double meanAt(const RegionOfInterest& region, int volumeIndex) {
    const int last = std::min(volumeIndex, region.NrOfValues() - 1);
    return last < 0 ? 0.0 : double(region.TimeCourseValues[size_t(last)]);
}

void appendVoxels(QByteArray& text, const VoxelList& voxels, std::span<const int16_t> samples,
                  const VolumeSize& size) {
    constexpr qsizetype lineLength = 19;
    text.reserve(text.size() + lineLength * qsizetype(voxels.size()));
    for (size_t i = 0; i < voxels.size(); ++i) {
        const size_t row = size_t(voxels.z[i]) * size_t(size.y) + size_t(voxels.y[i]);
        appendNumber(text, 0, 3, voxels.x[i]);
        appendNumber(text, 1, 3, voxels.y[i]);
        appendNumber(text, 1, 3, voxels.z[i]);
        appendNumber(text, 2, 5, samples[row * size_t(size.x) + size_t(voxels.x[i])]);
        text += '\n';
    }
}

/// The betas of the conditions, or nothing before the first fit or without a constant to which they
/// are relative.
QString betaLine(const RegionOfInterest& region, const DesignMatrix& design) {
    constexpr float smallestConstant = 0.01f;
    constexpr float smallestBeta = 1e-05f;
    const auto conditions = size_t(design.NrOfConditionPredictors);
    if (region.predictorsInFit == 0 || region.ROIBetas.size() <= conditions ||
        !(std::abs(region.ROIBetas[conditions]) > smallestConstant))
        return {};
    QString line;
    QTextStream stream(&line);
    for (size_t j = 0; j < conditions; ++j) {
        const float beta = region.ROIBetas[j];
        stream << (std::abs(beta) < smallestBeta ? 0.0f : beta) << ' ';
    }
    stream << '\n';
    return line;
}

} // namespace

QByteArray timePointText(const Regions& regions, int condition) {
    QByteArray text;
    QTextStream stream(&text);
    stream.setRealNumberPrecision(9);
    stream << regions.count() << ' ';
    for (int r = 0; r < regions.count(); ++r)
        stream << meanAt(regions[r], regions[r].CurrentTimePoint) << ' ';
    stream << condition << '\n';
    stream.flush();
    return text;
}

QByteArray extendedTimeCourseText(const Regions& regions, int volumeIndex,
                                  std::span<const int16_t> samples, const VolumeSize& size,
                                  bool withHead) {
    QByteArray text = withHead ? "FileVersion: 1\n\n\n" : "";
    text += formatted("TimePoint:   %i\n\n", volumeIndex + 1);
    text += formatted("NrOfROIs:    %i\n\n", regions.count());
    for (int r = 0; r < regions.count(); ++r) {
        const RegionOfInterest& region = regions[r];
        text += formatted("ROI:         %i\n", r + 1);
        text += formatted("NrOfVoxels:  %i\n", region.NrOfVoxels());
        appendVoxels(text, region.voxels, samples, size);
        text += formatted("AvgValue: %12.9f\n\n", meanAt(region, volumeIndex));
    }
    return text + "\n\n";
}

QByteArray betaTimeCourseText(const Regions& regions, const DesignMatrix& design, int volumeIndex,
                              bool withHead) {
    QByteArray text;
    QTextStream stream(&text);
    if (withHead)
        stream << "FileVersion:    1\n"
               << "BetaMode:       PercentToBaseline\n\n";
    stream << "TimePoint:      " << volumeIndex + 1 << '\n';
    stream << "NrOfROIs:       " << regions.count() << '\n';
    for (int r = 0; r < regions.count(); ++r) {
        const RegionOfInterest& region = regions[r];
        if (int(region.ROIBetas.size()) < design.NrOfPredictors)
            continue;
        stream << "ROI:            " << r + 1 << '\n';
        stream << "NrOfVoxels:     " << region.NrOfVoxels() << '\n';
        if (region.NrOfVoxels() == 0)
            continue;
        stream << "NrOfCondBetas:  " << design.NrOfConditionPredictors << '\n';
        stream << betaLine(region, design);
    }
    stream << '\n';
    stream.flush();
    return text;
}
