// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/vom_file.h"

#include "base/file_writing.h"
#include "base/keyed_text_reader.h"
#include "base/memory.h"
#include "base/messages.h"
#include "base/number_text.h"

#include <algorithm>

namespace {

/// The bounds of one coordinate over all maps.
class Bounds {
public:
    void include(const std::vector<int>& coordinates) {
        for (const int value : coordinates) {
            from_ = isEmpty_ ? value : std::min(from_, value);
            to_ = isEmpty_ ? value : std::max(to_, value);
            isEmpty_ = false;
        }
    }
    [[nodiscard]] int from() const { return from_; }
    [[nodiscard]] int to() const { return to_; }

private:
    bool isEmpty_ = true;
    int from_ = 0;
    int to_ = 0;
};

QByteArray quoted(const QString& text) {
    return '"' + oneLine(text).remove('"').toUtf8() + '"';
}

QByteArray sourcesText(const std::vector<VomSource>& sources) {
    if (sources.empty())
        return "IncludeVMPValues:           0\n";
    QByteArray text = formatted("IncludeNVMPValues:          %i\n", int(sources.size()));
    for (const VomSource& source : sources)
        text += formatted("FromVMPFile:                %s\n"
                          "VMPIndex:                   %i\n"
                          "MapType:                    %i\n",
                          quoted(source.mapFile).constData(), source.index, source.type);
    return text;
}

QByteArray headText(const VomHeader& header, const std::vector<VoxelMap>& maps) {
    Bounds x;
    Bounds y;
    Bounds z;
    for (const VoxelMap& map : maps) {
        x.include(map.voxels.x);
        y.include(map.voxels.y);
        z.include(map.voxels.z);
    }
    return formatted("\n"
                     "FileVersion:                2\n\n"
                     "BoundingBox:                %i %i %i %i %i %i\n"
                     "ResolutionRelativeToVMR:    %i\n"
                     "LeftRightConvention:        %i\n"
                     "OriginalVMRFile:            %s\n",
                     x.from(), x.to(), y.from(), y.to(), z.from(), z.to(),
                     header.resolutionRelativeToVMR, header.leftRightConvention,
                     quoted(header.originalVMRFile).constData()) +
           sourcesText(header.sources) +
           formatted("\nNrOfVOMs:                   %i\n\n", int(maps.size()));
}

QByteArray mapText(const VoxelMap& map, size_t nrOfValues) {
    const VoxelList& voxels = map.voxels;
    QByteArray text = formatted("NameOfVOM:  %s\n"
                                "ColorOfVOM: %i %i %i\n\n"
                                "NrOfVoxels: %i\n",
                                oneLine(map.name).toUtf8().constData(), map.color.red,
                                map.color.green, map.color.blue, int(voxels.size()));
    for (size_t i = 0; i < voxels.size(); ++i) {
        appendNumber(text, 0, 0, voxels.x[i]);
        appendNumber(text, 1, 0, voxels.y[i]);
        appendNumber(text, 1, 0, voxels.z[i]);
        constexpr int digitsOfFloat = 9; // as many as bring back the same value
        for (size_t value = i * nrOfValues; value < (i + 1) * nrOfValues; ++value)
            text += ' ' + QByteArray::number(double(map.values[value]), 'g', digitsOfFloat);
        text += '\n';
    }
    return text + '\n';
}

class VomReader {
public:
    explicit VomReader(const QString& text) : text_(text) {}

    bool read() {
        readHeader();
        const int nrOfMaps = text_.countAfter("NrOfVOMs:", shortestMap);
        for (int i = 0; i < nrOfMaps && text_.good(); ++i)
            readMap();
        return text_.good();
    }

    [[nodiscard]] QString fault() const { return text_.fault(); }
    VomHeader header;
    std::vector<VoxelMap> maps;

private:
    // Their keys with a character for each value.
    static constexpr qsizetype shortestSource = 35;
    static constexpr qsizetype shortestMap = 36;

    void readHeader() {
        if (text_.integerAfter("FileVersion:") != 2)
            text_.fail(QStringLiteral("unknown version"));
        text_.pass("BoundingBox:");
        for (int bound = 0; bound < 6; ++bound)
            text_.integer();
        header.resolutionRelativeToVMR = text_.integerAfter("ResolutionRelativeToVMR:");
        header.leftRightConvention = text_.integerAfter("LeftRightConvention:");
        header.originalVMRFile = text_.quotedAfter("OriginalVMRFile:");
        header.sources.clear();
        if (!text_.nextIs("IncludeVMPValues:"))
            readSources();
        else if (text_.integer() != 0)
            text_.fail(QStringLiteral("values of maps that are not listed"));
    }

    void readSources() {
        const int nrOfSources = text_.countAfter("IncludeNVMPValues:", shortestSource);
        for (int i = 0; i < nrOfSources && text_.good(); ++i) {
            VomSource& source = header.sources.emplace_back();
            source.mapFile = text_.quotedAfter("FromVMPFile:");
            source.index = text_.integerAfter("VMPIndex:");
            source.type = text_.integerAfter("MapType:");
        }
    }

    void readMap() {
        VoxelMap map;
        map.name = text_.lineAfter("NameOfVOM:");
        map.color = text_.colorAfter("ColorOfVOM:");
        const auto numbersOfVoxel = qsizetype(3 + header.sources.size());
        const int nrOfVoxels = text_.countAfter("NrOfVoxels:", 2 * numbersOfVoxel);
        if (!memoryIsAvailable(size_t(nrOfVoxels) * size_t(numbersOfVoxel), 3 * sizeof(float)))
            text_.fail(QStringLiteral("not enough memory"));
        for (int i = 0; i < nrOfVoxels && text_.good(); ++i) {
            const int x = text_.integer();
            const int y = text_.integer();
            map.voxels.append(x, y, text_.integer());
            for (size_t value = 0; value < header.sources.size(); ++value)
                map.values.push_back(text_.number());
        }
        maps.push_back(std::move(map));
    }

    KeyedTextReader text_;
};

QString openFailure(const QString& path) {
    return QStringLiteral("Can not open VOI-VMP (VOM) file: %1").arg(path);
}

} // namespace

QByteArray vomFileText(const VomHeader& header, const std::vector<VoxelMap>& maps) {
    QByteArray text = headText(header, maps);
    for (const VoxelMap& map : maps)
        text += mapText(map, header.sources.size());
    return text;
}

bool writeVomFile(const QString& path, const VomHeader& header, const std::vector<VoxelMap>& maps) {
    if (writeFileAtomically(path, vomFileText(header, maps)))
        return true;
    showWarning(openFailure(path));
    return false;
}

bool parseVom(const QString& text, VomHeader& header, std::vector<VoxelMap>& maps, QString& fault) {
    VomReader reader(text);
    const bool good = reader.read();
    fault = reader.fault();
    if (!good)
        return false;
    header = std::move(reader.header);
    maps = std::move(reader.maps);
    return true;
}

bool readVomFile(const QString& path, VomHeader& header, std::vector<VoxelMap>& maps) {
    QString text;
    if (!readTextFile(path, text)) {
        showWarning(openFailure(path));
        return false;
    }
    QString fault;
    if (parseVom(text, header, maps, fault))
        return true;
    showWarning(
        QStringLiteral("ERROR: Can not read the VOI-VMP (VOM) file \"%1\": %2.").arg(path, fault));
    return false;
}
