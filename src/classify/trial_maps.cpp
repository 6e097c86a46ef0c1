// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_maps.h"

#include "base/byte_views.h"
#include "base/data_stream.h"
#include "base/file_writing.h"
#include "base/messages.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "run/protocol/stimulation_protocol.h"

#include <QBuffer>
#include <QDataStream>
#include <QHash>
#include <QSaveFile>
#include <cmath>

namespace {

constexpr qint16 fileVersion = 1;
constexpr qint16 mapType = 1;
constexpr qint32 largestSize = 4096; // along one axis, far above any matrix
/// One for each interval that a protocol can have.
constexpr qint32 mostMaps = maximumTableEntries * ProtocolCondition::maximumIntervals;
const QString trialMark = QStringLiteral("Trial-");
/// Bytes before the zero: the longest name of a condition in UTF-8, and a number.
constexpr qsizetype longestName = 3 * ProtocolCondition::maximumNameLength + 20;

/// One pass over a file.
class MapsReader {
public:
    explicit MapsReader(QIODevice& device) : device_(device), stream_(&device) {
        makeLittleEndian(stream_);
    }

    /// Everything before the values.
    [[nodiscard]] TrialMapsResult readHeader(TrialMaps& maps) {
        qint16 version = 0, type = 0;
        qint32 count = 0;
        stream_ >> version >> type >> count >> maps.size.x >> maps.size.y >> maps.size.slices;
        if (stream_.status() != QDataStream::Ok)
            return TrialMapsResult::Damaged;
        if (version != fileVersion || type != mapType)
            return TrialMapsResult::OtherVersion;
        const auto isSize = [](int size) { return size > 0 && size <= largestSize; };
        if (count < 0 || count > mostMaps || !isSize(maps.size.x) || !isSize(maps.size.y) ||
            !isSize(maps.size.slices))
            return TrialMapsResult::Damaged;
        // At most 2^36 voxels of 4 bytes each, so the sum fits. A name has a zero at least.
        if (count > device_.bytesAvailable() / (bytesOfMap(maps) + 1))
            return TrialMapsResult::Damaged;
        for (qint32 i = 0; i < count; ++i)
            if (!readName(maps.names))
                return TrialMapsResult::Damaged;
        return device_.bytesAvailable() / bytesOfMap(maps) >= count ? TrialMapsResult::Ok
                                                                    : TrialMapsResult::Damaged;
    }

    [[nodiscard]] TrialMapsResult readValues(TrialMaps& maps) {
        if (!maps.values.allocate(size_t(maps.count()) * maps.size.samples()))
            return TrialMapsResult::OutOfMemory;
        if (!readFloats(stream_, maps.values.span()))
            return TrialMapsResult::Damaged;
        for (float& value : maps.values.span())
            value = std::isfinite(value) ? value : 0.0f;
        return TrialMapsResult::Ok;
    }

private:
    static qint64 bytesOfMap(const TrialMaps& maps) {
        return qint64(maps.size.samples() * sizeof(float));
    }

    bool readName(QStringList& names) {
        QByteArray bytes;
        char character = 0;
        bool got = false;
        while ((got = device_.getChar(&character)) && character != 0 && bytes.size() < longestName)
            bytes += character;
        names << decodedText(bytes);
        return got && character == 0;
    }

    QIODevice& device_;
    QDataStream stream_;
};

enum class Content { Names, NamesAndValues };

TrialMapsResult parseDevice(QIODevice& device, Content content, TrialMaps& maps) {
    TrialMaps read;
    MapsReader reader(device);
    TrialMapsResult result = reader.readHeader(read);
    if (result == TrialMapsResult::Ok && content == Content::NamesAndValues)
        result = reader.readValues(read);
    if (result == TrialMapsResult::Ok)
        maps = std::move(read);
    return result;
}

QString messageOf(TrialMapsResult result) {
    switch (result) {
    case TrialMapsResult::OtherVersion:
        return QStringLiteral("ERROR: \"%1\" appears not to be a file of trial maps, or is of "
                              "another version!");
    case TrialMapsResult::OutOfMemory:
        return QStringLiteral("ERROR: Insufficient memory for reading map file \"%1\"!");
    default:
        return QStringLiteral("ERROR: Map file \"%1\" is damaged or ends too early!");
    }
}

bool readFile(const QString& path, Content content, TrialMaps& maps) {
    QFile file(path);
    if (!openPlainFile(file)) {
        showCritical("Unable to open map file for reading!");
        return false;
    }
    const TrialMapsResult result = parseDevice(file, content, maps);
    if (result != TrialMapsResult::Ok)
        showCritical(messageOf(result).arg(path));
    return result == TrialMapsResult::Ok;
}

} // namespace

QString trialMapName(const QString& condition, int trial) {
    return condition + '_' + trialMark + QString::number(trial);
}

std::optional<QString> conditionOfMap(const QString& mapName) {
    const qsizetype underscore = mapName.lastIndexOf('_');
    if (underscore < 0 || !mapName.mid(underscore + 1).startsWith(trialMark))
        return std::nullopt;
    return mapName.left(underscore);
}

std::vector<TrialClass> classesOfMaps(const QStringList& mapNames) {
    std::vector<TrialClass> classes;
    QHash<QString, size_t> positions;
    for (const QString& name : mapNames) {
        const std::optional<QString> condition = conditionOfMap(name);
        if (!condition)
            return {};
        if (!positions.contains(*condition)) {
            positions.insert(*condition, classes.size());
            classes.push_back({*condition, 0});
        }
        ++classes[positions.value(*condition)].nrOfTrials;
    }
    return classes;
}

QString trialMapsFileName(const QString& projectFile) {
    const QString extension = QStringLiteral(".fmr");
    QString stem = projectFile;
    if (stem.endsWith(extension, Qt::CaseInsensitive))
        stem.chop(extension.size());
    return stem + "_Trials.fmp";
}

QByteArray trialMapsHeader(const TrialMaps& maps) {
    QByteArray header;
    QDataStream stream(&header, QIODevice::WriteOnly);
    makeLittleEndian(stream);
    stream << fileVersion << mapType << qint32(maps.count()) << qint32(maps.size.x)
           << qint32(maps.size.y) << qint32(maps.size.slices);
    for (const QString& name : maps.names) {
        QByteArray bytes = encodedText(name);
        bytes.replace('\0', "");
        bytes.truncate(longestName);
        stream.writeRawData(bytes.constData(), int(bytes.size() + 1));
    }
    return header;
}

TrialMapsResult parseTrialMaps(std::span<const uint8_t> bytes, TrialMaps& maps) {
    QBuffer buffer;
    buffer.setData(byteArrayView(bytes));
    if (!buffer.open(QIODevice::ReadOnly))
        return TrialMapsResult::Damaged;
    return parseDevice(buffer, Content::NamesAndValues, maps);
}

bool writeTrialMaps(const QString& path, const TrialMaps& maps) {
    QSaveFile file(path);
    bool written = openToReplace(file);
    if (written) {
        QDataStream stream(&file);
        makeLittleEndian(stream);
        const QByteArray header = trialMapsHeader(maps);
        stream.writeRawData(header.constData(), int(header.size()));
        writeFloats(stream, maps.values.span());
        written = stream.status() == QDataStream::Ok && commitFile(file);
    }
    if (!written)
        showCritical("Can not open specified file for saving map data !");
    return written;
}

bool readTrialMapNames(const QString& path, TrialMaps& maps) {
    return readFile(path, Content::Names, maps);
}

bool readTrialMaps(const QString& path, TrialMaps& maps) {
    return readFile(path, Content::NamesAndValues, maps);
}
