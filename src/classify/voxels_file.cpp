// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/voxels_file.h"

#include "base/file_writing.h"
#include "base/number_text.h"
#include "base/text_reading.h"

namespace {

constexpr int fileVersion = 1;
constexpr int fieldWidth = 5;
constexpr qsizetype fewestVoxelCharacters = 6; // three digits with a blank or line end each

} // namespace

QByteArray voxelsText(const VoxelList& voxels) {
    QByteArray text =
        formatted("FileVersion:   %i\n\nNrOfVoxels: %i\n\n", fileVersion, int(voxels.size()));
    for (size_t i = 0; i < voxels.size(); ++i) {
        for (const int coordinate : {voxels.x[i], voxels.y[i], voxels.z[i]})
            appendNumber(text, 0, fieldWidth, coordinate);
        text += '\n';
    }
    return text;
}

std::optional<VoxelList> parseVoxels(const QString& text) {
    TokenStream stream(text);
    const bool isVersion =
        tokensAgree(stream.word(), "FileVersion:") && stream.integer() == fileVersion;
    const bool isCount = tokensAgree(stream.word(), "NrOfVoxels:");
    const int count = stream.integer();
    // The last number needs no character behind it.
    if (!isVersion || !isCount || count < 0 ||
        count > (text.size() - stream.position() + 1) / fewestVoxelCharacters)
        return std::nullopt;
    VoxelList voxels;
    for (int i = 0; i < count && !stream.failed(); ++i) {
        const int x = stream.integer();
        const int y = stream.integer();
        voxels.append(x, y, stream.integer());
    }
    return stream.failed() ? std::nullopt : std::optional(voxels);
}

std::optional<VoxelList> readVoxels(const QString& path) {
    QString text;
    return readTextFile(path, text) ? parseVoxels(text) : std::nullopt;
}

bool voxelsInside(const VoxelList& voxels, const VolumeSize& size) {
    const auto isInside = [](int coordinate, int limit) {
        return coordinate >= 0 && coordinate < limit;
    };
    for (size_t i = 0; i < voxels.size(); ++i)
        if (!isInside(voxels.x[i], size.x) || !isInside(voxels.y[i], size.y) ||
            !isInside(voxels.z[i], size.slices))
            return false;
    return true;
}

QString mismatchText(size_t nrOfVoxels, int nrOfFeatures) {
    return QStringLiteral("Expected %1 ROI voxels, but %2 SVM features found")
        .arg(nrOfVoxels)
        .arg(nrOfFeatures);
}
