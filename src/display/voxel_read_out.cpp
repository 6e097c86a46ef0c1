// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/voxel_read_out.h"

#include "display/shown_maps.h"
#include "regions/region_time_courses.h"
#include "run/document/qt_cortivo_doc.h"

namespace {

/// Empty when there is no such volume, or not of this size.
std::span<const int16_t> samplesOf(const FMRProject& project, int volume) {
    std::span<const int16_t> samples;
    if (volume == firstVolumeAsRead)
        samples = project.firstVolume.span();
    else if (volume >= 0 && size_t(volume) < project.volumes.size())
        samples = project.volumes[size_t(volume)];
    return samples.size() == project.volumeSamples() ? samples : std::span<const int16_t>();
}

} // namespace

std::optional<VoxelReadOut> voxelReadOut(const QtCortivoDoc& document, const VoxelPosition& voxel,
                                         int volume, const ShownMaps& maps) {
    const VolumeSize size = document.project.size();
    if (!isInside(size, voxel.x, voxel.y, voxel.slice))
        return {};
    const size_t offset = size_t(voxel.slice) * size.sliceSamples() +
                          size_t(voxel.y) * size_t(size.x) + size_t(voxel.x);
    VoxelReadOut readOut;
    readOut.voxel = voxel;
    const std::span<const int16_t> samples = samplesOf(document.project, volume);
    readOut.volume = volume;
    if (!samples.empty())
        readOut.value = samples[offset];
    readOut.statistic = maps.statistic;
    for (int map = 0; map < maps.count() && maps.size == size; ++map)
        readOut.maps.push_back({maps.names[map], maps.values[size_t(map)][offset]});
    return readOut;
}

QString volumeName(int volume) {
    return volume == firstVolumeAsRead ? QString("first volume as read")
                                       : QString("volume %1").arg(volume + 1);
}

QString mapValueText(const VoxelReadOut& readOut, const VoxelReadOut::MapValue& map) {
    return QString::number(double(map.value), 'f', readOut.decimals);
}

QString voxelReadOutText(const VoxelReadOut& readOut) {
    QString text = QString("x %1  y %2  slice %3")
                       .arg(readOut.voxel.x + 1)
                       .arg(readOut.voxel.y + 1)
                       .arg(readOut.voxel.slice + 1);
    if (readOut.value)
        text += QString("   %1: %2").arg(volumeName(readOut.volume)).arg(*readOut.value);
    QStringList maps;
    for (const VoxelReadOut::MapValue& map : readOut.maps)
        maps << map.name + ' ' + mapValueText(readOut, map);
    if (!maps.isEmpty())
        text += "   " + readOut.statistic + ": " + maps.join(", ");
    return text;
}
