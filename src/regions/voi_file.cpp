// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/voi_file.h"

#include "base/file_writing.h"
#include "base/keyed_text_reader.h"
#include "base/memory.h"
#include "base/messages.h"
#include "base/number_text.h"

namespace {

constexpr int newestVersion = 4;
constexpr qsizetype shortestVoxel = 6;   // a blank and a digit for each coordinate
constexpr qsizetype shortestVolume = 36; // its three keys with a character each

struct HeaderEntry {
    const char* key;
    int VolumeOfInterest::*value;
};

constexpr std::array<HeaderEntry, 8> headerEntries{{
    {"OriginalVMRResolutionX:", &VolumeOfInterest::OriginalVMRResolutionX},
    {"OriginalVMRResolutionY:", &VolumeOfInterest::OriginalVMRResolutionY},
    {"OriginalVMRResolutionZ:", &VolumeOfInterest::OriginalVMRResolutionZ},
    {"OriginalVMROffsetX:", &VolumeOfInterest::OriginalVMROffsetX},
    {"OriginalVMROffsetY:", &VolumeOfInterest::OriginalVMROffsetY},
    {"OriginalVMROffsetZ:", &VolumeOfInterest::OriginalVMROffsetZ},
    {"OriginalVMRFramingCubeDim:", &VolumeOfInterest::OriginalVMRFramingCubeDim},
    {"LeftRightConvention:", &VolumeOfInterest::LeftRightConvention},
}};

class VOIReader {
public:
    explicit VOIReader(const QString& text) : text_(text) {}

    VOIParseResult read(VolumeOfInterest& volumes, QString* fault) {
        volumes_.ReferenceSpace.clear();
        const VOIParseResult result = readAll();
        if (fault)
            *fault = text_.fault();
        if (result == VOIParseResult::Ok)
            volumes = std::move(volumes_);
        return result;
    }

private:
    VOIParseResult readAll() {
        if (!readVersion())
            return VOIParseResult::UnknownVersion;
        while (readHeaderEntry())
            continue;
        const int nrOfVOIs = text_.countAfter("NrOfVOIs:", shortestVolume);
        for (int i = 0; i < nrOfVOIs && text_.good(); ++i)
            readVolume();
        if (!text_.good())
            return VOIParseResult::Damaged;
        return nrOfVOIs == 0 ? VOIParseResult::Empty : VOIParseResult::Ok;
    }

    /// A text without a version is of the first one, if it begins with a key at all.
    bool readVersion() {
        if (!text_.nextIs("FileVersion:"))
            return text_.nextWord().endsWith(':');
        const int version = text_.integer();
        return text_.good() && version >= 1 && version <= newestVersion;
    }

    /// Older versions have fewer entries, and may have some that this program has no use for. False
    /// where the volumes begin, or something that is no entry.
    bool readHeaderEntry() {
        for (const auto& [key, value] : headerEntries) {
            if (text_.nextIs(key)) {
                volumes_.*value = text_.integer();
                return text_.good();
            }
        }
        const QString key = text_.nextWord();
        if (!key.endsWith(':') || tokensAgree(key, "NrOfVOIs:"))
            return false;
        const bool isSpace = text_.nextIs("ReferenceSpace:");
        const QString rest = text_.restOfLine();
        if (isSpace)
            volumes_.ReferenceSpace = rest;
        return true;
    }

    void readVolume() {
        const QString name = text_.lineAfter("NameOfVOI:");
        const RgbColor color = text_.colorAfter("ColorOfVOI:");
        const int nrOfVoxels = text_.countAfter("NrOfVoxels:", shortestVoxel);
        if (!memoryIsAvailable(size_t(nrOfVoxels), 2 * sizeof(VOIVoxel)))
            text_.fail(QStringLiteral("not enough memory"));
        std::vector<VOIVoxel> voxels(text_.good() ? size_t(nrOfVoxels) : 0);
        for (VOIVoxel& voxel : voxels)
            voxel = {text_.integer(), text_.integer(), text_.integer()};
        volumes_.add(name, {color.red, color.green, color.blue}, voxels);
    }

