// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/nifti_export.h"

#include "base/file_writing.h"
#include "volume/anatomy/coordinate_chain.h"
#include "volume/anatomy/gzip_writer.h"
#include "volume/anatomy/nifti_header_writing.h"

#include <QSaveFile>
#include <QtEndian>
#include <cmath>
#include <functional>

namespace {

bool isSize(float size) {
    return std::isfinite(size) && size > 0.0f;
}

std::array<float, 3> voxelSizes(const VolumeGeometry& geometry) {
    return {geometry.pixelSizeX, geometry.pixelSizeY, geometry.sliceDistance()};
}

/// Voxel numbers to the scanner's coordinates, in which NIfTI lets x run to the right and y to the
/// front; those of image headers run to the left and to the back.
std::optional<NiftiPlace> placeOf(const FMRProject& project) {
    const std::array<float, 3> sizes = voxelSizes(project);
    if (project.position.positionInfoValid == 0 || !std::ranges::all_of(sizes, isSize))
        return std::nullopt;
    const std::optional<C3dMatrix> frame = frameToScanner(centredOnGrid(project.position, project));
    if (!frame)
        return std::nullopt;
    const std::array<int, 3> counts = {project.ResolutionX, project.ResolutionY,
                                       project.NrOfSlices};
    NiftiPlace place{NiftiSpace::Scanner, {}};
    for (size_t i = 0; i < 3; ++i) {
        const double sign = i < 2 ? -1.0 : 1.0;
        double origin = double(frame->at(i, 3));
        for (size_t j = 0; j < 3; ++j) {
            const double step = double(frame->at(i, j)) * double(sizes[j]);
            origin -= step * double(counts[j] - 1) / 2.0;
            place.matrix.rows[i][j] = sign * step;
        }
        place.matrix.rows[i][3] = sign * origin;
    }
    return place.matrix.inverse() ? std::optional(place) : std::nullopt;
}

NiftiHeader headerOf(const FMRProject& project, NiftiSample kind, int64_t nrOfVolumes) {
    NiftiHeader header;
    header.size = {project.ResolutionX, project.ResolutionY, project.NrOfSlices};
    header.nrOfVolumes = nrOfVolumes;
    header.kind = kind;
    const std::array<float, 3> sizes = voxelSizes(project);
    for (size_t i = 0; i < 3; ++i)
        header.voxelSizes[i] = isSize(sizes[i]) ? double(sizes[i]) : 1.0;
    header.bySform = placeOf(project);
    return header;
}

/// Why no file can have these sizes; empty when it can.
QString sizeFault(const NiftiHeader& header) {
    for (const int64_t count : {header.size[0], header.size[1], header.size[2], header.nrOfVolumes})
        if (count < 1 || count > largestNifti1Dimension)
            return QString("NIfTI-1 files can't hold %1 x %2 x %3 voxels in %4 volumes.")
                .arg(header.size[0])
                .arg(header.size[1])
                .arg(header.size[2])
                .arg(header.nrOfVolumes);
    return {};
}

using WriteSamples = std::function<bool(GzipWriter&)>;

/// `writeSamples` is false when it was cancelled or failed.
bool writeFile(const QString& path, const NiftiHeader& header, const NiftiMeaning& meaning,
               const WriteSamples& writeSamples, QString& error) {
    error = sizeFault(header);
    if (!error.isEmpty())
        return false;
    QSaveFile file(path);
    bool written = openToReplace(file);
    if (written) {
        GzipWriter writer(file, path.endsWith(".gz", Qt::CaseInsensitive));
        written = writer.write(bytesOf(nifti1Header(header, meaning))) && writeSamples(writer) &&
                  writer.finish() && commitFile(file);
    }
    if (!written)
        error = QString("Can not write \"%1\" !").arg(path);
    return written;
}

template<typename Sample>
bool writeLittleEndian(GzipWriter& writer, std::span<const Sample> samples) {
    QByteArray bytes(qsizetype(samples.size_bytes()), Qt::Uninitialized);
    qToLittleEndian<Sample>(samples.data(), qsizetype(samples.size()), bytes.data());
    return writer.write(bytesOf(bytes));
}

int intentCode(NiftiStatistic statistic) {
    switch (statistic) {
    case NiftiStatistic::None:
        return 0;
    case NiftiStatistic::Correlation:
        return 2;
    case NiftiStatistic::T:
        return 3;
    case NiftiStatistic::F:
        return 4;
    }
    return 0;
}

NiftiMeaning meaningOf(const NiftiMaps& maps) {
    NiftiMeaning meaning;
    meaning.intentCode = intentCode(maps.statistic);
    if (maps.statistic != NiftiStatistic::None)
        meaning.intentParameters[0] = maps.degreesOfFreedom;
    if (maps.statistic == NiftiStatistic::F)
        meaning.intentParameters[1] = maps.secondDegreesOfFreedom;
    meaning.description = maps.names.join("; ");
    meaning.intentName = maps.names.value(0);
    return meaning;
}

} // namespace

bool exportSeries(const QString& path, const FMRProject& project, int nrOfVolumes,
                  ProgressReporter& progress, QString& error) {
    if (nrOfVolumes < 1 || size_t(nrOfVolumes) > project.volumes.size() ||
        project.volumes.samplesOfEach() != project.volumeSamples()) {
        error = "There are no volumes to be written.";
        return false;
    }
    NiftiMeaning meaning;
    constexpr double millisecondsPerSecond = 1000.0;
    if (isSize(project.TR))
        meaning.repetitionTime = double(project.TR) / millisecondsPerSecond;
    meaning.description = project.Prefix;
    const StepProgress steps(progress);
    bool cancelled = false;
    const auto writeVolumes = [&](GzipWriter& writer) {
        for (int volume = 0; volume < nrOfVolumes; ++volume) {
            if (!writeLittleEndian(writer, project.volumes[size_t(volume)]))
                return false;
            cancelled = !steps.advance(volume + 1, nrOfVolumes);
            if (cancelled)
                return false;
        }
        return true;
    };
    const bool written = writeFile(path, headerOf(project, NiftiSample::UInt16, nrOfVolumes),
                                   meaning, writeVolumes, error);
    if (cancelled)
        error.clear();
    return written;
}

bool exportMaps(const QString& path, const FMRProject& project, const NiftiMaps& maps,
                QString& error) {
    for (const std::span<const float> values : maps.values)
        if (values.size() != project.volumeSamples()) {
            error = "The maps are not those of the run in memory.";
            return false;
        }
    const auto writeMaps = [&maps](GzipWriter& writer) {
        return std::ranges::all_of(maps.values, [&writer](std::span<const float> values) {
            return writeLittleEndian(writer, values);
        });
    };
    if (maps.values.empty()) {
        error = "There are no maps to be written.";
        return false;
    }
    return writeFile(path, headerOf(project, NiftiSample::Float32, int64_t(maps.values.size())),
                     meaningOf(maps), writeMaps, error);
}

bool exportMask(const QString& path, const FMRProject& project, std::span<const uint8_t> mask,
                QString& error) {
    if (mask.size() != project.volumeSamples()) {
        error = "The mask is not that of the run in memory.";
        return false;
    }
    NiftiMeaning meaning;
    meaning.intentName = "mask";
    return writeFile(
        path, headerOf(project, NiftiSample::UInt8, 1), meaning,
        [mask](GzipWriter& writer) { return writer.write(mask); }, error);
}
