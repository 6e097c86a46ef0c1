// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_raw_readers.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "intake/dicom_names.h"
#include "intake/ge_headers.h"
#include "intake/ge_i_names.h"
#include "intake/pixel_data.h"
#include "run/settings/settings_paths.h"

namespace {

GeINumbers firstNumbers(const RunSettings& settings) {
    return {settings.GESeriesNr, settings.GEFirstImageNr};
}

} // namespace

QString GeIReader::expectedPath(qint64 index) const {
    return watchedPath(geIFileName(firstNumbers(settings()), index));
}

// The list is for the operator; a run does not need it.
bool GeIReader::prepare() {
    const QString& folder = project().targetFolder;
    if (folder.isEmpty())
        return true;
    const qint64 nrOfFiles =
        measuredVolume(settings().nrOfAnalysedVolumes()) * project().NrOfSlices;
    const GeIFileList list = geIFileList(state().watchFolder, firstNumbers(settings()), nrOfFiles);
    const bool written =
        writeFileAtomically(paths::join(folder, "expected_GE_I_file_list.txt"), list.text);
    if (written && list.nrOfNames < nrOfFiles)
        showWarning(QString("WARNING: The list of expected files ends after %1 of %2 names.")
                        .arg(list.nrOfNames)
                        .arg(nrOfFiles));
    return true;
}

bool GeIReader::readFirstVolume() {
    return readSlices(Stage::FirstVolume, 0, 0);
}

bool GeIReader::readVolume(int volume) {
    return readSlices(Stage::Loop, volume, measuredVolume(volume) * project().NrOfSlices);
}

bool GeIReader::readSlices(Stage stage, int volume, qint64 firstIndex) {
    const auto sliceBytes = qint64(targetSlice(stage, volume, 0).size_bytes());
    if (sliceBytes == 0)
        return false;
    for (int slice = 0; slice < project().NrOfSlices; ++slice) {
        const auto following = [&](int step) {
            const int next = slice + 1 + step;
            return next < project().NrOfSlices ? QStringList{expectedPath(firstIndex + next)}
                                               : QStringList();
        };
        const auto image = awaitSamples({.expected = {{expectedPath(firstIndex + slice)},
                                                      geIHeaderBytes + sliceBytes,
                                                      /*atLeast*/ false},
                                         .part = {.offset = geIHeaderBytes, .length = sliceBytes},
                                         .following = following});
        if (!image)
            return false;
        toHostOrder(image->samples);
        if (!store(image->samples, targetSlice(stage, volume, slice)))
            return false;
        if (stage == Stage::FirstVolume && slice == 0)
            project().FirstDataSourceFile = paths::fileName(image->path);
    }
    return true;
}

bool GeIReader::readHeaders() {
    readGEIHeader(expectedPath(0), project());
    return true;
}

bool GeStanfordReader::prepare() {
    return !settings().pFilePath.isEmpty() ||
           failWith(QString("ERROR: The name of the P header file \"%1\" has no \"P\" - check "
                            "settings file !")
                        .arg(settings().PFileHeader));
}

QString GeStanfordReader::volumePath(qint64 measured) const {
    return settings().pFilePath + ".V" + paddedNumber(measured + 1, 3) + ".img";
}

bool GeStanfordReader::readFirstVolume() {
    return readSlices(Stage::FirstVolume, 0, volumePath(0));
}

bool GeStanfordReader::readVolume(int volume) {
    return readSlices(Stage::Loop, volume, volumePath(measuredVolume(volume)));
}

// The file grows while it is read, and starts with the last slice of the volume.
bool GeStanfordReader::readSlices(Stage stage, int volume, const QString& path) {
    const auto sliceBytes = qint64(targetSlice(stage, volume, 0).size_bytes());
    if (sliceBytes == 0)
        return false;
    const int nrOfSlices = project().NrOfSlices;
    for (int slice = 0; slice < nrOfSlices; ++slice) {
        const qint64 needed = (slice + 1) * sliceBytes;
        // Slices that have arrived already have settled with the previous one.
        const bool settled = slice > 0 && waitForFile(path, needed, true);
        const auto image =
            awaitSamples({.expected = {{path}, needed, true},
                          .part = {.offset = slice * sliceBytes, .length = sliceBytes},
                          .settleMilliseconds = settled ? 0 : 10});
        if (!image)
            return false;
        // Always, whatever byte order the settings state.
        swapSamples(image->samples);
        if (!store(image->samples, targetSlice(stage, volume, nrOfSlices - 1 - slice)))
            return false;
    }
    if (stage == Stage::FirstVolume)
        project().FirstDataSourceFile = paths::fileName(path);
    return true;
}

bool GeStanfordReader::readHeaders() {
    const QString header = cleanedPath(settings().PFileHeader, settings().settingsFileDir);
    readPFileHeader(header.contains('/') ? header : watchedPath(header), project());
    return true;
}