    KeyedTextReader text_;
    VolumeOfInterest volumes_;
};

QByteArray headText(const VolumeOfInterest& volumes) {
    return formatted("\nFileVersion:                %i\n\n"
                     "ReferenceSpace:             %s\n\n"
                     "OriginalVMRResolutionX:     %i\n"
                     "OriginalVMRResolutionY:     %i\n"
                     "OriginalVMRResolutionZ:     %i\n"
                     "OriginalVMROffsetX:         %i\n"
                     "OriginalVMROffsetY:         %i\n"
                     "OriginalVMROffsetZ:         %i\n"
                     "OriginalVMRFramingCubeDim:  %i\n\n"
                     "LeftRightConvention:        %i\n\n"
                     "SubjectVOINamingConvention: <SUBJ>_<VOI>\n\n"
                     "\nNrOfVOIs:                   %i\n\n",
                     newestVersion, oneLine(volumes.ReferenceSpace).toUtf8().constData(),
                     volumes.OriginalVMRResolutionX, volumes.OriginalVMRResolutionY,
                     volumes.OriginalVMRResolutionZ, volumes.OriginalVMROffsetX,
                     volumes.OriginalVMROffsetY, volumes.OriginalVMROffsetZ,
                     volumes.OriginalVMRFramingCubeDim, volumes.LeftRightConvention,
                     volumes.NrOfVOIs());
}

void appendVolume(QByteArray& text, const VolumeOfInterest& volumes, size_t number) {
    const auto& [red, green, blue] = volumes.ColorOfVOI[number];
    const int count = volumes.VOICount[number];
    text +=
        formatted("NameOfVOI:  %s\n"
                  "ColorOfVOI: %i %i %i\n\n"
                  "NrOfVoxels: %i\n",
                  oneLine(volumes.NameOfVOI[number]).toUtf8().constData(), red, green, blue, count);
    const VOIVoxel* voxel = volumes.VOIVoxels.data() + volumes.VOIStart[number];
    for (int i = 0; i < count; ++i, ++voxel) {
        appendNumber(text, 0, 0, voxel->x);
        appendNumber(text, 1, 0, voxel->y);
        appendNumber(text, 1, 0, voxel->z);
        text += '\n';
    }
    text += '\n';
}

QString openFailure(const QString& path) {
    return QStringLiteral("WARNING: Can not open Volume-Of-Interest (.VOI) file: %1").arg(path);
}

} // namespace

QByteArray voiText(const VolumeOfInterest& volumes) {
    QByteArray text = headText(volumes);
    for (size_t number = 0; number < volumes.NameOfVOI.size(); ++number)
        appendVolume(text, volumes, number);
    return text + "\nNrOfVOIVTCs: 0\n";
}

VOIParseResult parseVOIs(const QString& text, VolumeOfInterest& volumes, QString* fault) {
    return VOIReader(text).read(volumes, fault);
}

bool readVOIFile(const QString& path, VolumeOfInterest& volumes) {
    QString text;
    if (!readTextFile(path, text)) {
        showWarning(openFailure(path));
        return false;
    }
    QString fault;
    switch (parseVOIs(text, volumes, &fault)) {
    case VOIParseResult::UnknownVersion:
        showWarning(QStringLiteral("ERROR: Unknown VOI file version."));
        return false;
    case VOIParseResult::Empty:
        showWarning(QStringLiteral("Value of \"Number of VOIs\" equals \"0\" - empty file?"),
                    QStringLiteral("Problem reading file"));
        return false;
    case VOIParseResult::Damaged:
        showWarning(QStringLiteral("ERROR: Can not read the volumes-of-interest file \"%1\": %2.")
                        .arg(path, fault));
        return false;
    case VOIParseResult::Ok:
        break;
    }
    return true;
}

bool writeVOIFile(const QString& path, const VolumeOfInterest& volumes) {
    if (writeFileAtomically(path, voiText(volumes)))
        return true;
    showWarning(openFailure(path));
    return false;
}
