// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/ge_i_reader.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "intake/ge_i_header.h"
#include "intake/ge_i_names.h"

namespace {

GeINumbers firstNumbers(const RunSettings& settings) {
    return {settings.GESeriesNr, settings.GEFirstImageNr};
}

} // namespace

QString GeIReader::expectedPath(qint64 index) const {
    return watchedPath(geIFileName(firstNumbers(settings()), index));
}

// The list is for the operator to look at; a run needs none of it.
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
        showWarning(QString("WARNING: The list of expected files ends behind %1 of %2 names.")
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
        const auto image = awaitSamples({.expected = {{expectedPath(firstIndex + slice)},
                                                      geIHeaderBytes + sliceBytes,
                                                      /*atLeast*/ false},
                                         .part = {.offset = geIHeaderBytes, .length = sliceBytes}});
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
