// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/map_file.h"

#include "base/data_stream.h"
#include "base/file_writing.h"
#include "base/messages.h"

#include <QDataStream>
#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <span>

namespace {

constexpr quint32 fileMark = 0x53504D56; // "VMPS" in the file
constexpr qint32 fileVersion = 1;
constexpr qint32 largestSize = 4096;   // along one axis, far above any matrix
constexpr quint32 longestName = 65536; // bytes

/// The contrast of a map, with indices checked.
struct MapInUse {
    std::span<const float> values;
    QByteArray name;
    RgbColor color;
    int selectionState;
};

std::vector<MapInUse> mapsInUse(const StatisticalMaps& maps, const ContrastDefinitions& contrasts) {
    const size_t count =
        std::min({size_t(std::max(maps.NrOfActiveContrasts, 0)), size_t(maps.nrOfMaps),
                  maps.states.size(), maps.contrastOfMap.size()});
    std::vector<MapInUse> result;
    for (size_t i = 0; i < count; ++i) {
        const size_t contrast = size_t(maps.contrastOfMap[i]);
        const bool known = contrast < contrasts.ContrastColors.size();
        result.push_back(
            {maps.map(int(i)),
             contrasts.ContrastNames.value(maps.contrastOfMap[i]).toUtf8().left(longestName),
             known ? contrasts.ContrastColors[contrast] : RgbColor(), maps.states[i]});
    }
    return result;
}

qint32 channel(int value) {
    return std::clamp(value, 0, 255);
}

void writeMap(QDataStream& stream, const MapInUse& map, const StatisticalMaps& maps,
              const OverlayThresholds& thresholds) {
    // The stream operator for byte arrays has a special form for an empty name.
    stream << quint32(map.name.size());
    stream.writeRawData(map.name.constData(), int(map.name.size()));
    stream << qint32(maps.MapType) << qint32(maps.MapDF1) << qint32(maps.MapDF2)
           << thresholds.Threshold << thresholds.ColorMaxThreshold
           << qint32(thresholds.ClusterSizePixels) << channel(map.color.red)
           << channel(map.color.green) << channel(map.color.blue) << qint32(map.selectionState);
    writeFloats(stream, map.values);
}

/// A name; its length is checked against the file before memory is allocated.
bool readName(QDataStream& stream, QString& name) {
    quint32 length = 0;
    stream >> length;
    if (stream.status() != QDataStream::Ok || length > longestName)
        return false;
    QByteArray bytes(qsizetype(length), '\0');
    if (stream.readRawData(bytes.data(), int(length)) != int(length))
        return false;
    name = QString::fromUtf8(bytes);
    return true;
}

/// The entries of a map before its values. False when one is invalid.
bool readMapHeader(QDataStream& stream, MapFileEntry& map) {
    if (!readName(stream, map.name))
        return false;
    qint32 type = 0, red = 0, green = 0, blue = 0;
    stream >> type >> map.df1 >> map.df2 >> map.thresholds.Threshold >>
        map.thresholds.ColorMaxThreshold >> map.thresholds.ClusterSizePixels >> red >> green >>
        blue >> map.selectionState;
    const auto isChannel = [](qint32 value) { return value >= 0 && value <= 255; };
    map.type = MapKind(type);
    map.color = {red, green, blue};
    return stream.status() == QDataStream::Ok && type >= int(MapKind::T) &&
           type <= int(MapKind::F) && map.df1 >= 0 && map.df2 >= 0 &&
           std::isfinite(map.thresholds.Threshold) &&
           std::isfinite(map.thresholds.ColorMaxThreshold) && isChannel(red) && isChannel(green) &&
           isChannel(blue) && map.selectionState >= ContrastOff &&
           map.selectionState <= ContrastBoth;
}

QString damagedMessage(const QString& fileName) {
    return QStringLiteral("ERROR: Map file \"%1\" is damaged or ends too early!").arg(fileName);
}

/// Mark, version, sizes and number of maps. An empty message for success.
QString readHeader(QDataStream& stream, const QString& fileName, MapFile& file, qint32& nrOfMaps) {
    quint32 mark = 0;
    qint32 version = 0;
    stream >> mark >> version;
    if (stream.status() != QDataStream::Ok || mark != fileMark || version < 1)
        return QStringLiteral(
                   "ERROR: Can not read file. \"%1\" appears not to be a map (.mps) file!")
            .arg(fileName);
    if (version > fileVersion)
        return QStringLiteral("ERROR: Can not read this new version of map files!");
    stream >> file.size.x >> file.size.y >> file.size.slices >> nrOfMaps;
    const auto isSize = [](int value) { return value > 0 && value <= largestSize; };
    if (stream.status() != QDataStream::Ok || !isSize(file.size.x) || !isSize(file.size.y) ||
        !isSize(file.size.slices) || nrOfMaps < 0)
        return damagedMessage(fileName);
    return {};
}

/// One map. An empty message for success.
QString readMap(QDataStream& stream, const QString& fileName, size_t voxels, MapFileEntry& map) {
    if (!readMapHeader(stream, map))
        return damagedMessage(fileName);
    if (!map.values.allocate(voxels))
        return QStringLiteral("ERROR: Insufficient memory for reading map file \"%1\"!")
            .arg(fileName);
    return readFloats(stream, map.values.span()) ? QString() : damagedMessage(fileName);
}

/// The whole file. An empty message for success.
QString readContent(QFile& device, const QString& fileName, MapFile& file) {
    QDataStream stream(&device);
    makeLittleEndian(stream);
    qint32 nrOfMaps = 0;
    QString message = readHeader(stream, fileName, file, nrOfMaps);
    if (!message.isEmpty())
        return message;
    // At most 2^36 voxels of 4 bytes each, so the products below fit.
    const auto voxels = qint64(file.size.samples());
    if (nrOfMaps > device.bytesAvailable() / (voxels * qint64(sizeof(float))))
        return damagedMessage(fileName);
    file.maps.resize(size_t(nrOfMaps));
    for (MapFileEntry& map : file.maps) {
        message = readMap(stream, fileName, size_t(voxels), map);
        if (!message.isEmpty())
            return message;
    }
    return stream.atEnd() ? QString() : damagedMessage(fileName);
}

} // namespace

bool writeMapFile(const QString& fileName, const StatisticalMaps& maps,
                  const OverlayThresholds& thresholds, const ContrastDefinitions& contrasts) {
    QSaveFile device(fileName);
    bool written = openToReplace(device);
    if (written) {
        const std::vector<MapInUse> used = mapsInUse(maps, contrasts);
        QDataStream stream(&device);
        makeLittleEndian(stream);
        stream << fileMark << fileVersion << qint32(maps.size.x) << qint32(maps.size.y)
               << qint32(maps.size.slices) << qint32(used.size());
        for (const MapInUse& map : used)
            writeMap(stream, map, maps, thresholds);
        written = stream.status() == QDataStream::Ok && commitFile(device);
    }
    if (!written)
        showCritical(QStringLiteral("ERROR: Unable to write map file \"%1\"!").arg(fileName));
    return written;
}

bool readMapFile(const QString& fileName, MapFile& file) {
    QFile device(fileName);
    if (!device.open(QIODevice::ReadOnly)) {
        showCritical(QStringLiteral("ERROR: Can not open map file \"%1\"!").arg(fileName));
        return false;
    }
    MapFile content;
    const QString message = readContent(device, fileName, content);
    if (!message.isEmpty()) {
        showCritical(message);
        return false;
    }
    file = std::move(content);
    return true;
}
