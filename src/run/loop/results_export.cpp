// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/results_export.h"

#include "volume/anatomy/nifti_anatomy.h"
#include "volume/anatomy/nifti_export.h"

namespace {

/// "run.nii.gz" and "_maps" give "run_maps.nii.gz".
QString siblingName(const QString& path, const char* part) {
    const qsizetype dot = path.lastIndexOf(".nii", -1, Qt::CaseInsensitive);
    return path.left(dot) + part + path.mid(dot);
}

NiftiStatistic statisticOf(MapKind kind) {
    switch (kind) {
    case MapKind::T:
        return NiftiStatistic::T;
    case MapKind::F:
        return NiftiStatistic::F;
    default:
        return NiftiStatistic::Correlation;
    }
}

NiftiMaps mapsOf(const QtCortivoDoc& document) {
    const StatisticalMaps& maps = document.maps;
    NiftiMaps exported;
    exported.statistic = statisticOf(maps.MapType);
    exported.degreesOfFreedom = float(maps.MapDF1);
    exported.secondDegreesOfFreedom = float(maps.MapDF2);
    for (int i = 0; i < std::min(maps.NrOfActiveContrasts, maps.nrOfMaps); ++i) {
        exported.values.push_back(maps.map(i));
        exported.names << document.contrasts.ContrastNames.value(
            maps.contrastOfMap[size_t(i)], QStringLiteral("Map %1").arg(i + 1));
    }
    return exported;
}

} // namespace

QString exportHindrance(const QtCortivoDoc& document, int nrOfVolumes) {
    return nrOfVolumes > 0 || document.maps.NrOfActiveContrasts > 0
               ? QString()
               : QStringLiteral("There is no run in memory");
}

bool exportResults(const QtCortivoDoc& document, int nrOfVolumes, const QString& path,
                   ProgressReporter& progress, QString& error) {
    const QString name = isNiftiName(path) ? path : path + ".nii";
    const FMRProject& project = document.project;
    const NiftiMaps maps = mapsOf(document);
    const auto& mask = document.mask.voxels;
    return (nrOfVolumes < 1 || exportSeries(name, project, nrOfVolumes, progress, error)) &&
           (maps.values.empty() || exportMaps(siblingName(name, "_maps"), project, maps, error)) &&
           (mask.size() != project.volumeSamples() || mask.empty() ||
            exportMask(siblingName(name, "_mask"), project, mask, error));
}
