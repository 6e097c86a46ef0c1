// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/vom_file.h"

#include "base/file_writing.h"
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
                     "OriginalVMRFile:            \"%s\"\n"
                     "IncludeNVMPValues:          1\n"
                     "FromVMPFile:                \"\"\n"
                     "VMPIndex:                   1\n"
                     "MapType:                    0\n"
                     "\n"
                     "NrOfVOMs:                   %i\n\n",
                     x.from(), x.to(), y.from(), y.to(), z.from(), z.to(),
                     header.resolutionRelativeToVMR, header.leftRightConvention,
                     header.originalVMRFile.toUtf8().constData(), int(maps.size()));
}

QByteArray mapText(const VoxelMap& map) {
    const VoxelList& voxels = map.voxels;
    QByteArray text = formatted("NameOfVOM:  %s\n"
                                "ColorOfVOM: %i %i %i\n\n"
                                "NrOfVoxels: %i\n",
                                map.name.toUtf8().constData(), map.color.red, map.color.green,
                                map.color.blue, int(voxels.size()));
    for (size_t i = 0; i < voxels.size(); ++i) {
        appendNumber(text, 0, 0, voxels.x[i]);
        appendNumber(text, 1, 0, voxels.y[i]);
        appendNumber(text, 1, 0, voxels.z[i]);
        constexpr int digitsOfFloat = 9; // as many as bring back the same value
        text += ' ' + QByteArray::number(double(map.values[i]), 'g', digitsOfFloat) + '\n';
    }
    return text + '\n';
}

} // namespace

QByteArray vomFileText(const VomHeader& header, const std::vector<VoxelMap>& maps) {
    QByteArray text = headText(header, maps);
    for (const VoxelMap& map : maps)
        text += mapText(map);
    return text;
}

bool writeVomFile(const QString& path, const VomHeader& header, const std::vector<VoxelMap>& maps) {
    if (writeFileAtomically(path, vomFileText(header, maps)))
        return true;
    showWarning(QStringLiteral("Can not open VOI-VMP (VOM) file: %1").arg(path));
    return false;
}
