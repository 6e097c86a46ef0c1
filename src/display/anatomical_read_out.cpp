// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/anatomical_read_out.h"

#include "display/shown_maps.h"
#include "run/document/qt_cortivo_doc.h"

namespace {

constexpr int numberWidth = 7; ///< characters, in a font of fixed width

QString pointText(const C3dVector& point) {
    const auto number = [](float value) {
        return QString::number(double(value), 'f', 1).rightJustified(numberWidth);
    };
    return number(point.x) + number(point.y) + number(point.z);
}

void addPoint(std::vector<ReadOutLine>& lines, const char* space,
              const std::optional<C3dVector>& point) {
    if (point)
        lines.push_back({space, pointText(*point)});
}

void addFunctional(std::vector<ReadOutLine>& lines, const VoxelReadOut& readOut) {
    lines.push_back({"Run", QString("x %1  y %2  slice %3")
                                .arg(readOut.voxel.x + 1)
                                .arg(readOut.voxel.y + 1)
                                .arg(readOut.voxel.slice + 1)});
    // Numbers first: names may be too long for a small view.
    if (readOut.value)
        lines.push_back({"Value", QString::number(*readOut.value).rightJustified(numberWidth) +
                                      "  " + volumeName(readOut.volume)});
    QString statistic = readOut.statistic;
    for (const VoxelReadOut::MapValue& map : readOut.maps) {
        lines.push_back(
            {statistic, mapValueText(readOut, map).rightJustified(numberWidth) + "  " + map.name});
        statistic.clear();
    }
}

} // namespace

AnatomicalReadOut anatomicalReadOut(const AnatomicalCube& cube, const CubeVoxel& voxel,
                                    const QtCortivoDoc& run, int volume, const ShownMaps& maps) {
    AnatomicalReadOut readOut;
    readOut.cubeName = cube.name;
    readOut.voxel = voxel;
    readOut.intensity = cube.volume.cube[cubeIndex(voxel.x, voxel.y, voxel.z)];
    const C3dVector point{float(voxel.x), float(voxel.y), float(voxel.z)};
    readOut.coordinates = spaceCoordinates(cube.spaces, point);
    const auto place = cube.functionalPlace(point);
    readOut.isMapped = place.has_value();
    if (place) {
        const VoxelPosition functional{nearestVoxel(place->x), nearestVoxel(place->y),
                                       nearestVoxel(place->z)};
        readOut.functional = voxelReadOut(run, functional, volume, maps);
    }
    return readOut;
}

std::vector<ReadOutLine> readOutLines(const AnatomicalReadOut& readOut) {
    const CubeVoxel& voxel = readOut.voxel;
    std::vector<ReadOutLine> lines{
        {"Cube", QString("x %1  y %2  z %3").arg(voxel.x).arg(voxel.y).arg(voxel.z)},
        {"Intensity", QString::number(readOut.intensity)}};
    addPoint(lines, "Scanner", readOut.coordinates.scanner);
    addPoint(lines, "AC-PC", readOut.coordinates.acpc);
    addPoint(lines, "Talairach", readOut.coordinates.talairach);
    if (readOut.functional)
        addFunctional(lines, *readOut.functional);
    else
        lines.push_back({"Run", readOut.isMapped ? "outside" : "place unknown, no maps"});
    return lines;
}
